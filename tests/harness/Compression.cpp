#include "harness/Compression.h"

#include <zlib.h>

#include <stdexcept>

namespace orva::test
{

namespace
{

// Window bits for zlib's own format; 16 more select gzip.
constexpr int kZlibWindow = 15;
constexpr int kGzipWindow = kZlibWindow + 16;

std::string Deflate(std::string_view bytes, int window)
{
    z_stream stream = {};
    if (deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, window, MAX_MEM_LEVEL, Z_DEFAULT_STRATEGY) !=
        Z_OK)
    {
        throw std::runtime_error("cannot start compressing");
    }
    std::string input(bytes);
    std::string output(deflateBound(&stream, static_cast<uLong>(input.size())), '\0');
    stream.next_in = reinterpret_cast<Bytef*>(input.data());
    stream.avail_in = static_cast<uInt>(input.size());
    stream.next_out = reinterpret_cast<Bytef*>(output.data());
    stream.avail_out = static_cast<uInt>(output.size());
    const int result = deflate(&stream, Z_FINISH);
    output.resize(stream.total_out);
    deflateEnd(&stream);
    if (result != Z_STREAM_END)
    {
        throw std::runtime_error("cannot compress");
    }
    return output;
}

} // namespace

std::string GzipBytes(std::string_view bytes)
{
    return Deflate(bytes, kGzipWindow);
}

std::string ZlibBytes(std::string_view bytes)
{
    return Deflate(bytes, kZlibWindow);
}

std::string CutOff(std::string_view bytes, size_t cut)
{
    return std::string(bytes.substr(0, bytes.size() > cut ? bytes.size() - cut : 0));
}

} // namespace orva::test
