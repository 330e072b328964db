// Inflating of bodies: both formats, the bound, and data that is cut, corrupt or no stream.
#include "support/GzipDecoder.h"

#include "harness/Compression.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <random>
#include <string>

namespace
{

using orva::test::CutOff;
using orva::test::GzipBytes;
using orva::test::ZlibBytes;

// What has been decoded of a body whose decoding ends with this code.
std::string Decoded(const std::string& body, int expectedResult)
{
    std::unique_ptr<char[]> output;
    std::uint32_t length = 12345;
    EXPECT_EQ(DecodeGzip(body.data(), static_cast<std::uint32_t>(body.size()), output, length),
              expectedResult);
    EXPECT_LE(length, kMaximumDecodedLength);
    if (output == nullptr)
    {
        return "(no buffer)";
    }
    // Callers read the body as a text up to here.
    EXPECT_EQ(output[length], '\0');
    return std::string(output.get(), length);
}

// Bytes that do not compress, the same on every run.
std::string Noise(size_t count)
{
    std::mt19937 random(1);
    std::string bytes(count, '\0');
    for (char& byte : bytes)
    {
        byte = static_cast<char>(random());
    }
    return bytes;
}

} // namespace

TEST(DecodeGzip, DecodesGzipAndZlibStreamsAndIgnoresWhatFollows)
{
    const std::string text = "{\"x64\":{\"majorVersion\":1}}";
    EXPECT_EQ(Decoded(GzipBytes(text), Z_OK), text);
    EXPECT_EQ(Decoded(ZlibBytes(text), Z_OK), text);
    EXPECT_EQ(Decoded(GzipBytes(text) + "more", Z_OK), text);
    EXPECT_EQ(Decoded(GzipBytes(""), Z_OK), "");
}

TEST(DecodeGzip, MoreThanTheBoundIsAnErrorThatKeepsWhatFits)
{
    const std::string fits(kMaximumDecodedLength, 'x');
    EXPECT_TRUE(Decoded(GzipBytes(fits), Z_OK) == fits);
    EXPECT_TRUE(Decoded(GzipBytes(fits + "y"), Z_DATA_ERROR) == fits);
    EXPECT_TRUE(Decoded(GzipBytes(fits + std::string(20'000'000, 'x')), Z_DATA_ERROR) == fits);
}

TEST(DecodeGzip, AStreamThatEndsEarlyIsAnErrorThatKeepsWhatWasDecoded)
{
    const std::string text = Noise(50'000);
    const std::string decoded = Decoded(CutOff(GzipBytes(text), 1'000), Z_DATA_ERROR);
    ASSERT_GT(decoded.size(), 10'000u);
    ASSERT_LT(decoded.size(), text.size());
    EXPECT_TRUE(text.starts_with(decoded));
    // Without its trailer.
    EXPECT_EQ(Decoded(CutOff(GzipBytes("abc"), 8), Z_DATA_ERROR), "abc");
}

TEST(DecodeGzip, WhatIsNoStreamOrCorruptIsAnErrorWithoutBytes)
{
    std::string corrupt = GzipBytes(std::string(1000, 'x') + Noise(1000));
    // The checksum, in front of the length at the end.
    corrupt[corrupt.size() - 8] = static_cast<char>(~corrupt[corrupt.size() - 8]);
    for (const std::string& body : {std::string(), std::string("{\"x64\":{}}"), corrupt})
    {
        EXPECT_EQ(Decoded(body, Z_DATA_ERROR), "");
    }
}

TEST(DecodeGzip, AStreamThatNeedsADictionaryIsADataErrorWithoutBytes)
{
    z_stream stream = {};
    ASSERT_EQ(deflateInit(&stream, Z_DEFAULT_COMPRESSION), Z_OK);
    ASSERT_EQ(deflateSetDictionary(&stream, reinterpret_cast<const Bytef*>("majorVersion"), 12), Z_OK);
    std::string text = "majorVersion";
    std::string body(200, '\0');
    stream.next_in = reinterpret_cast<Bytef*>(text.data());
    stream.avail_in = static_cast<uInt>(text.size());
    stream.next_out = reinterpret_cast<Bytef*>(body.data());
    stream.avail_out = static_cast<uInt>(body.size());
    ASSERT_EQ(deflate(&stream, Z_FINISH), Z_STREAM_END);
    body.resize(stream.total_out);
    deflateEnd(&stream);

    EXPECT_EQ(Decoded(body, Z_DATA_ERROR), "");
}
