#include "update/UpdateDescription.h"

#include "support/DebugLog.h"
#include "support/JsonUtilities.h"
#include "ui/LocalizedResources.h"

#include <string>

namespace
{

constexpr wchar_t kDefaultKey[] = L"default";

// These three ids only, on purpose: another German, Spanish or Turkish variant gets the default text,
// although the dialogs are in its language.
std::wstring DescriptionKey(WORD language)
{
    constexpr WORD kGermanGermany = 1031;
    constexpr WORD kTurkish = 1055;
    constexpr WORD kSpanishModernSort = 3082;
    switch (language)
    {
    case kGermanGermany:
        return L"de";
    case kTurkish:
        return L"tr";
    case kSpanishModernSort:
        return L"es";
    default:
        return std::wstring();
    }
}

} // namespace

CString DetermineUpdateDescription(const json_spirit::wmObject& entry)
{
    LogEntry("DetermineUpdateDescription");
    return ChooseDescription(entry, GetLocalizedResources().GetUILanguage());
}

CString ChooseDescription(const json_spirit::wmObject& entry, WORD language)
{
    const json_spirit::wmValue& description = FindValue(entry, L"description");
    if (description.is_null())
    {
        return CString();
    }
    const json_spirit::wmObject& texts = description.get_obj();
    const std::wstring key = DescriptionKey(language);

    json_spirit::wmValue text;
    if (!key.empty())
    {
        text = FindValue(texts, key);
    }
    if (text.is_null())
    {
        text = FindValue(texts, kDefaultKey);
    }
    return text.is_null() ? CString() : CString(text.get_str().c_str());
}
