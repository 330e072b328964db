// Fuzzes the check of file names that come from a download link.
//
// Checks each result again with rules that follow what Windows does with a file name.
#include "fuzz/Fuzz.h"
#include "ui/FileName.h"

#include <algorithm>
#include <vector>

namespace
{

std::wstring Upper(std::wstring text)
{
    for (wchar_t& unit : text)
    {
        if (unit >= L'a' && unit <= L'z')
        {
            unit = static_cast<wchar_t>(unit - L'a' + L'A');
        }
    }
    return text;
}

std::vector<std::wstring> Devices()
{
    std::vector<std::wstring> names = {L"CON", L"PRN", L"AUX", L"NUL"};
    for (const wchar_t digit :
         {L'1', L'2', L'3', L'4', L'5', L'6', L'7', L'8', L'9', wchar_t(0xB9), wchar_t(0xB2), wchar_t(0xB3)})
    {
        names.push_back(std::wstring(L"COM") + digit);
        names.push_back(std::wstring(L"LPT") + digit);
    }
    return names;
}

// Windows drops these from the end of a name.
std::wstring WithoutTail(std::wstring name)
{
    while (!name.empty() && (name.back() == L'.' || name.back() == L' '))
    {
        name.pop_back();
    }
    return name;
}

bool IsDevice(const std::wstring& name)
{
    static const std::vector<std::wstring> devices = Devices();
    const std::wstring upper = Upper(name);
    // The console's devices, by these names only.
    if (WithoutTail(upper) == L"CONIN$" || WithoutTail(upper) == L"CONOUT$")
    {
        return true;
    }
    return std::ranges::any_of(devices, [&](const std::wstring& device) {
        if (!upper.starts_with(device))
        {
            return false;
        }
        // Blanks, and then the end or an extension.
        const std::size_t after = upper.find_first_not_of(L' ', device.size());
        return after == std::wstring::npos || upper[after] == L'.';
    });
}

// The parts of the path "folder\`name`", as Windows resolves it.
std::vector<std::wstring> Resolve(const std::wstring& name)
{
    std::vector<std::wstring> parts = {L"folder"};
    std::size_t start = 0;
    while (start <= name.size())
    {
        const std::size_t end = std::min(name.find_first_of(L"\\/", start), name.size());
        const std::wstring part = name.substr(start, end - start);
        start = end + 1;
        if (part == L"..")
        {
            if (!parts.empty())
            {
                parts.pop_back();
            }
            continue;
        }
        if (!WithoutTail(part).empty())
        {
            parts.push_back(WithoutTail(part));
        }
    }
    return parts;
}

void CheckAccepted(const std::wstring& name)
{
    ORVA_PROPERTY(!name.empty());
    ORVA_PROPERTY(std::ranges::none_of(name, [](wchar_t unit) { return unit < 0x20; }));
    ORVA_PROPERTY(name.find_first_of(L"\\/:") == std::wstring::npos);
    ORVA_PROPERTY(!IsDevice(name));
    ORVA_PROPERTY(!IsDevice(WithoutTail(name)));
    const std::vector<std::wstring> parts = Resolve(name);
    ORVA_PROPERTY(parts.size() == 2 && parts[0] == L"folder" && parts[1] == WithoutTail(name));
}

void CheckRefused(const std::wstring& name)
{
    const bool isForbidden = std::ranges::any_of(name, [](wchar_t unit) { return unit < 0x20; }) ||
                             name.find_first_of(L"\\/:") != std::wstring::npos || WithoutTail(name).empty() ||
                             IsDevice(name);
    ORVA_PROPERTY(isForbidden);
}

void Check(const std::wstring& name)
{
    // A copy of exactly this size, because the text need not be zero-terminated.
    const std::vector<wchar_t> exact(name.begin(), name.end());
    if (IsPlainFileName(std::wstring_view(exact.data(), exact.size())))
    {
        CheckAccepted(name);
    }
    else
    {
        CheckRefused(name);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::wstring text = orva::fuzz::Units(orva::fuzz::Bytes(data, size));
    Check(text);
    // The last part of a link.
    Check(text.substr(text.rfind(L'/') + 1));
    return 0;
}
