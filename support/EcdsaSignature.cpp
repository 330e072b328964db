#include "support/EcdsaSignature.h"

#include <algorithm>
#include <span>
#include <vector>

namespace
{

constexpr std::uint8_t kSequence = 0x30;
constexpr std::uint8_t kInteger = 0x02;
constexpr std::size_t kTagAndLength = 2;
// An integer with this bit in its first byte is negative, and a length with it has more bytes.
constexpr std::uint8_t kHighBit = 0x80;

// A number may have a byte of zero before it.
constexpr std::size_t kLongestSignature = kTagAndLength + 2 * (kTagAndLength + 1 + kEcdsaNumberSize);

constexpr std::size_t kDigitsInGroup = 4;
constexpr std::size_t kBytesInGroup = 3;
constexpr std::size_t kLongestText = (kLongestSignature + kBytesInGroup - 1) / kBytesInGroup * kDigitsInGroup;

// The number of points on the curve, n (FIPS 186-4, D.1.2.3).
constexpr std::array<std::uint8_t, kEcdsaNumberSize> kOrder{
    0xFF, 0xFF, 0xFF, 0xFF, 0x00, 0x00, 0x00, 0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,
    0xBC, 0xE6, 0xFA, 0xAD, 0xA7, 0x17, 0x9E, 0x84, 0xF3, 0xB9, 0xCA, 0xC2, 0xFC, 0x63, 0x25, 0x51};

// The bytes of a text, or none if it is not base64 or too long for a signature.
std::vector<std::uint8_t> DecodeBase64(std::wstring_view text)
{
    constexpr std::wstring_view kDigits = L"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    constexpr unsigned kBitsInDigit = 6;
    constexpr unsigned kBitsInByte = 8;
    if (text.size() % kDigitsInGroup != 0 || text.size() > kLongestText)
    {
        return {};
    }
    for (int padding = 0; padding < 2 && text.ends_with(L'='); ++padding)
    {
        text.remove_suffix(1);
    }
    std::vector<std::uint8_t> bytes;
    std::size_t bits = 0;
    unsigned bitCount = 0;
    for (const wchar_t character : text)
    {
        const std::size_t digit = kDigits.find(character);
        if (digit == std::wstring_view::npos)
        {
            return {};
        }
        bits = bits << kBitsInDigit | digit;
        bitCount += kBitsInDigit;
        if (bitCount >= kBitsInByte)
        {
            bitCount -= kBitsInByte;
            bytes.push_back(static_cast<std::uint8_t>(bits >> bitCount));
            bits &= (std::size_t{1} << bitCount) - 1;
        }
    }
    return bits == 0 ? bytes : std::vector<std::uint8_t>();
}

// Takes an INTEGER from the beginning of `der`. False if there is none, or none from 1 to n - 1 in its
// shortest form.
bool TakeNumber(std::span<const std::uint8_t>& der, std::span<std::uint8_t, kEcdsaNumberSize> number)
{
    if (der.size() <= kTagAndLength || der[0] != kInteger || der[1] == 0 ||
        der[1] > der.size() - kTagAndLength)
    {
        return false;
    }
    std::span<const std::uint8_t> digits = der.subspan(kTagAndLength, der[1]);
    der = der.subspan(kTagAndLength + digits.size());
    if (digits[0] >= kHighBit)
    {
        return false;
    }
    if (digits[0] == 0)
    {
        // Only before a byte that would make the number negative. The number 0 is refused with that, too.
        if (digits.size() == 1 || digits[1] < kHighBit)
        {
            return false;
        }
        digits = digits.subspan(1);
    }
    if (digits.size() > number.size())
    {
        return false;
    }
    std::ranges::fill(number, std::uint8_t{0});
    std::ranges::copy_backward(digits, number.end());
    return std::ranges::lexicographical_compare(number, kOrder);
}

} // namespace

bool DecodeEcdsaSignature(std::wstring_view text, EcdsaSignature& signature)
{
    const std::vector<std::uint8_t> bytes = DecodeBase64(text);
    if (bytes.size() < kTagAndLength || bytes[0] != kSequence || bytes[1] != bytes.size() - kTagAndLength)
    {
        return false;
    }
    std::span<const std::uint8_t> numbers = std::span(bytes).subspan(kTagAndLength);
    const std::span<std::uint8_t, 2 * kEcdsaNumberSize> decoded(signature);
    return TakeNumber(numbers, decoded.first<kEcdsaNumberSize>()) &&
           TakeNumber(numbers, decoded.last<kEcdsaNumberSize>()) && numbers.empty();
}
