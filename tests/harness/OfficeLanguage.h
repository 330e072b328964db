// The language that Office's own setup has chosen for its user interface.
#pragma once

#include "harness/Registry.h"

#include <map>
#include <string>

namespace orva::test
{

inline constexpr DWORD kEnglish = 1033;

/// The key under HKEY_CURRENT_USER of this version of Office (12, 14, 15), and its value with the language.
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

    /// Another language for one version, for the rest of its life.
    void Set(int version, DWORD language) { m_values.at(version).SetDword(language); }

private:
    std::map<int, CRegistryValue> m_values;
};

} // namespace orva::test
