// Compressed bodies for the scripted server, complete or truncated.
#pragma once

#include <string>
#include <string_view>

namespace orva::test
{

/// The bytes in gzip form (RFC 1952).
std::string GzipBytes(std::string_view bytes);

/// The bytes in zlib form (RFC 1950).
std::string ZlibBytes(std::string_view bytes);

/// All but the last `cut` bytes.
std::string CutOff(std::string_view bytes, size_t cut);

} // namespace orva::test
