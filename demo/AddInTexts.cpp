#include "demo/AddInTexts.h"

#include "harness/Files.h"

#include <map>
#include <stdexcept>

namespace orva::demo
{

CAddInTexts::CAddInTexts(const std::wstring& language)
    : m_language(std::map<std::wstring, DWORD>{{L"en", 1033}, {L"de", 1031}, {L"es", 3082}, {L"tr", 1055}}.at(
          language))
{
}

std::wstring CAddInTexts::Get(UINT id) const
{
    // Texts are kept in blocks of 16: counted strings, one behind the other.
    static const HMODULE dll =
        LoadLibraryExW(test::BuiltFile(L"OrvaOscAddin.dll").c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
    const HRSRC block = FindResourceExW(dll, RT_STRING, MAKEINTRESOURCEW(id / 16 + 1), LOWORD(m_language));
    const HGLOBAL loaded = block != nullptr ? LoadResource(dll, block) : nullptr;
    if (loaded == nullptr)
    {
        throw std::runtime_error("the add-in has no text " + std::to_string(id));
    }
    const auto* text = static_cast<const wchar_t*>(LockResource(loaded));
    for (UINT i = 0; i < id % 16; ++i)
    {
        text += 1 + *text;
    }
    return std::wstring(text + 1, *text);
}

} // namespace orva::demo
