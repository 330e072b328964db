// The add-in's texts in one language, read from the built DLL.
#pragma once

#include <windows.h>

#include <string>

namespace orva::demo
{

/// The id of a language of ./run, as Office has it in the registry.
DWORD LanguageId(const std::string& language);

/// Throws std::runtime_error when the DLL or a text is missing.
class CAddInTexts
{
public:
    explicit CAddInTexts(const std::string& language);
    ~CAddInTexts();
    CAddInTexts(const CAddInTexts&) = delete;
    CAddInTexts& operator=(const CAddInTexts&) = delete;

    std::wstring Get(UINT id) const;
    /// The text with its first %s or %d filled in.
    std::wstring With(UINT id, const std::wstring& value) const;
    /// The installed version as the add-in shows it.
    std::wstring InstalledVersion() const;

private:
    HMODULE m_module;
    WORD m_language;
};

} // namespace orva::demo
