// The publisher's public key as OpenSSL writes it.
#pragma once

#include "support/UpdateKey.h"

#include <string>

namespace publishing
{

/// Reads a PEM file with a public key of ECDSA on P-256. Throws CUsageError for any other file.
CUpdateKey ReadPublicKey(const std::wstring& path);

} // namespace publishing
