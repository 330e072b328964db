// The Backstage markup as Office gets it: for which version, in which language, with which texts.
#include "addin/AddInFixture.h"
#include "harness/Text.h"

#include <msxml2.h>

#include <cstring>

namespace orva::test
{
namespace
{

using Microsoft::WRL::ComPtr;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class GetCustomUITest : public CAddInTest
{
protected:
    // The markup for this ribbon; the result has to be S_OK and the text no null.
    std::wstring Markup(const wchar_t* ribbon = L"Microsoft.Outlook.Explorer")
    {
        _bstr_t id(ribbon);
        BSTR text = nullptr;
        EXPECT_EQ(Query<IRibbonExtensibility>(IID_IRibbonExtensibility)->GetCustomUI(id, &text), S_OK);
        EXPECT_NE(text, nullptr);
        std::wstring markup(text != nullptr ? text : L"", SysStringLen(text));
        SysFreeString(text);
        return markup;
    }

    std::wstring MarkupIn(DWORD language)
    {
        m_languages[1]->SetDword(language);
        EXPECT_EQ(Connect(kOutlook2010), S_OK);
        return Markup();
    }

    static bool IsWellFormed(const std::wstring& markup)
    {
        ComPtr<IXMLDOMDocument> document;
        CLSID parser{};
        EXPECT_EQ(CLSIDFromProgID(L"Msxml2.DOMDocument.3.0", &parser), S_OK);
        EXPECT_EQ(CoCreateInstance(parser, nullptr, CLSCTX_INPROC_SERVER, IID_IXMLDOMDocument,
                                   reinterpret_cast<void**>(document.GetAddressOf())),
                  S_OK);
        VARIANT_BOOL isLoaded = VARIANT_FALSE;
        document->put_async(VARIANT_FALSE);
        return document->loadXML(_bstr_t(markup.c_str()), &isLoaded) == S_OK && isLoaded != VARIANT_FALSE;
    }
};

TEST_F(GetCustomUITest, WithoutAPlaceForTheMarkupItIsEPointerInAnyVersion)
{
    Create();
    EXPECT_EQ(Query<IRibbonExtensibility>(IID_IRibbonExtensibility)->GetCustomUI(nullptr, nullptr),
              E_POINTER);
    EXPECT_EQ(Connect(kOutlook2010), S_OK);
    NewLogLines();
    EXPECT_EQ(Query<IRibbonExtensibility>(IID_IRibbonExtensibility)->GetCustomUI(nullptr, nullptr),
              E_POINTER);
    EXPECT_THAT(NewLogLines(), ElementsAre("CConnect::GetCustomUI"));
}

class GetCustomUIVersionTest : public GetCustomUITest, public testing::WithParamInterface<const wchar_t*>
{
};

TEST_P(GetCustomUIVersionTest, AnyVersionBut14GetsAnEmptyTextThatIsNotNull)
{
    EXPECT_EQ(Connect(GetParam()), S_OK);
    NewLogLines();
    EXPECT_EQ(Markup(), L"");
    EXPECT_THAT(NewLogLines(), ElementsAre("CConnect::GetCustomUI"));
}

INSTANTIATE_TEST_SUITE_P(Versions, GetCustomUIVersionTest,
                         testing::Values(kOutlook2007, L"13.0", kOutlook2013, L"16.0", L"no version"));

TEST_F(GetCustomUITest, BeforeConnectionTheTextIsEmpty)
{
    Create();
    EXPECT_EQ(Markup(), L"");
}

TEST_F(GetCustomUITest, InEnglishEveryPlaceholderIsFilled)
{
    EXPECT_EQ(Connect(kOutlook2010), S_OK);
    NewLogLines();
    const std::wstring markup = Markup();
    EXPECT_THAT(NewLogLines(), ElementsAre("CConnect::GetCustomUI"));
    EXPECT_THAT(Utf8(markup), Not(HasSubstr("__IDS_")));
    EXPECT_THAT(markup, StartsWith(L"\xFEFF<?xml"));
    EXPECT_THAT(Utf8(markup), HasSubstr("encoding=\"utf-16\""));
    EXPECT_EQ(markup.find(L'\0'), std::wstring::npos);
    EXPECT_TRUE(IsWellFormed(markup));
}

// A text of the markup, as the attribute that holds it.
class GetCustomUITextTest : public GetCustomUITest, public testing::WithParamInterface<const char*>
{
};

TEST_P(GetCustomUITextTest, InEnglishTheMarkupHolds)
{
    EXPECT_THAT(Utf8(MarkupIn(1033)), HasSubstr(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(
    Texts, GetCustomUITextTest,
    testing::Values(
        "id=\"OrvaOSCBackStageTab\" label=\"ORVA\"", "id=\"grpDescription\" label=\"ORVA Connector\"",
        "label=\"More information\"",
        "helperText=\"The following links provide you with information about use and troubleshooting:\"",
        "label=\"ORVA Connector information\"", "label=\"FAQs\"", "label=\"About this site\"",
        "label=\"Version\"", "label=\"Update\"", "screentip=\"Check for new version now\"",
        "label=\"Version 1.2.0 (64-bit)\"", "getImage=\"GetImageLogo\"", "getImage=\"GetImageIcon\"",
        "onAction=\"ButtonClicked\""));

TEST_F(GetCustomUITest, GermanAndTurkishAreFilledAndWellFormed)
{
    for (const DWORD language : {1031UL, 1055UL})
    {
        const std::wstring markup = MarkupIn(language);
        EXPECT_THAT(Utf8(markup), Not(HasSubstr("__IDS_"))) << language;
        EXPECT_THAT(Utf8(markup), HasSubstr("1.2.0 (64")) << language;
        EXPECT_TRUE(IsWellFormed(markup)) << language;
    }
}

TEST_F(GetCustomUITest, SpanishHoldsItsQuotesAsTheyAreAndIsNotWellFormed)
{
    const std::wstring markup = MarkupIn(3082);
    EXPECT_THAT(Utf8(markup), Not(HasSubstr("__IDS_")));
    EXPECT_THAT(Utf8(markup), Not(HasSubstr("&quot;")));
    EXPECT_FALSE(IsWellFormed(markup));
}

TEST_F(GetCustomUITest, ALanguageWithoutTextsLeavesTheAttributesEmpty)
{
    const std::wstring markup = MarkupIn(1036);
    EXPECT_THAT(Utf8(markup), Not(HasSubstr("__IDS_")));
    EXPECT_THAT(Utf8(markup), HasSubstr("id=\"lblText0\" label=\"\""));
    EXPECT_TRUE(IsWellFormed(markup));
}

TEST_F(GetCustomUITest, TheRibbonsIdDoesNotMatter)
{
    EXPECT_EQ(Connect(kOutlook2010), S_OK);
    const std::wstring markup = Markup();
    EXPECT_EQ(Markup(L"Microsoft.Outlook.Mail.Compose"), markup);
    EXPECT_EQ(Markup(L""), markup);
    EXPECT_EQ(Markup(nullptr), markup);
}

TEST_F(GetCustomUITest, ATextThatHoldsPlaceholdersIsExpandedByLaterPassesOnly)
{
    const std::wstring text = L"The ORVA Connector links Outlook to the ORVA business network.";
    std::wstring other = L"__IDS_APPTITLE__ __IDS_DESCRIPTION1__ __IDS_LINK2_TITLE__";
    other.resize(text.size(), L'.');
    const auto bytes = [](const std::wstring& wide) {
        return std::string(reinterpret_cast<const char*>(wide.data()), wide.size() * sizeof(wchar_t));
    };
    const CAddInCopy copy(bytes(text), bytes(other));
    LoadInstead(copy.Path());
    EXPECT_THAT(Utf8(MarkupIn(1033)), HasSubstr("label=\"__IDS_APPTITLE__ __IDS_DESCRIPTION1__ FAQs.....\""));
    // The copy cannot be deleted while it is loaded.
    ReleaseAll();
}

} // namespace
} // namespace orva::test
