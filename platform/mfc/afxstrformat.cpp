// CString::Format: the placeholders of the Microsoft runtime's wide printf, filled in from checked arguments.
#include <afxstr.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cwchar>
#include <string_view>
#include <utility>

namespace
{

constexpr int kMaxWidth = 65535;
constexpr int kNoPrecision = -1;

/// What a size letter makes of the argument.
enum class Size
{
    kDefault,
    kByte,
    kShort,
    kLong,
    kWide,
    k64,
};

/// One placeholder, from its percent sign to its type letter.
struct Placeholder
{
    bool isLeftAligned = false;
    bool hasPlus = false;
    bool hasZeros = false;
    bool hasPrefix = false;
    bool hasBlank = false;
    int width = 0;
    int precision = kNoPrecision;
    Size size = Size::kDefault;
    wchar_t type = L'\0';
    /// The argument of a * was missing or no integer: the placeholder cannot be filled in.
    bool isBroken = false;
};

/// Fills in one format text; used once.
class CFormatter
{
public:
    CFormatter(LPCWSTR format, std::initializer_list<CFormatArgument> arguments)
        : m_next(format), m_argument(arguments.begin()), m_argumentsEnd(arguments.end())
    {
    }

    std::wstring Run()
    {
        while (*m_next != L'\0')
        {
            const wchar_t* const percent = std::wcschr(m_next, L'%');
            if (percent == nullptr)
            {
                m_result += m_next;
                break;
            }
            m_result.append(m_next, percent);
            m_next = percent + 1;
            Replace(percent);
        }
        return std::move(m_result);
    }

private:
    /// Reads the placeholder that begins at `percent` and appends what takes its place.
    void Replace(const wchar_t* percent)
    {
        Placeholder placeholder;
        ReadFlags(placeholder);
        placeholder.width = ReadWidth(placeholder);
        ReadPrecision(placeholder);
        ReadSize(placeholder);
        placeholder.type = *m_next;
        if (placeholder.type != L'\0')
        {
            ++m_next;
        }

        const auto isOneOf = [&](std::wstring_view types) {
            return types.find(placeholder.type) != std::wstring_view::npos;
        };
        bool isFilledIn = false;
        if (isOneOf(L"diuoxX"))
        {
            isFilledIn = AppendInteger(placeholder);
        }
        else if (isOneOf(L"cC"))
        {
            isFilledIn = AppendCharacter(placeholder);
        }
        else if (isOneOf(L"sS"))
        {
            isFilledIn = AppendText(placeholder);
        }
        else if (isOneOf(L"eEfFgGaAp"))
        {
            TakeArgument();
        }
        else
        {
            // No placeholder at all: only its percent sign goes, which is also how %% becomes one.
            ++percent;
        }
        if (!isFilledIn)
        {
            m_result.append(percent, m_next);
        }
    }

    void ReadFlags(Placeholder& placeholder)
    {
        for (;; ++m_next)
        {
            bool* const flag = *m_next == L'-'   ? &placeholder.isLeftAligned
                               : *m_next == L'+' ? &placeholder.hasPlus
                               : *m_next == L'0' ? &placeholder.hasZeros
                               : *m_next == L'#' ? &placeholder.hasPrefix
                               : *m_next == L' ' ? &placeholder.hasBlank
                                                 : nullptr;
            if (flag == nullptr)
            {
                return;
            }
            *flag = true;
        }
    }

    int ReadWidth(Placeholder& placeholder)
    {
        const int width = ReadNumber(placeholder);
        placeholder.isLeftAligned |= width < 0;
        return std::min(std::abs(width), kMaxWidth);
    }

    void ReadPrecision(Placeholder& placeholder)
    {
        if (*m_next != L'.')
        {
            return;
        }
        ++m_next;
        // A negative precision counts as none.
        placeholder.precision = std::clamp(ReadNumber(placeholder), kNoPrecision, kMaxWidth);
    }

    /// Digits, or the argument that a * stands for, between plus and minus one above the limit of widths.
    int ReadNumber(Placeholder& placeholder)
    {
        constexpr int kLimit = kMaxWidth + 1;
        if (*m_next == L'*')
        {
            ++m_next;
            const CFormatArgument* const argument = TakeArgument();
            if (argument == nullptr || argument->GetKind() != CFormatArgument::Kind::kInteger)
            {
                placeholder.isBroken = true;
                return 0;
            }
            return std::clamp(static_cast<int>(argument->GetInteger()), -kLimit, kLimit);
        }
        int number = 0;
        for (; *m_next >= L'0' && *m_next <= L'9'; ++m_next)
        {
            number = std::min(number * 10 + (*m_next - L'0'), kLimit);
        }
        return number;
    }

    void ReadSize(Placeholder& placeholder)
    {
        static constexpr struct
        {
            LPCWSTR letters;
            Size size;
        } kSizes[] = {
            // Longer ones first. long and int both have 32 bits.
            {L"hh", Size::kByte},
            {L"h", Size::kShort},
            {L"ll", Size::k64},
            {L"l", Size::kLong},
            {L"w", Size::kWide},
            {L"I64", Size::k64},
            {L"I32", Size::kLong},
            // The size of a pointer.
            {L"I", Size::k64},
            {L"j", Size::k64},
            {L"t", Size::k64},
            {L"z", Size::k64},
        };
        static_assert(sizeof(std::size_t) == 8 && sizeof(std::ptrdiff_t) == 8 && sizeof(long) == 4);
        for (const auto& [letters, size] : kSizes)
        {
            const std::size_t length = std::wcslen(letters);
            if (std::wcsncmp(m_next, letters, length) == 0)
            {
                m_next += length;
                placeholder.size = size;
                return;
            }
        }
    }

    const CFormatArgument* TakeArgument() { return m_argument != m_argumentsEnd ? m_argument++ : nullptr; }

    /// The next argument if the placeholder can be filled in from an argument of `kind`; used up in any case.
    const CFormatArgument* TakeArgument(const Placeholder& placeholder, CFormatArgument::Kind kind)
    {
        const CFormatArgument* const argument = TakeArgument();
        return !placeholder.isBroken && argument != nullptr && argument->GetKind() == kind ? argument
                                                                                           : nullptr;
    }

    /// %hs and %S without l or w are narrow, as in every wide printf of the Microsoft runtime.
    static bool IsNarrow(const Placeholder& placeholder)
    {
        switch (placeholder.size)
        {
        case Size::kByte:
        case Size::kShort:
            return true;
        case Size::kLong:
        case Size::kWide:
        case Size::k64:
            return false;
        default:
            return placeholder.type == L'S' || placeholder.type == L'C';
        }
    }

    static std::uint64_t CutToSize(long long value, Size size, bool isSigned)
    {
        switch (size)
        {
        case Size::kByte:
            return isSigned ? static_cast<std::uint64_t>(static_cast<std::int8_t>(value))
                            : static_cast<std::uint8_t>(value);
        case Size::kShort:
            return isSigned ? static_cast<std::uint64_t>(static_cast<std::int16_t>(value))
                            : static_cast<std::uint16_t>(value);
        case Size::k64:
            return static_cast<std::uint64_t>(value);
        default:
            return isSigned ? static_cast<std::uint64_t>(static_cast<std::int32_t>(value))
                            : static_cast<std::uint32_t>(value);
        }
    }

    bool AppendInteger(const Placeholder& placeholder)
    {
        const CFormatArgument* const argument = TakeArgument(placeholder, CFormatArgument::Kind::kInteger);
        if (argument == nullptr)
        {
            return false;
        }
        const bool isSigned = placeholder.type == L'd' || placeholder.type == L'i';
        std::uint64_t value = CutToSize(argument->GetInteger(), placeholder.size, isSigned);
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
        const std::size_t minDigits =
            placeholder.precision == kNoPrecision ? 1 : static_cast<std::size_t>(placeholder.precision);
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
        if (placeholder.hasZeros && !placeholder.isLeftAligned && placeholder.precision == kNoPrecision &&
            length < width)
        {
            digits.insert(0, width - length, L'0');
        }
        AppendAligned(placeholder, prefix + digits);
        return true;
    }

    bool AppendCharacter(const Placeholder& placeholder)
    {
        const CFormatArgument* const argument = TakeArgument(placeholder, CFormatArgument::Kind::kInteger);
        if (argument == nullptr)
        {
            return false;
        }
        if (IsNarrow(placeholder))
        {
            const char character = static_cast<char>(argument->GetInteger());
            AppendAligned(placeholder, Widen({&character, 1}));
        }
        else
        {
            AppendAligned(placeholder, std::wstring(1, static_cast<wchar_t>(argument->GetInteger())));
        }
        return true;
    }

    bool AppendText(const Placeholder& placeholder)
    {
        const bool isNarrow = IsNarrow(placeholder);
        const CFormatArgument* const argument = TakeArgument(
            placeholder, isNarrow ? CFormatArgument::Kind::kNarrowText : CFormatArgument::Kind::kWideText);
        if (argument == nullptr)
        {
            return false;
        }
        // A text may lack its terminator as long as the precision says where to stop.
        const std::size_t maxLength = placeholder.precision == kNoPrecision
                                          ? SIZE_MAX
                                          : static_cast<std::size_t>(placeholder.precision);
        std::wstring text;
        if (isNarrow && argument->GetNarrowText() != nullptr)
        {
            const LPCSTR narrow = argument->GetNarrowText();
            text = Widen({narrow, BoundedLength(narrow, maxLength)});
        }
        else if (!isNarrow && argument->GetWideText() != nullptr)
        {
            const LPCWSTR wide = argument->GetWideText();
            text.assign(wide, BoundedLength(wide, maxLength));
        }
        else
        {
            text.assign(L"(null)", std::min<std::size_t>(6, maxLength));
        }
        AppendAligned(placeholder, text);
        return true;
    }

    template <typename T> static std::size_t BoundedLength(const T* text, std::size_t maxLength)
    {
        std::size_t length = 0;
        while (length < maxLength && text[length] != T{})
        {
            ++length;
        }
        return length;
    }

    static std::wstring Widen(std::string_view narrow)
    {
        std::wstring wide(narrow.length(), L'\0'); // never more units than bytes
        const int length =
            narrow.empty() ? 0
                           : MultiByteToWideChar(CP_ACP, 0, narrow.data(), static_cast<int>(narrow.length()),
                                                 wide.data(), static_cast<int>(wide.length()));
        wide.resize(static_cast<std::size_t>(length));
        return wide;
    }

    void AppendAligned(const Placeholder& placeholder, const std::wstring& text)
    {
        const std::size_t width = static_cast<std::size_t>(placeholder.width);
        const std::size_t padding = text.length() < width ? width - text.length() : 0;
        m_result.append(placeholder.isLeftAligned ? 0 : padding, L' ');
        m_result += text;
        m_result.append(placeholder.isLeftAligned ? padding : 0, L' ');
    }

    const wchar_t* m_next;
    const CFormatArgument* m_argument;
    const CFormatArgument* const m_argumentsEnd;
    std::wstring m_result;
};

} // namespace

void CString::FormatArguments(LPCWSTR format, std::initializer_list<CFormatArgument> arguments)
{
    // Made aside first: the text itself may be the format or among the arguments.
    m_text.Assign(CFormatter(format != nullptr ? format : L"", arguments).Run());
}
