// The text of a signature: base64 and DER, of which one form only is read.
#include "support/EcdsaSignature.h"

#include "harness/Signer.h"
#include "harness/Text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>

namespace orva::test
{
namespace
{

using namespace std::string_literals;

std::optional<EcdsaSignature> Decode(const std::string& text)
{
    EcdsaSignature signature{};
    return DecodeEcdsaSignature(Widen(text), signature) ? std::optional(signature) : std::nullopt;
}

bool IsRefused(const std::string& der)
{
    return !Decode(Base64(der));
}

CurveNumber Number(std::string_view lastBytes)
{
    CurveNumber number{};
    std::copy_backward(lastBytes.begin(), lastBytes.end(), number.end());
    return number;
}

// n - 1 for the curve's order n, as a byte string with a sign byte, and n itself.
const std::string kLargest =
    "\0\xFF\xFF\xFF\xFF\0\0\0\0\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xBC\xE6\xFA\xAD\xA7\x17\x9E\x84\xF3\xB9\xCA\xC2\xFC\x63\x25\x50"s;
const std::string kOrder = kLargest.substr(0, 32) + "\x51";
const std::string kOne = DerInteger("\x01");

TEST(DecodeEcdsaSignature, GivesBothNumbersInTheirFullSize)
{
    const std::optional<EcdsaSignature> decoded =
        Decode(Base64(DerSequence(DerInteger("\x01\x02") + DerInteger("\0\x80\x03"s))));
    ASSERT_TRUE(decoded);
    EcdsaSignature expected{};
    expected[30] = 1;
    expected[31] = 2;
    expected[62] = 0x80;
    expected[63] = 3;
    EXPECT_EQ(*decoded, expected);
}

TEST(DecodeEcdsaSignature, TakesNumbersFromOneToTheOrderMinusOne)
{
    for (const std::string& number : {kOne, DerInteger(kLargest)})
    {
        EXPECT_FALSE(IsRefused(DerSequence(number + kOne)));
        EXPECT_FALSE(IsRefused(DerSequence(kOne + number)));
    }
}

/// What stands in the place of r or of s.
struct CBadNumber
{
    const char* name;
    std::string bytes;
};

class BadNumberTest : public testing::TestWithParam<CBadNumber>
{
};

TEST_P(BadNumberTest, IsRefusedInBothPlaces)
{
    EXPECT_TRUE(IsRefused(DerSequence(GetParam().bytes + kOne)));
    EXPECT_TRUE(IsRefused(DerSequence(kOne + GetParam().bytes)));
}

INSTANTIATE_TEST_SUITE_P(
    Numbers, BadNumberTest,
    testing::Values(CBadNumber{"Zero", DerInteger("\0"s)}, CBadNumber{"Order", DerInteger(kOrder)},
                    CBadNumber{"AboveTheOrder", DerInteger("\0"s + std::string(32, '\xFF'))},
                    CBadNumber{"Negative", DerInteger("\x80\x01")},
                    CBadNumber{"MinusOne", DerInteger("\xFF")},
                    CBadNumber{"LeadingZero", DerInteger("\0\x01"s)},
                    CBadNumber{"TwoLeadingZeros", DerInteger("\0\0\x80"s)},
                    CBadNumber{"LeadingZeroInFullSize", DerInteger("\0\x7F"s + std::string(31, '\x01'))},
                    CBadNumber{"LongerThanTheOrder", DerInteger("\x01" + std::string(32, '\0'))},
                    CBadNumber{"Empty", DerInteger("")}, CBadNumber{"NotAnInteger", "\x04\x01\x01"},
                    CBadNumber{"LongFormOfItsLength", "\x02\x81\x01\x01"},
                    CBadNumber{"LengthWithoutBytes", "\x02\x80\x01"},
                    CBadNumber{"LongerThanWhatIsThere", "\x02\x05\x01"}, CBadNumber{"TagAlone", "\x02"},
                    CBadNumber{"Missing", ""}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(DecodeEcdsaSignature, RefusesASequenceThatIsNotExactlyTheTwoNumbers)
{
    const std::string content = kOne + kOne;
    EXPECT_FALSE(IsRefused(DerSequence(content)));
    EXPECT_TRUE(IsRefused(DerSequence(content) + "\0"s)) << "a byte after it";
    EXPECT_TRUE(IsRefused(DerSequence(content + "\0"s))) << "a byte in it";
    EXPECT_TRUE(IsRefused(DerSequence(content + kOne))) << "a third number";
    EXPECT_TRUE(IsRefused("\x31" + DerSequence(content).substr(1))) << "a set";
    EXPECT_TRUE(IsRefused("\x30\x05" + content)) << "its length too small";
    EXPECT_TRUE(IsRefused("\x30\x07" + content)) << "its length too large";
    EXPECT_TRUE(IsRefused("\x30\x81\x06" + content)) << "the long form of its length";
    EXPECT_TRUE(IsRefused("\x30\x80" + content + "\0\0"s)) << "of indefinite length";
    EXPECT_TRUE(IsRefused(content)) << "no sequence";
    EXPECT_TRUE(IsRefused("\x30"));
    EXPECT_TRUE(IsRefused(DerSequence("")));
}

TEST(DecodeEcdsaSignature, RefusesEveryBeginningOfASignature)
{
    const std::string text = Base64(DerSignature(Number("\x80one"), Number("\x7Ftwo")));
    EXPECT_TRUE(Decode(text));
    for (size_t size = 0; size < text.size(); ++size)
    {
        EXPECT_FALSE(Decode(text.substr(0, size))) << size;
    }
}

TEST(DecodeEcdsaSignature, RefusesBlanksLineEndsAndOtherCharactersAtEachPlace)
{
    const std::string text = Base64(DerSequence(kOne + kOne));
    ASSERT_EQ(text, "MAYCAQECAQE=");
    for (const std::string& inserted : {" "s, "\n"s, "\r\n"s, "\t"s, "\0"s, "="s, "-"s, "_"s, "."s})
    {
        for (size_t at = 0; at <= text.size(); ++at)
        {
            // Also in the place of characters, so that the length stays one of whole groups.
            EXPECT_FALSE(Decode(std::string(text).insert(at, inserted))) << inserted << at;
            EXPECT_FALSE(Decode(std::string(text).insert(at, inserted + inserted + inserted + inserted)))
                << inserted << at;
            if (at < text.size() && text.compare(at, inserted.size(), inserted) != 0)
            {
                EXPECT_FALSE(Decode(std::string(text).replace(at, inserted.size(), inserted)))
                    << inserted << at;
            }
        }
    }
}

TEST(DecodeEcdsaSignature, RefusesOtherFormsOfTheSameBytes)
{
    EXPECT_FALSE(Decode("MAYCAQECAQE")) << "without padding";
    EXPECT_FALSE(Decode("MAYCAQECAQE==")) << "with too much";
    EXPECT_FALSE(Decode("MAYCAQECAQF=")) << "with a bit behind the last byte";
    EXPECT_FALSE(Decode("MAcCAQECAgC===="));
    // The same with two bits or four of the last digit left.
    const std::string four = Base64(DerSequence(kOne + DerInteger("\x01\x02\x03")));
    ASSERT_TRUE(four.ends_with("Aw==")) << four;
    EXPECT_TRUE(Decode(four));
    EXPECT_FALSE(Decode(four.substr(0, four.size() - 3) + "x=="));
}

TEST(DecodeEcdsaSignature, ReadsNoCharacterByItsLowByte)
{
    std::wstring text = L"MAYCAQECAQE=";
    EcdsaSignature signature{};
    EXPECT_TRUE(DecodeEcdsaSignature(text, signature));
    text[0] = L'\x014D';
    EXPECT_FALSE(DecodeEcdsaSignature(text, signature));
}

TEST(DecodeEcdsaSignature, RefusesALongText)
{
    EXPECT_FALSE(Decode(std::string(250'000, 'A')));
    const std::string longest = DerSequence(DerInteger(kLargest) + DerInteger(kLargest));
    EXPECT_FALSE(IsRefused(longest));
    EXPECT_EQ(Base64(longest).size(), 96u);
}

} // namespace
} // namespace orva::test
