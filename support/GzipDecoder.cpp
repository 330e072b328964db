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
    // Not zero-filled: only the byte after the body has to be zero.
    output = std::make_unique_for_overwrite<char[]>(kMaximumDecodedLength + 1);
    output[0] = '\0';
    decodedLength = 0;

    z_stream stream = {};
    stream.next_in = reinterpret_cast<const Bytef*>(body);
    stream.avail_in = length;
    stream.next_out = reinterpret_cast<Bytef*>(output.get());
    stream.avail_out = kMaximumDecodedLength;
    if (const int result = inflateInit2(&stream, kWindowBits); result != Z_OK)
    {
        return result;
    }

    int result = inflate(&stream, Z_FINISH);
    inflateEnd(&stream);
    if (result == Z_NEED_DICT)
    {
        result = Z_DATA_ERROR;
    }
    if (result != Z_DATA_ERROR && result != Z_MEM_ERROR)
    {
        decodedLength = kMaximumDecodedLength - stream.avail_out;
        result = result == Z_STREAM_END ? Z_OK : Z_DATA_ERROR;
    }
    output[decodedLength] = '\0';
    return result;
}
