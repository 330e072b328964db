#include "ui/FileName.h"

#include <algorithm>
#include <array>

namespace
{

constexpr wchar_t kFirstPrintable = 0x20;

constexpr std::array<std::wstring_view, 6> kDevices{L"CON", L"PRN", L"AUX", L"NUL", L"CONIN$", L"CONOUT$"};

// Ports are these names and one digit; the superscript digits count for Windows too.
constexpr std::array<std::wstring_view, 2> kPorts{L"COM", L"LPT"};
constexpr std::wstring_view kPortDigits = L"0123456789\u00B9\u00B2\u00B3";

wchar_t ToUpperAscii(wchar_t character)
{
    return character >= L'a' && character <= L'z' ? static_cast<wchar_t>(character - L'a' + L'A') : character;
}

bool EqualsIgnoringCase(std::wstring_view text, std::wstring_view upperCase)
{
    return std::equal(text.begin(), text.end(), upperCase.begin(), upperCase.end(),
                      [](wchar_t left, wchar_t right) { return ToUpperAscii(left) == right; });
}

// The part that decides about devices: up to the first dot, without the blanks before it ("NUL .txt" is NUL).
std::wstring_view DevicePart(std::wstring_view name)
{
    const std::wstring_view stem = name.substr(0, name.find(L'.'));
    const std::size_t last = stem.find_last_not_of(L' ');
    return last == std::wstring_view::npos ? std::wstring_view() : stem.substr(0, last + 1);
}

bool IsDeviceName(std::wstring_view name)
{
    const std::wstring_view stem = DevicePart(name);
    if (std::any_of(kDevices.begin(), kDevices.end(),
                    [&](std::wstring_view device) { return EqualsIgnoringCase(stem, device); }))
    {
        return true;
    }
    constexpr std::size_t kPortNameLength = 4;
    if (stem.size() != kPortNameLength || kPortDigits.find(stem.back()) == std::wstring_view::npos)
    {
        return false;
    }
    return std::any_of(kPorts.begin(), kPorts.end(), [&](std::wstring_view port) {
        return EqualsIgnoringCase(stem.substr(0, kPortNameLength - 1), port);
    });
}

} // namespace

bool IsPlainFileName(std::wstring_view name)
{
    if (name.find_first_not_of(L". ") == std::wstring_view::npos)
    {
        return false;
    }
    const bool hasForbidden = std::any_of(name.begin(), name.end(), [](wchar_t character) {
        return character < kFirstPrintable || character == L'\\' || character == L'/' || character == L':';
    });
    return !hasForbidden && !IsDeviceName(name);
}
