#include "harness/OfficeLanguage.h"

#include <iterator>

namespace orva::test
{

std::wstring OfficeLanguageKey(int version)
{
    return L"SOFTWARE\\Microsoft\\Office\\" + std::to_wstring(version) + L".0\\Common\\LanguageResources";
}

COfficeLanguageSetting::COfficeLanguageSetting(DWORD language)
{
    for (const int version : {12, 14, 15})
    {
        m_values.try_emplace(version, HKEY_CURRENT_USER, OfficeLanguageKey(version), kOfficeLanguageValue);
        Set(version, language);
    }
}

COfficeLanguageSetting::~COfficeLanguageSetting()
{
    // Restored in reverse order, because they share keys.
    while (!m_values.empty())
    {
        m_values.erase(std::prev(m_values.end()));
    }
}

} // namespace orva::test
