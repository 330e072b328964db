// Inflates the gzip-coded body of an HTTP response, free of Windows headers.
#pragma once

#include <cstdint>
#include <memory>

/// At most this many bytes of a body are decoded; the buffer has one more for the zero byte after the body.
constexpr std::uint32_t kMaximumDecodedLength = 256000;

/// Decodes `length` bytes of a zlib or gzip stream into a new buffer of kMaximumDecodedLength + 1 bytes, and
/// puts a zero byte after what was decoded.
///
/// Returns 0 if the whole stream was decoded, else zlib's code. The buffer is set in every case. If the
/// stream ends early or does not fit, the result is Z_DATA_ERROR, and what was decoded until then stays with
/// its length; after corrupt data or a lack of memory the length is 0.
int DecodeGzip(const char* body, std::uint32_t length, std::unique_ptr<char[]>& output,
               std::uint32_t& decodedLength);
