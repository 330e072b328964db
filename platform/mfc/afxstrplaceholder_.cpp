#include "afxstrplaceholder_.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cwchar>

namespace
{

constexpr int kMaxWidth = 65535;

class CPlaceholderReader
{
public:
    CPlaceholderReader(const wchar_t* next, CFormatArguments& arguments)
        : m_next(next), m_arguments(arguments)
    {
    }

    FormatPlaceholder Read()
    {
        ReadFlags();
        ReadWidth();
        ReadPrecision();
        ReadSize();
        m_placeholder.type = *m_next;
        if (m_placeholder.type != L'\0')
        {
            ++m_next;
        }
        return m_placeholder;
    }

    // Behind what was read.
    const wchar_t* Next() const { return m_next; }

private:
    void ReadFlags()
    {
        for (;; ++m_next)
        {
            bool* const flag = *m_next == L'-'   ? &m_placeholder.isLeftAligned
                               : *m_next == L'+' ? &m_placeholder.hasPlus
                               : *m_next == L'0' ? &m_placeholder.hasZeros
                               : *m_next == L'#' ? &m_placeholder.hasPrefix
                               : *m_next == L' ' ? &m_placeholder.hasBlank
                                                 : nullptr;
            if (flag == nullptr)
            {
                return;
            }
            *flag = true;
        }
    }

    void ReadWidth()
    {
        const int width = ReadNumber();
        m_placeholder.isLeftAligned |= width < 0;
        m_placeholder.width = std::min(std::abs(width), kMaxWidth);
    }

    void ReadPrecision()
    {
        if (*m_next != L'.')
        {
            return;
        }
        ++m_next;
        // A negative precision counts as none.
        m_placeholder.precision = std::clamp(ReadNumber(), FormatPlaceholder::kNoPrecision, kMaxWidth);
    }

    // Digits, or the argument that a * stands for, between plus and minus one above the limit of widths.
    int ReadNumber()
    {
        constexpr int kLimit = kMaxWidth + 1;
        if (*m_next == L'*')
        {
            ++m_next;
            const CFormatArgument* const argument = m_arguments.Take();
            if (argument == nullptr || argument->GetKind() != CFormatArgument::Kind::kInteger)
            {
                m_placeholder.isBroken = true;
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

    void ReadSize()
    {
        static constexpr struct
        {
            LPCWSTR letters;
            FormatSize size;
        } kSizes[] = {
            // Longer ones first. long and int both have 32 bits.
            {L"hh", FormatSize::kByte},
            {L"h", FormatSize::kShort},
            {L"ll", FormatSize::k64},
            {L"l", FormatSize::kLong},
            {L"w", FormatSize::kWide},
            {L"I64", FormatSize::k64},
            {L"I32", FormatSize::kLong},
            // The size of a pointer.
            {L"I", FormatSize::k64},
            {L"j", FormatSize::k64},
            {L"t", FormatSize::k64},
            {L"z", FormatSize::k64},
        };
        static_assert(sizeof(std::size_t) == 8 && sizeof(std::ptrdiff_t) == 8 && sizeof(long) == 4);
        for (const auto& [letters, size] : kSizes)
        {
            const std::size_t length = std::wcslen(letters);
            if (std::wcsncmp(m_next, letters, length) == 0)
            {
                m_next += length;
                m_placeholder.size = size;
                return;
            }
        }
    }

    const wchar_t* m_next;
    CFormatArguments& m_arguments;
    FormatPlaceholder m_placeholder;
};

} // namespace

FormatPlaceholder ReadFormatPlaceholder(const wchar_t*& next, CFormatArguments& arguments)
{
    CPlaceholderReader reader(next, arguments);
    const FormatPlaceholder placeholder = reader.Read();
    next = reader.Next();
    return placeholder;
}
