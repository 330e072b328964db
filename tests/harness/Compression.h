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

/// What one call to inflate makes of the bytes (gzip or zlib form) with room for `room` bytes: all of it, or
/// what was there before the bytes broke off or the room was full.
std::string InflatedPart(std::string_view bytes, size_t room);

/// The first part of a text: all but its last `cut` bytes.
std::string CutOff(std::string_view bytes, size_t cut);

} // namespace orva::test
