#include "support/TextUtilities.h"

#include <utility>

// NOLINTNEXTLINE(performance-unnecessary-value-param): every conversion here takes its text by value
std::string WideToNarrow(std::wstring text)
{
    std::string narrow;
    narrow.reserve(text.size());
    for (const wchar_t unit : text)
    {
        narrow += static_cast<char>(static_cast<unsigned char>(unit & 0xFF));
    }
    return narrow;
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): every conversion here takes its text by value
std::wstring NarrowToWide(std::string text)
{
    std::wstring wide;
    wide.reserve(text.size());
    for (const char character : text)
    {
        wide += static_cast<wchar_t>(static_cast<signed char>(character));
    }
    return wide;
}

void ReplaceAll(std::wstring& text, const std::wstring& what, const std::wstring& with)
{
    if (what.empty())
    {
        return;
    }
    for (std::size_t at = text.find(what); at != std::wstring::npos; at = text.find(what, at + with.size()))
    {
        text.replace(at, what.size(), with);
    }
}

void ReplaceAll(std::wstring& text, const std::wstring& what, const CString& with)
{
    ReplaceAll(text, what, std::wstring(with.GetString()));
}

std::wstring EscapeXml(std::wstring text)
{
    using namespace std::string_literals;
    // Removing the reference's tail turns an escaped ampersand into a bare one, which the next pass escapes
    // once.
    ReplaceAll(text, L"#x26;", L""s);
    ReplaceAll(text, L"&", L"&#x26;"s);
    ReplaceAll(text, L"<", L"&#x3c;"s);
    ReplaceAll(text, L">", L"&#x3e;"s);
    return text;
}
