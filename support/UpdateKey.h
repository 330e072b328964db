// The publisher's key, which a build may hold: such an add-in starts only installers that were signed with
// it.
#pragma once

#include <windef.h>

#include <array>
#include <cstdint>
#include <string>

/// A public key of ECDSA on the curve P-256: the point's coordinates x and y, each of 32 bytes with the most
/// significant first.
struct CUpdateKey
{
    std::array<std::uint8_t, 64> point;
};

/// Whether `signature`, the text of the update-information file, is the publisher's for this version
/// ("major.minor.build" and a line feed) and this file.
using UpdateVerifier = bool (*)(const std::string& signedVersion, HANDLE file, const std::wstring& signature);

/// Null in a build without a key, which starts whatever was downloaded.
extern const UpdateVerifier kUpdateVerifier;
