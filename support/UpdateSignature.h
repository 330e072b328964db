// Verifies the publisher's signature of an update.
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

/// Whether `signature` is that of `key`'s owner for `signedVersion` followed by the whole content of `file`.
///
/// `signedVersion` is "major.minor.build" and a line feed, so that the signature fits neither another version
/// nor another file. `signature` is what `openssl dgst -sha256 -sign` makes, in base64 (DecodeEcdsaSignature
/// says how strictly that is read): ECDSA on P-256 with SHA-256. `file` is open for reading; its position is
/// moved. Any failure, of the system's cryptography, of reading or of memory, is false. Blocks as long as
/// reading the file takes.
bool IsSignedBy(const CUpdateKey& key, const std::string& signedVersion, HANDLE file,
                const std::wstring& signature);
