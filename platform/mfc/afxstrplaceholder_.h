// The placeholders of CString::Format, as they stand in the format text.
#pragma once

#include <afxstr.h>

#include <span>

/// What follows the format text, handed out one after the other.
class CFormatArguments
{
public:
    explicit CFormatArguments(std::span<const CFormatArgument> arguments) : m_left(arguments) {}

    /// The next one; null when all have been handed out.
    const CFormatArgument* Take()
    {
        if (m_left.empty())
        {
            return nullptr;
        }
        const CFormatArgument* const argument = &m_left.front();
        m_left = m_left.subspan(1);
        return argument;
    }

private:
    std::span<const CFormatArgument> m_left;
};

/// What a size letter makes of the argument.
enum class FormatSize
{
    kDefault,
    kByte,
    kShort,
    kLong,
    kWide,
    k64,
};

/// One placeholder, from its percent sign to its type letter.
struct FormatPlaceholder
{
    static constexpr int kNoPrecision = -1;

    bool isLeftAligned = false;
    bool hasPlus = false;
    bool hasZeros = false;
    bool hasPrefix = false;
    bool hasBlank = false;
    int width = 0;
    int precision = kNoPrecision;
    FormatSize size = FormatSize::kDefault;
    wchar_t type = L'\0';
    /// The argument of a * was missing or no integer: the placeholder cannot be filled in.
    bool isBroken = false;
};

/// Reads the placeholder whose percent sign stands before `next`, and moves `next` behind it. A * uses up an
/// argument. A text that ends within the placeholder gives the type 0.
FormatPlaceholder ReadFormatPlaceholder(const wchar_t*& next, CFormatArguments& arguments);
