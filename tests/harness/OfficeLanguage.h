// The language of Office's user interface, as the registry says it.
#pragma once

#include "harness/Registry.h"

#include <map>
#include <string>

namespace orva::test
{

inline constexpr DWORD kEnglish = 1033;

/// The key under HKEY_CURRENT_USER, for Office 12, 14 or 15, and the value that has the language.
std::wstring OfficeLanguageKey(int version);
inline constexpr wchar_t kOfficeLanguageValue[] = L"UILanguage";

/// Sets the language of Office 2007, 2010 and 2013 for its lifetime.
class COfficeLanguageSetting
{
public:
    explicit COfficeLanguageSetting(DWORD language = kEnglish);
    ~COfficeLanguageSetting();
    COfficeLanguageSetting(const COfficeLanguageSetting&) = delete;
    COfficeLanguageSetting& operator=(const COfficeLanguageSetting&) = delete;

    /// Changes the language of one version.
    void Set(int version, DWORD language) { m_values.at(version).SetDword(language); }

private:
    std::map<int, CRegistryValue> m_values;
};

} // namespace orva::test
