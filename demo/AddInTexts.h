// The add-in's texts in one language, read from the built DLL.
#pragma once

#include <windows.h>

#include <string>

namespace orva::demo
{

class CAddInTexts
{
public:
    /// A language of ./run. Throws std::out_of_range for another one.
    explicit CAddInTexts(const std::wstring& language);

    /// The language's id, as Office has it in the registry.
    DWORD LanguageId() const { return m_language; }
    /// Throws std::runtime_error when the DLL or the text is missing.
    std::wstring Get(UINT id) const;
    /// The text with its placeholders filled in.
    template <typename... Values> std::wstring With(UINT id, Values... values) const
    {
        // As much as wsprintf writes.
        wchar_t text[1'025] = L"";
        wsprintfW(text, Get(id).c_str(), values...);
        return text;
    }

private:
    DWORD m_language;
};

} // namespace orva::demo
