#include "platform/atl/RegistrationData.h"

namespace ATL
{

namespace
{

// The value of a digit in any base up to 16, or -1.
constexpr int DigitValue(wchar_t c)
{
    if (c >= L'0' && c <= L'9')
    {
        return c - L'0';
    }
    const wchar_t lower = ToLowerAsciiLetter(c);
    return lower >= L'a' && lower <= L'f' ? lower - L'a' + 10 : -1;
}

} // namespace

bool ParseRegistrationDword(std::wstring_view text, std::uint32_t& value)
{
    std::uint64_t base = 10;
    if (text.size() > 2 && (text.substr(0, 2) == L"0x" || text.substr(0, 2) == L"0X" ||
                            text.substr(0, 2) == L"&H" || text.substr(0, 2) == L"&h"))
    {
        base = 16;
        text.remove_prefix(2);
    }
    if (text.empty())
    {
        return false;
    }
    std::uint64_t sum = 0;
    for (const wchar_t c : text)
    {
        const int digit = DigitValue(c);
        if (digit < 0 || static_cast<std::uint64_t>(digit) >= base)
        {
            return false;
        }
        sum = sum * base + static_cast<std::uint64_t>(digit);
        if (sum > 0xFFFFFFFFu)
        {
            return false;
        }
    }
    value = static_cast<std::uint32_t>(sum);
    return true;
}

bool ParseRegistrationBinary(std::wstring_view text, std::vector<std::uint8_t>& bytes)
{
    if (text.size() % 2 != 0)
    {
        return false;
    }
    bytes.reserve(text.size() / 2);
    for (std::size_t i = 0; i < text.size(); i += 2)
    {
        const int high = DigitValue(text[i]);
        const int low = DigitValue(text[i + 1]);
        if (high < 0 || low < 0)
        {
            return false;
        }
        bytes.push_back(static_cast<std::uint8_t>(high * 16 + low));
    }
    return true;
}

std::vector<std::wstring> ParseRegistrationMultiString(std::wstring_view text)
{
    constexpr std::wstring_view kSeparator = L"\\0";
    std::vector<std::wstring> parts;
    while (!text.empty())
    {
        const std::size_t end = text.find(kSeparator);
        const std::wstring_view part = text.substr(0, end);
        if (!part.empty())
        {
            parts.emplace_back(part);
        }
        text.remove_prefix(end == std::wstring_view::npos ? text.size() : end + kSeparator.size());
    }
    return parts;
}

} // namespace ATL
