// Fuzzes the taking apart of URLs, and the text conversions that it and the log use.
//
// The system's part is played here: a plain URL splitter that uses every liberty the seam leaves it. It fills
// the buffers to their last character, writes no end, and leaves rubbish in them when it refuses.
#include "Fuzz.h"
#include "support/TextUtilities.h"
#include "support/UrlCracker.h"
#include "support/UrlSystem.h"

#include <algorithm>

namespace
{

struct SystemParts
{
    std::wstring url;
    std::wstring host;
    std::wstring path;
    int scheme = 0;
    std::uint16_t port = 0;
};

// What the system's part was asked last and what it answered.
SystemParts g_system;

int HexDigit(wchar_t c)
{
    if (c >= L'0' && c <= L'9')
    {
        return static_cast<int>(c - L'0');
    }
    if (c >= L'a' && c <= L'f')
    {
        return static_cast<int>(c - L'a') + 10;
    }
    return c >= L'A' && c <= L'F' ? static_cast<int>(c - L'A') + 10 : -1;
}

std::wstring DecodeEscapes(const std::wstring& text)
{
    std::wstring decoded;
    for (std::size_t at = 0; at < text.size(); ++at)
    {
        const int high = text[at] == L'%' && at + 2 < text.size() ? HexDigit(text[at + 1]) : -1;
        const int low = high >= 0 ? HexDigit(text[at + 2]) : -1;
        if (low >= 0)
        {
            decoded += static_cast<wchar_t>(16 * high + low);
            at += 2;
        }
        else
        {
            decoded += text[at];
        }
    }
    return decoded;
}

// Up to the first zero character, and each character's low byte.
std::string LowBytes(const std::wstring& text)
{
    std::string bytes;
    for (const wchar_t unit : text.substr(0, text.find(L'\0')))
    {
        bytes += static_cast<char>(static_cast<unsigned char>(unit & 0xFF));
    }
    return bytes;
}

void CheckCracking(const std::string& url)
{
    const CrackedUrl before = {"before", "/before", -7, 7};
    CrackedUrl parts = before;
    g_system = {};
    const bool isCracked = CrackUrl(url, parts);
    ORVA_PROPERTY(g_system.url == WidenAnsi(url));
    if (!isCracked)
    {
        ORVA_PROPERTY(parts.host == before.host && parts.path == before.path);
        ORVA_PROPERTY(parts.scheme == before.scheme && parts.port == before.port);
        return;
    }
    ORVA_PROPERTY(parts.host.size() <= kUrlPartCapacity && parts.path.size() <= kUrlPartCapacity);
    ORVA_PROPERTY(parts.host == LowBytes(g_system.host) && parts.path == LowBytes(g_system.path));
    ORVA_PROPERTY(parts.scheme == g_system.scheme && parts.port == g_system.port);
}

void CheckWidth(const std::string& bytes)
{
    const std::wstring wide = NarrowToWide(bytes);
    ORVA_PROPERTY(std::ranges::all_of(wide, [](wchar_t unit) {
        return (unit >= 0 && unit <= 0x7F) || (unit >= 0xFF80 && unit <= 0xFFFF);
    }));
    ORVA_PROPERTY(WideToNarrow(wide) == bytes);
}

std::wstring Replaced(const std::wstring& text, const std::wstring& what, const std::wstring& with)
{
    std::wstring replaced;
    for (std::size_t at = 0; at < text.size();)
    {
        const bool isHere = !what.empty() && text.compare(at, what.size(), what) == 0;
        replaced += isHere ? with : std::wstring(1, text[at]);
        at += isHere ? what.size() : 1;
    }
    return replaced;
}

// The input's first two lines are what to replace and by what.
void CheckReplacing(const std::wstring& text)
{
    const std::size_t first = text.find(L'\n');
    const std::size_t second = first != std::wstring::npos ? text.find(L'\n', first + 1) : first;
    if (second == std::wstring::npos)
    {
        return;
    }
    const std::wstring what = text.substr(0, first);
    const std::wstring with = text.substr(first + 1, second - first - 1);
    std::wstring replaced = text.substr(second + 1);
    const std::wstring expected = Replaced(replaced, what, with);
    ReplaceAll(replaced, what, with);
    ORVA_PROPERTY(replaced == expected);
}

void CheckEscaping(const std::wstring& text)
{
    const std::wstring escaped = EscapeXml(text);
    ORVA_PROPERTY(escaped.find_first_of(L"<>") == std::wstring::npos);
    std::wstring back;
    for (std::size_t at = 0; at < escaped.size(); ++at)
    {
        if (escaped[at] != L'&')
        {
            back += escaped[at];
            continue;
        }
        constexpr std::size_t kReference = 6;
        const std::wstring reference = escaped.substr(at, kReference);
        ORVA_PROPERTY(reference == L"&#x26;" || reference == L"&#x3c;" || reference == L"&#x3e;");
        back += static_cast<wchar_t>(16 * HexDigit(reference[3]) + HexDigit(reference[4]));
        at += kReference - 1;
    }
    ORVA_PROPERTY(back == Replaced(text, L"#x26;", L""));
}

} // namespace

// Like a code page whose upper half holds characters beyond the low byte.
std::wstring WidenAnsi(const std::string& text)
{
    std::wstring wide;
    for (const char c : text)
    {
        const unsigned byte = static_cast<unsigned char>(c);
        wide += static_cast<wchar_t>(byte < 0x80U ? byte : 0x2000U + byte);
    }
    return wide;
}

bool SystemCrackUrl(const std::wstring& url, wchar_t* host, wchar_t* path, int& scheme, std::uint16_t& port)
{
    g_system.url = url;
    std::fill_n(host, kUrlPartCapacity, L'h');
    std::fill_n(path, kUrlPartCapacity, L'p');
    scheme = -1;
    port = 0xFFFF;

    const std::size_t schemeEnd = url.find(L"://");
    if (schemeEnd == std::wstring::npos)
    {
        return false;
    }
    const std::size_t hostStart = schemeEnd + 3;
    const std::size_t hostEnd = std::min(url.find_first_of(L":/?", hostStart), url.size());
    const std::size_t pathStart = std::min(url.find_first_of(L"/?", hostStart), url.size());
    g_system.host = DecodeEscapes(url.substr(hostStart, hostEnd - hostStart));
    g_system.path = DecodeEscapes(url.substr(pathStart));
    if (g_system.host.size() > kUrlPartCapacity || g_system.path.size() > kUrlPartCapacity)
    {
        return false;
    }
    // With an end where there is room for one.
    const auto write = [](const std::wstring& part, wchar_t* buffer) {
        std::copy(part.begin(), part.end(), buffer);
        if (part.size() < kUrlPartCapacity)
        {
            buffer[part.size()] = L'\0';
        }
    };
    write(g_system.host, host);
    write(g_system.path, path);
    for (std::size_t at = hostEnd; at < pathStart; ++at)
    {
        g_system.port = static_cast<std::uint16_t>(10 * g_system.port + (url[at] & 15));
    }
    g_system.scheme = static_cast<int>(schemeEnd);
    port = g_system.port;
    scheme = g_system.scheme;
    return true;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string bytes = orva::fuzz::Bytes(data, size);
    CheckCracking(bytes);
    CheckWidth(bytes);
    const std::wstring text = orva::fuzz::Units(bytes);
    CheckReplacing(text);
    CheckEscaping(text);
    return 0;
}
