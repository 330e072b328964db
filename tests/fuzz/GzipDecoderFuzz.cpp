// Fuzzes the inflating of response bodies.
//
// An input that starts with 'P' is plain text: three bytes of length, then a text that is repeated up to that
// length, compressed and decoded. Any other input is decoded as it is.
#include "fuzz/Fuzz.h"
#include "support/GzipDecoder.h"

#include <sanitizer/asan_interface.h>

#define ZLIB_CONST
#include <zlib.h>

#include <algorithm>
#include <vector>

// The system's zlib has no sanitizer compiled in, so its buffers are checked before each call. The linker's
// --wrap=inflate redirects calls of inflate to __wrap_inflate and renames the function to __real_inflate.
extern "C" int RealInflate(z_streamp stream, int flush) __asm__("__real_inflate");
extern "C" int CheckedInflate(z_streamp stream, int flush) __asm__("__wrap_inflate");

extern "C" int CheckedInflate(z_streamp stream, int flush)
{
    ORVA_PROPERTY(__asan_region_is_poisoned(const_cast<Bytef*>(stream->next_in), stream->avail_in) ==
                  nullptr);
    ORVA_PROPERTY(__asan_region_is_poisoned(stream->next_out, stream->avail_out) == nullptr);
    return RealInflate(stream, flush);
}

namespace
{

constexpr int kWindowBits = 47;

struct Decoded
{
    int result = Z_OK;
    std::string bytes;
};

Decoded Decode(const std::string& body)
{
    // A copy of exactly this size, so that reading past its end is detected.
    const std::vector<char> exact(body.begin(), body.end());
    std::unique_ptr<char[]> output;
    std::uint32_t length = 0;
    const int result = DecodeGzip(exact.data(), static_cast<std::uint32_t>(exact.size()), output, length);
    ORVA_PROPERTY(output != nullptr);
    ORVA_PROPERTY(length <= kMaximumDecodedLength);
    ORVA_PROPERTY(result == Z_OK || result == Z_DATA_ERROR || result == Z_MEM_ERROR);
    // There is room for the zero byte that the caller relies on.
    ORVA_PROPERTY(__asan_region_is_poisoned(output.get(), kMaximumDecodedLength + 1) == nullptr);
    ORVA_PROPERTY(length == 0 || output[length] == 0);
    return {result, std::string(output.get(), length)};
}

// The expected result for `body`, found by giving it to zlib in small pieces.
Decoded Expected(const std::string& body)
{
    constexpr std::size_t kPiece = 777;
    static std::vector<char> output(kMaximumDecodedLength + 1);
    z_stream stream = {};
    ORVA_PROPERTY(inflateInit2(&stream, kWindowBits) == Z_OK);
    stream.next_out = reinterpret_cast<Bytef*>(output.data());
    stream.avail_out = static_cast<uInt>(output.size());
    int result = Z_OK;
    for (std::size_t at = 0; at < body.size() && result == Z_OK && stream.avail_out > 0; at += kPiece)
    {
        stream.next_in = reinterpret_cast<const Bytef*>(body.data() + at);
        stream.avail_in = static_cast<uInt>(std::min(kPiece, body.size() - at));
        result = inflate(&stream, Z_NO_FLUSH);
    }
    const std::size_t length = std::min<std::size_t>(output.size() - stream.avail_out, kMaximumDecodedLength);
    const bool fits = stream.avail_out > 0;
    inflateEnd(&stream);
    if (!fits)
    {
        return {Z_DATA_ERROR, std::string(output.data(), length)};
    }
    if (result == Z_NEED_DICT || result == Z_DATA_ERROR)
    {
        return {Z_DATA_ERROR, std::string()};
    }
    return {result == Z_STREAM_END ? Z_OK : Z_DATA_ERROR, std::string(output.data(), length)};
}

std::string Compress(const std::string& text, bool asGzip)
{
    constexpr int kGzip = 31;
    constexpr int kZlib = 15;
    constexpr int kMemoryLevel = 8;
    z_stream stream = {};
    ORVA_PROPERTY(deflateInit2(&stream, Z_BEST_SPEED, Z_DEFLATED, asGzip ? kGzip : kZlib, kMemoryLevel,
                               Z_DEFAULT_STRATEGY) == Z_OK);
    std::string body(deflateBound(&stream, text.size()), '\0');
    stream.next_in = reinterpret_cast<const Bytef*>(text.data());
    stream.avail_in = static_cast<uInt>(text.size());
    stream.next_out = reinterpret_cast<Bytef*>(body.data());
    stream.avail_out = static_cast<uInt>(body.size());
    ORVA_PROPERTY(deflate(&stream, Z_FINISH) == Z_STREAM_END);
    body.resize(stream.total_out);
    deflateEnd(&stream);
    return body;
}

void CheckPlain(const std::uint8_t* data, std::size_t size)
{
    constexpr std::size_t kHeader = 4;
    constexpr std::size_t kPlainLengths = std::size_t{2} * kMaximumDecodedLength;
    if (size <= kHeader)
    {
        return;
    }
    const std::size_t length =
        (data[1] | data[2] << 8U | static_cast<std::size_t>(data[3]) << 16U) % kPlainLengths;
    std::string text(reinterpret_cast<const char*>(data) + kHeader, size - kHeader);
    while (text.size() < length)
    {
        text += text;
    }
    text.resize(length);
    const Decoded decoded = Decode(Compress(text, length % 2 == 0));
    ORVA_PROPERTY(decoded.bytes == text.substr(0, kMaximumDecodedLength));
    ORVA_PROPERTY(decoded.result == (length <= kMaximumDecodedLength ? Z_OK : Z_DATA_ERROR));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size > 0 && data[0] == 'P')
    {
        CheckPlain(data, size);
        return 0;
    }
    const std::string body = orva::fuzz::Bytes(data, size);
    const Decoded decoded = Decode(body);
    const Decoded expected = Expected(body);
    ORVA_PROPERTY(decoded.result == expected.result);
    ORVA_PROPERTY(decoded.bytes == expected.bytes);
    return 0;
}
