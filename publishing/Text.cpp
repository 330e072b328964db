#include "publishing/Text.h"

#include <windows.h>

#include <algorithm>
#include <cwctype>

namespace publishing
{
namespace
{

constexpr std::size_t kLongestQuotation = 40;

bool IsLowSurrogate(wchar_t unit)
{
    return (unit & 0xFC00) == 0xDC00;
}

std::wstring Escaped(wchar_t unit)
{
    constexpr wchar_t kDigits[] = L"0123456789abcdef";
    switch (unit)
    {
    case L'\n':
        return L"\\n";
    case L'\r':
        return L"\\r";
    case L'\t':
        return L"\\t";
    default:
        return unit >= L' ' ? std::wstring(1, unit)
                            : std::wstring(L"\\u00") + kDigits[unit / 16] + kDigits[unit % 16];
    }
}

} // namespace

std::string Utf8(std::wstring_view text)
{
    const int length = static_cast<int>(text.size());
    const int needed = WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    std::string utf8(static_cast<std::size_t>(needed), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), length, utf8.data(), needed, nullptr, nullptr);
    return utf8;
}

std::wstring Wide(std::string_view utf8)
{
    const int length = static_cast<int>(utf8.size());
    const int needed = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), length, nullptr, 0);
    std::wstring text(static_cast<std::size_t>(needed), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, utf8.data(), length, text.data(), needed);
    return text;
}

std::wstring Quoted(std::wstring_view text)
{
    std::wstring quoted = L"\"";
    std::size_t length = std::min(text.size(), kLongestQuotation);
    if (length < text.size() && IsLowSurrogate(text[length]))
    {
        ++length;
    }
    for (const wchar_t unit : text.substr(0, length))
    {
        quoted += Escaped(unit);
    }
    return quoted + (length < text.size() ? L"...\"" : L"\"");
}

std::wstring PlaceOf(std::wstring_view text, std::size_t index)
{
    std::size_t line = 1;
    std::size_t column = 1;
    for (std::size_t i = 0; i < std::min(index, text.size()); ++i)
    {
        const bool isCrOfCrLf = text[i] == L'\r' && i + 1 < text.size() && text[i + 1] == L'\n';
        if (text[i] == L'\n' || (text[i] == L'\r' && !isCrOfCrLf))
        {
            ++line;
            column = 1;
        }
        else if (!IsLowSurrogate(text[i]))
        {
            ++column;
        }
    }
    return L"line " + std::to_wstring(line) + L", column " + std::to_wstring(column);
}

std::wstring WhatStandsAt(std::wstring_view text, std::size_t index)
{
    if (index >= text.size())
    {
        return L"the end of the text";
    }
    const std::wstring_view rest = text.substr(index);
    return Quoted(rest.substr(0, rest.find_first_of(L"\r\n", 1)));
}

std::size_t SkipWhiteSpace(std::wstring_view text, std::size_t index)
{
    while (index < text.size() && std::iswspace(text[index]) != 0)
    {
        ++index;
    }
    return index;
}

} // namespace publishing
