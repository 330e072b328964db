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

/// The output of one call to inflate (gzip or zlib form) with room for `room` bytes: all of it, or what came
/// before the input ended or the room was full.
std::string InflatedPart(std::string_view bytes, size_t room);

/// All but the last `cut` bytes.
std::string CutOff(std::string_view bytes, size_t cut);

} // namespace orva::test
