// The publisher's key, which a build may hold: such an add-in starts only installers that were signed with
// it.
#pragma once

#include "support/UpdateSignature.h"

/// IsSignedBy for one key. Returns the path of `file` if it is, and otherwise an empty text: the path that
/// the system gives for the open file (GetFinalPathNameByHandleW), which a link on the way to it cannot lead
/// elsewhere. Any failure, also of that, gives an empty text.
using UpdateVerifier = std::wstring (*)(const std::string& signedVersion, HANDLE file,
                                        const std::wstring& signature);

/// Null in a build without a key, which starts whatever was downloaded.
extern const UpdateVerifier kUpdateVerifier;
