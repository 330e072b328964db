// Inflating of bodies: both formats, the bound, and data that is cut, corrupt or no stream.
#include "support/GzipDecoder.h"

#include "harness/Compression.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <random>
#include <string>

namespace
{

struct CDecoded
{
    int result;
    std::string bytes;
    bool hasBuffer;
};

CDecoded Decode(const std::string& body)
{
    std::unique_ptr<char[]> output;
    std::uint32_t length = 12345;
    const int result = DecodeGzip(body.data(), static_cast<std::uint32_t>(body.size()), output, length);
    EXPECT_LE(length, kMaximumDecodedLength);
    if (output == nullptr)
    {
        return {result, "", false};
    }
    // Callers read the body as a text up to here.
    EXPECT_EQ(output[length], '\0');
    return {result, std::string(output.get(), length), true};
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

TEST(DecodeGzip, DecodesGzipAndZlibStreams)
{
    const std::string text = "{\"x64\":{\"majorVersion\":1}}";
    for (const std::string& body : {orva::test::GzipBytes(text), orva::test::ZlibBytes(text)})
    {
        const CDecoded decoded = Decode(body);
        EXPECT_EQ(decoded.result, Z_OK);
        EXPECT_EQ(decoded.bytes, text);
    }
}

TEST(DecodeGzip, DecodesAnEmptyStream)
{
    const CDecoded decoded = Decode(orva::test::GzipBytes(""));
    EXPECT_EQ(decoded.result, Z_OK);
    EXPECT_EQ(decoded.bytes, "");
}

TEST(DecodeGzip, ExactlyTheBoundFits)
{
    const std::string text(kMaximumDecodedLength, 'x');
    const CDecoded decoded = Decode(orva::test::GzipBytes(text));
    EXPECT_EQ(decoded.result, Z_OK);
    EXPECT_EQ(decoded.bytes, text);
}

TEST(DecodeGzip, OneByteMoreIsAnErrorThatKeepsWhatFits)
{
    const std::string text = std::string(kMaximumDecodedLength, 'x') + "y";
    const CDecoded decoded = Decode(orva::test::GzipBytes(text));
    EXPECT_EQ(decoded.result, Z_DATA_ERROR);
    EXPECT_EQ(decoded.bytes, text.substr(0, kMaximumDecodedLength));
}

TEST(DecodeGzip, FarMoreIsAnErrorThatKeepsWhatFits)
{
    std::string text;
    text.resize(20'000'000, 'x');
    const CDecoded decoded = Decode(orva::test::GzipBytes(text));
    EXPECT_EQ(decoded.result, Z_DATA_ERROR);
    EXPECT_EQ(decoded.bytes, text.substr(0, kMaximumDecodedLength));
}

TEST(DecodeGzip, AStreamThatEndsEarlyIsAnErrorThatKeepsWhatWasDecoded)
{
    const std::string text = Noise(50'000);
    const CDecoded decoded = Decode(orva::test::CutOff(orva::test::GzipBytes(text), 1'000));
    EXPECT_EQ(decoded.result, Z_DATA_ERROR);
    ASSERT_GT(decoded.bytes.size(), 10'000u);
    ASSERT_LT(decoded.bytes.size(), text.size());
    EXPECT_EQ(decoded.bytes, text.substr(0, decoded.bytes.size()));
}

TEST(DecodeGzip, AStreamWithoutItsTrailerIsAnErrorThatKeepsTheText)
{
    const CDecoded decoded = Decode(orva::test::CutOff(orva::test::GzipBytes("abc"), 8));
    EXPECT_EQ(decoded.result, Z_DATA_ERROR);
    EXPECT_EQ(decoded.bytes, "abc");
}

TEST(DecodeGzip, WhatIsNoStreamIsAnErrorWithoutBytes)
{
    const CDecoded decoded = Decode("{\"x64\":{}}");
    EXPECT_EQ(decoded.result, Z_DATA_ERROR);
    EXPECT_EQ(decoded.bytes, "");
    EXPECT_TRUE(decoded.hasBuffer);
}

TEST(DecodeGzip, CorruptDataIsAnErrorWithoutBytes)
{
    std::string body = orva::test::GzipBytes(std::string(1000, 'x') + Noise(1000));
    // The checksum, in front of the length at the end.
    body[body.size() - 8] = static_cast<char>(~body[body.size() - 8]);
    const CDecoded decoded = Decode(body);
    EXPECT_EQ(decoded.result, Z_DATA_ERROR);
    EXPECT_EQ(decoded.bytes, "");
    EXPECT_TRUE(decoded.hasBuffer);
}

TEST(DecodeGzip, NoBytesAreAnErrorWithoutBytes)
{
    const CDecoded decoded = Decode("");
    EXPECT_EQ(decoded.result, Z_DATA_ERROR);
    EXPECT_EQ(decoded.bytes, "");
    EXPECT_TRUE(decoded.hasBuffer);
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

    const CDecoded decoded = Decode(body);
    EXPECT_EQ(decoded.result, Z_DATA_ERROR);
    EXPECT_EQ(decoded.bytes, "");
}

TEST(DecodeGzip, IgnoresWhatFollowsTheStream)
{
    const CDecoded decoded = Decode(orva::test::GzipBytes("abc") + "more");
    EXPECT_EQ(decoded.result, Z_OK);
    EXPECT_EQ(decoded.bytes, "abc");
}
