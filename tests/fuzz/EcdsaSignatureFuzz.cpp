// Fuzzes the decoding of a signature's text.
//
// An input that starts with 'P' is two numbers, 32 bytes each at most, which are encoded and decoded. Any
// other input is decoded as it is.
#include "fuzz/Fuzz.h"
#include "support/EcdsaSignature.h"

#include <algorithm>
#include <vector>

namespace
{

using Number = std::array<std::uint8_t, kEcdsaNumberSize>;

constexpr Number kOrder{0xFF, 0xFF, 0xFF, 0xFF, 0x00, 0x00, 0x00, 0x00, 0xFF, 0xFF, 0xFF,
                        0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xBC, 0xE6, 0xFA, 0xAD, 0xA7, 0x17,
                        0x9E, 0x84, 0xF3, 0xB9, 0xCA, 0xC2, 0xFC, 0x63, 0x25, 0x51};

std::string EncodeNumber(const Number& number)
{
    std::string bytes(number.begin(), number.end());
    bytes.erase(0, std::min(bytes.find_first_not_of('\0'), bytes.size() - 1));
    if ((static_cast<unsigned char>(bytes[0]) & 0x80U) != 0)
    {
        bytes.insert(bytes.begin(), '\0');
    }
    return std::string{2, static_cast<char>(bytes.size())} + bytes;
}

std::wstring EncodeBase64(const std::string& bytes)
{
    constexpr wchar_t kDigits[] = L"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::wstring text;
    for (std::size_t at = 0; at < bytes.size(); at += 3)
    {
        const std::size_t count = std::min<std::size_t>(3, bytes.size() - at);
        unsigned group = 0;
        for (std::size_t i = 0; i < 3; ++i)
        {
            group = group << 8U | (i < count ? static_cast<unsigned char>(bytes[at + i]) : 0U);
        }
        for (std::size_t i = 0; i < 4; ++i)
        {
            text += i <= count ? kDigits[group >> (18 - 6 * i) & 0x3FU] : L'=';
        }
    }
    return text;
}

std::wstring Encode(const Number& r, const Number& s)
{
    const std::string numbers = EncodeNumber(r) + EncodeNumber(s);
    return EncodeBase64(std::string{0x30, static_cast<char>(numbers.size())} + numbers);
}

bool IsInRange(const Number& number)
{
    return number != Number{} && number < kOrder;
}

void SplitNumbers(const EcdsaSignature& signature, Number& r, Number& s)
{
    std::copy_n(signature.begin(), r.size(), r.begin());
    std::copy_n(signature.begin() + kEcdsaNumberSize, s.size(), s.begin());
}

// Numbers are decoded from their text if they are in range.
void CheckNumbers(const std::string& bytes)
{
    Number r{};
    Number s{};
    std::copy_n(bytes.begin(), std::min(bytes.size(), r.size()), r.begin());
    if (bytes.size() > r.size())
    {
        std::copy_n(bytes.begin() + kEcdsaNumberSize, std::min(bytes.size() - r.size(), s.size()), s.begin());
    }
    EcdsaSignature signature{};
    const bool isDecoded = DecodeEcdsaSignature(Encode(r, s), signature);
    ORVA_PROPERTY(isDecoded == (IsInRange(r) && IsInRange(s)));
    if (isDecoded)
    {
        Number decodedR{};
        Number decodedS{};
        SplitNumbers(signature, decodedR, decodedS);
        ORVA_PROPERTY(decodedR == r && decodedS == s);
    }
}

// A text is decoded only if it is the one that its numbers give.
void CheckText(const std::wstring& text)
{
    EcdsaSignature signature{};
    // A copy of exactly this size, so that reading past its end is detected.
    const std::vector<wchar_t> exact(text.begin(), text.end());
    if (DecodeEcdsaSignature(std::wstring_view(exact.data(), exact.size()), signature))
    {
        Number r{};
        Number s{};
        SplitNumbers(signature, r, s);
        ORVA_PROPERTY(IsInRange(r) && IsInRange(s));
        ORVA_PROPERTY(Encode(r, s) == text);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string bytes = orva::fuzz::Bytes(data, size);
    if (bytes.starts_with('P'))
    {
        CheckNumbers(bytes.substr(1));
        return 0;
    }
    // As it is, and as the bytes that a text stands for.
    CheckText(orva::fuzz::Units(bytes));
    CheckText(EncodeBase64(bytes));
    return 0;
}
