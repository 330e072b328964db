#include "ui/FileName.h"

#include <algorithm>
#include <array>

namespace
{

constexpr wchar_t kFirstPrintable = 0x20;

// Reserved with any extension too, as "Naming Files, Paths, and Namespaces" says.
constexpr std::array<std::wstring_view, 4> kDevices{L"CON", L"PRN", L"AUX", L"NUL"};

// Ports are these names and one digit; the superscript digits count for Windows too.
constexpr std::array<std::wstring_view, 2> kPorts{L"COM", L"LPT"};
constexpr std::wstring_view kPortDigits = L"123456789\u00B9\u00B2\u00B3";

// Not in that list: CreateFile's documentation reserves these two for the console, as whole names only. With
// an extension they are ordinary names.
constexpr std::array<std::wstring_view, 2> kConsoleBuffers{L"CONIN$", L"CONOUT$"};

wchar_t ToUpperAscii(wchar_t character)
{
    return character >= L'a' && character <= L'z' ? static_cast<wchar_t>(character - L'a' + L'A') : character;
}

bool EqualsIgnoringCase(std::wstring_view text, std::wstring_view upperCase)
{
    return std::equal(text.begin(), text.end(), upperCase.begin(), upperCase.end(),
                      [](wchar_t left, wchar_t right) { return ToUpperAscii(left) == right; });
}

template <std::size_t Size>
bool IsOneOf(std::wstring_view text, const std::array<std::wstring_view, Size>& upperCaseNames)
{
    return std::any_of(upperCaseNames.begin(), upperCaseNames.end(),
                       [&](std::wstring_view name) { return EqualsIgnoringCase(text, name); });
}

std::wstring_view WithoutTrailing(std::wstring_view text, std::wstring_view characters)
{
    return text.substr(0, text.find_last_not_of(characters) + 1);
}

bool IsReserved(std::wstring_view name)
{
    // Windows drops dots and blanks from a name's end.
    if (IsOneOf(WithoutTrailing(name, L". "), kConsoleBuffers))
    {
        return true;
    }
    // Up to the first dot, without the blanks before it: "NUL .txt" is NUL.
    const std::wstring_view stem = WithoutTrailing(name.substr(0, name.find(L'.')), L" ");
    if (IsOneOf(stem, kDevices))
    {
        return true;
    }
    constexpr std::size_t kPortNameLength = 4;
    return stem.size() == kPortNameLength && kPortDigits.find(stem.back()) != std::wstring_view::npos &&
           IsOneOf(stem.substr(0, kPortNameLength - 1), kPorts);
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
    return !hasForbidden && !IsReserved(name);
}
