#include "publishing/Forecast.h"

#include "publishing/LinkCheck.h"
#include "res/resource.h"
#include "support/EcdsaSignature.h"
#include "support/JsonUtilities.h"
#include "support/Version.h"
#include "ui/LocalizedResources.h"
#include "update/UpdateDescription.h"

#include <initializer_list>
#include <stdexcept>

namespace publishing
{
namespace
{

constexpr CUser kUsers[] = {
    {L"English", 1033},
    {L"German", 1031},
    {L"Spanish of Spain", 3082},
    {L"another Spanish", 2058},
    {L"Turkish", 1055},
    {L"another German", 3079},
    {L"a language without texts", 1036},
};

class CForeteller
{
public:
    CForeteller(const CAddIn& addIn, WORD language, Trigger trigger)
        : m_addIn(addIn), m_language(language), m_isSilent(trigger == Trigger::Start)
    {
    }

    CForecast Foretell(const CUpdateText& text)
    {
        if (text.text.empty())
        {
            SayUnlessSilent(IDS_CONNECT_ERROR);
            return m_forecast;
        }
        if (text.error)
        {
            Say(IDS_CONNECT_ERROR);
        }
        try
        {
            Read(text.root);
        }
        catch (const std::runtime_error&)
        {
            SayUnlessSilent(IDS_UPDATE_INFO_NOT_PARSED);
        }
        return m_forecast;
    }

private:
    // In the order of the check, which reads no further than it has to. Throws its type errors.
    void Read(const json_spirit::wmValue& root)
    {
        if (IsMissing(root))
        {
            return;
        }
        const json_spirit::wmValue& entryValue = FindValue(root.get_obj(), kUpdateEntryName);
        if (IsMissing(entryValue))
        {
            return;
        }
        const json_spirit::wmObject& entry = entryValue.get_obj();
        const PublishedVersion published = ReadPublishedVersion(entry);
        if (!IsNewer(published, m_addIn.version))
        {
            SayUnlessSilent(IDS_LATEST_INSTALLED);
            return;
        }
        const json_spirit::wmValue& link = FindValue(entry, L"downloadLink");
        if (IsMissing(link) || (m_addIn.hasKey && !HasSignature(entry)))
        {
            return;
        }
        const CString description = ChooseDescription(entry, m_language);
        if (description.IsEmpty())
        {
            SayUnlessSilent(IDS_UPDATE_INFO_NOT_PARSED);
            return;
        }
        m_forecast.offer = {FormatVersion(published).GetString(), description.GetString()};
        Install(link.get_str().c_str(), entry);
    }

    bool HasSignature(const json_spirit::wmObject& entry)
    {
        const json_spirit::wmValue& signature = FindValue(entry, L"signature");
        // An empty text is as good as none.
        const bool isEmpty = signature.type() == json_spirit::str_type && signature.get_str().empty();
        if (IsMissing(isEmpty ? json_spirit::wmValue() : signature))
        {
            return false;
        }
        static_cast<void>(signature.get_str());
        return true;
    }

    static bool IsSignature(const std::wstring& text)
    {
        EcdsaSignature numbers{};
        return DecodeEcdsaSignature(text, numbers);
    }

    bool IsMissing(const json_spirit::wmValue& value)
    {
        if (value.is_null())
        {
            SayUnlessSilent(IDS_UPDATE_INFO_NOT_PARSED);
        }
        return value.is_null();
    }

    void Install(const std::wstring& link, const json_spirit::wmObject& entry)
    {
        switch (FateOf(link))
        {
        case LinkFate::NoFileName:
            Say(IDS_URL_NOT_PARSED);
            break;
        case LinkFate::NotParsed:
            Say(IDS_UPDATE_CANCELED);
            break;
        case LinkFate::BadFileName:
            SayNotCreated(ERROR_INVALID_NAME);
            break;
        case LinkFate::NameTooLong:
            SayNotCreated(ERROR_PATH_NOT_FOUND);
            break;
        case LinkFate::NotHttp:
            Say(IDS_CONNECT_ERROR);
            Say(IDS_UPDATE_CANCELED);
            break;
        case LinkFate::Downloaded:
            m_forecast.isDownloaded = true;
            if (m_addIn.hasKey && !IsSignature(FindValue(entry, L"signature").get_str()))
            {
                Say(IDS_CONNECT_ERROR);
                Say(IDS_UPDATE_CANCELED);
            }
            break;
        }
    }

    void SayNotCreated(int error)
    {
        CString text;
        text.Format(TextOf(IDS_FILE_NOT_CREATED), error);
        Messages().emplace_back(text.GetString());
        Say(IDS_UPDATE_CANCELED);
    }

    CString TextOf(UINT id) const { return GetLocalizedResources().LoadString(id, m_language); }
    std::vector<std::wstring>& Messages()
    {
        return m_forecast.offer ? m_forecast.afterInstall : m_forecast.messages;
    }
    void Say(UINT id) { Messages().emplace_back(TextOf(id).GetString()); }
    void SayUnlessSilent(UINT id)
    {
        if (!m_isSilent)
        {
            Say(id);
        }
    }

    const CAddIn& m_addIn;
    WORD m_language;
    bool m_isSilent;
    CForecast m_forecast;
};

} // namespace

std::span<const CUser> AllUsers()
{
    return kUsers;
}

CForecast Foretell(const CUpdateText& text, const CAddIn& addIn, WORD language, Trigger trigger)
{
    return CForeteller(addIn, language, trigger).Foretell(text);
}

} // namespace publishing
