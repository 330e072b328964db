#include "afxstrvalue_.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace
{

// %hs and %S without l or w are narrow, as in every wide printf of the Microsoft runtime.
bool IsNarrow(const FormatPlaceholder& placeholder)
{
    switch (placeholder.size)
    {
    case FormatSize::kByte:
    case FormatSize::kShort:
        return true;
    case FormatSize::kLong:
    case FormatSize::kWide:
    case FormatSize::k64:
        return false;
    default:
        return placeholder.type == L'S' || placeholder.type == L'C';
    }
}

std::uint64_t CutToSize(long long value, FormatSize size, bool isSigned)
{
    switch (size)
    {
    case FormatSize::kByte:
        return isSigned ? static_cast<std::uint64_t>(static_cast<std::int8_t>(value))
                        : static_cast<std::uint8_t>(value);
    case FormatSize::kShort:
        return isSigned ? static_cast<std::uint64_t>(static_cast<std::int16_t>(value))
                        : static_cast<std::uint16_t>(value);
    case FormatSize::k64:
        return static_cast<std::uint64_t>(value);
    default:
        return isSigned ? static_cast<std::uint64_t>(static_cast<std::int32_t>(value))
                        : static_cast<std::uint32_t>(value);
    }
}

template <typename T> std::size_t BoundedLength(const T* text, std::size_t maxLength)
{
    std::size_t length = 0;
    while (length < maxLength && text[length] != T{})
    {
        ++length;
    }
    return length;
}

std::wstring Widen(std::string_view narrow)
{
    std::wstring wide(narrow.length(), L'\0'); // never more units than bytes
    const int length = narrow.empty()
                           ? 0
                           : MultiByteToWideChar(CP_ACP, 0, narrow.data(), static_cast<int>(narrow.length()),
                                                 wide.data(), static_cast<int>(wide.length()));
    wide.resize(static_cast<std::size_t>(length));
    return wide;
}

std::wstring Aligned(const FormatPlaceholder& placeholder, std::wstring text)
{
    const std::size_t width = static_cast<std::size_t>(placeholder.width);
    const std::size_t padding = text.length() < width ? width - text.length() : 0;
    text.insert(placeholder.isLeftAligned ? text.length() : 0, padding, L' ');
    return text;
}

} // namespace

std::wstring FormatInteger(const FormatPlaceholder& placeholder, const CFormatArgument& argument)
{
    const bool isSigned = placeholder.type == L'd' || placeholder.type == L'i';
    std::uint64_t value = CutToSize(argument.GetInteger(), placeholder.size, isSigned);
    const bool isZero = value == 0;

    std::wstring prefix;
    unsigned base = 10;
    LPCWSTR digitSet = L"0123456789abcdef";
    if (isSigned)
    {
        const bool isNegative = static_cast<std::int64_t>(value) < 0;
        value = isNegative ? 0 - value : value;
        prefix = isNegative ? L"-" : placeholder.hasPlus ? L"+" : placeholder.hasBlank ? L" " : L"";
    }
    else if (placeholder.type == L'o')
    {
        base = 8;
    }
    else if (placeholder.type != L'u')
    {
        base = 16;
        digitSet = placeholder.type == L'X' ? L"0123456789ABCDEF" : digitSet;
        prefix = !placeholder.hasPrefix || isZero ? L"" : placeholder.type == L'X' ? L"0X" : L"0x";
    }

    std::wstring digits;
    for (; value != 0; value /= base)
    {
        digits.insert(digits.begin(), digitSet[value % base]);
    }
    const std::size_t minDigits = placeholder.precision == FormatPlaceholder::kNoPrecision
                                      ? 1
                                      : static_cast<std::size_t>(placeholder.precision);
    if (digits.length() < minDigits)
    {
        digits.insert(0, minDigits - digits.length(), L'0');
    }
    if (base == 8 && placeholder.hasPrefix && !isZero && !digits.starts_with(L'0'))
    {
        digits.insert(digits.begin(), L'0');
    }
    const std::size_t length = prefix.length() + digits.length();
    const std::size_t width = static_cast<std::size_t>(placeholder.width);
    if (placeholder.hasZeros && !placeholder.isLeftAligned &&
        placeholder.precision == FormatPlaceholder::kNoPrecision && length < width)
    {
        digits.insert(0, width - length, L'0');
    }
    return Aligned(placeholder, prefix + digits);
}

std::wstring FormatCharacter(const FormatPlaceholder& placeholder, const CFormatArgument& argument)
{
    if (IsNarrow(placeholder))
    {
        const char character = static_cast<char>(argument.GetInteger());
        return Aligned(placeholder, Widen({&character, 1}));
    }
    return Aligned(placeholder, std::wstring(1, static_cast<wchar_t>(argument.GetInteger())));
}

std::wstring FormatString(const FormatPlaceholder& placeholder, const CFormatArgument& argument)
{
    const bool isNarrow = IsNarrow(placeholder);
    // A text may lack its terminator as long as the precision says where to stop.
    const std::size_t maxLength = placeholder.precision == FormatPlaceholder::kNoPrecision
                                      ? SIZE_MAX
                                      : static_cast<std::size_t>(placeholder.precision);
    std::wstring text;
    if (isNarrow && argument.GetNarrowText() != nullptr)
    {
        const LPCSTR narrow = argument.GetNarrowText();
        text = Widen({narrow, BoundedLength(narrow, maxLength)});
    }
    else if (!isNarrow && argument.GetWideText() != nullptr)
    {
        const LPCWSTR wide = argument.GetWideText();
        text.assign(wide, BoundedLength(wide, maxLength));
    }
    else
    {
        text.assign(L"(null)", std::min<std::size_t>(6, maxLength));
    }
    return Aligned(placeholder, text);
}

CFormatArgument::Kind FormatStringKind(const FormatPlaceholder& placeholder)
{
    return IsNarrow(placeholder) ? CFormatArgument::Kind::kNarrowText : CFormatArgument::Kind::kWideText;
}
