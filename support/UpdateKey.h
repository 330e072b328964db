// The publisher's key, which a build may hold: such an add-in starts only installers that were signed with
// it.
#pragma once

#include "support/UpdateSignature.h"

/// IsSignedBy for one key.
using UpdateVerifier = bool (*)(const std::string& signedVersion, HANDLE file, const std::wstring& signature);

/// Null in a build without a key, which starts whatever was downloaded.
extern const UpdateVerifier kUpdateVerifier;
