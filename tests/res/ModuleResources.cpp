#include "res/ModuleResources.h"

#include <algorithm>
#include <cstring>

namespace orva::test
{
namespace
{
std::vector<BYTE> BytesOf(HRSRC found)
{
    const HMODULE module = GetModuleHandleW(nullptr);
    const auto* data = static_cast<const BYTE*>(LockResource(LoadResource(module, found)));
    return std::vector<BYTE>(data, data + SizeofResource(module, found));
}
} // namespace

const char* LanguageName(WORD language)
{
    switch (language)
    {
    case kEnglish:
        return "English";
    case kGerman:
        return "German";
    case kSpanish:
        return "Spanish";
    case kTurkish:
        return "Turkish";
    default:
        return "unknown language";
    }
}

std::optional<std::vector<BYTE>> ReadResource(const wchar_t* type, WORD id)
{
    const HRSRC found = FindResourceW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(id), type);
    if (found == nullptr)
    {
        return std::nullopt;
    }
    return BytesOf(found);
}

std::vector<WORD> ResourceLanguages(const wchar_t* type, WORD id)
{
    std::vector<WORD> languages;
    const ENUMRESLANGPROCW note = [](HMODULE, LPCWSTR, LPCWSTR, WORD language, LONG_PTR list) -> BOOL {
        reinterpret_cast<std::vector<WORD>*>(list)->push_back(language);
        return TRUE;
    };
    EnumResourceLanguagesW(GetModuleHandleW(nullptr), type, MAKEINTRESOURCEW(id), note,
                           reinterpret_cast<LONG_PTR>(&languages));
    std::sort(languages.begin(), languages.end());
    return languages;
}

std::wstring ModuleString(WORD language, UINT id)
{
    const WORD block = static_cast<WORD>(id / 16 + 1);
    const auto languages = ResourceLanguages(RT_STRING, block);
    if (std::find(languages.begin(), languages.end(), language) == languages.end())
    {
        return {};
    }
    const std::vector<BYTE> bytes =
        BytesOf(FindResourceExW(GetModuleHandleW(nullptr), RT_STRING, MAKEINTRESOURCEW(block), language));
    std::vector<wchar_t> units(bytes.size() / 2);
    std::memcpy(units.data(), bytes.data(), units.size() * 2);
    size_t position = 0;
    for (UINT skipped = 0; skipped != id % 16; ++skipped)
    {
        position += 1u + units.at(position);
    }
    return std::wstring(&units.at(position) + 1, units.at(position));
}

} // namespace orva::test
