// Inflates the gzip-coded body of an HTTP response.
#include "support/GzipDecoder.h"

#define ZLIB_CONST
#include <zlib.h>

namespace
{
// A 15-bit window, plus 32: the header tells whether the stream is zlib's or gzip's.
constexpr int kWindowBits = 47;
} // namespace

int DecodeGzip(const char* body, std::uint32_t length, std::unique_ptr<char[]>& output,
               std::uint32_t& decodedLength)
{
    output = std::make_unique_for_overwrite<char[]>(kMaximumDecodedLength + 1);
    decodedLength = 0;

    z_stream stream = {};
    stream.next_in = reinterpret_cast<const Bytef*>(body);
    stream.avail_in = length;
    stream.next_out = reinterpret_cast<Bytef*>(output.get());
    stream.avail_out = kMaximumDecodedLength;
    if (const int result = inflateInit2(&stream, kWindowBits); result != Z_OK)
        return result;

    const int result = inflate(&stream, Z_FINISH);
    inflateEnd(&stream);
    switch (result)
    {
    case Z_NEED_DICT:
    case Z_DATA_ERROR:
        return Z_DATA_ERROR;
    case Z_MEM_ERROR:
        return Z_MEM_ERROR;
    default:
        decodedLength = kMaximumDecodedLength - stream.avail_out;
        return result == Z_STREAM_END ? Z_OK : Z_DATA_ERROR;
    }
}
