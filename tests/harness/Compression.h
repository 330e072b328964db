// Compressed bodies for the scripted server: whole ones, and ones that break off.
#pragma once

#include <string>
#include <string_view>

namespace orva::test
{

/// The bytes in gzip form (RFC 1952).
std::string GzipBytes(std::string_view bytes);

/// The bytes in zlib form (RFC 1950).
std::string ZlibBytes(std::string_view bytes);

/// The first part of a text: all but its last `cut` bytes.
std::string CutOff(std::string_view bytes, size_t cut);

} // namespace orva::test
