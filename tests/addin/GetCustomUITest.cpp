// The Backstage markup as Office gets it: for which version, in which language, with which texts.
#include "addin/AddInFixture.h"
#include "harness/Text.h"

#include <msxml2.h>

#include <string>

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
    // The markup for this ribbon. The call must return S_OK and a text that is not null.
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
        m_language.Set(14, language);
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

TEST_F(GetCustomUITest, ANullResultPointerIsEPointerBeforeAndAfterConnecting)
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

// Which versions are others is tested with the connection.
TEST_F(GetCustomUITest, BeforeConnectionAndInAnotherOutlookTheTextIsEmptyAndNotNull)
{
    Create();
    EXPECT_EQ(Markup(), L"");
    for (const wchar_t* const version : {kOutlook2007, kOutlook2013})
    {
        EXPECT_EQ(Connect(version), S_OK);
        NewLogLines();
        EXPECT_EQ(Markup(), L"");
        EXPECT_THAT(NewLogLines(), ElementsAre("CConnect::GetCustomUI"));
    }
}

TEST_F(GetCustomUITest, InEnglishEveryPlaceholderIsFilledWithItsText)
{
    EXPECT_EQ(Connect(kOutlook2010), S_OK);
    NewLogLines();
    const std::wstring markup = Markup();
    EXPECT_THAT(NewLogLines(), ElementsAre("CConnect::GetCustomUI"));
    EXPECT_THAT(Utf8(markup), Not(HasSubstr("__IDS_")));
    EXPECT_THAT(markup, StartsWith(L"\xFEFF<?xml"));
    EXPECT_EQ(markup.find(L'\0'), std::wstring::npos);
    EXPECT_TRUE(IsWellFormed(markup));
    for (const char* const filled :
         {"id=\"grpDescription\" label=\"ORVA Connector\"", "label=\"More information\"",
          "helperText=\"The following links provide you with information about use and troubleshooting:\"",
          "label=\"ORVA Connector information\"", "label=\"FAQs\"", "label=\"About this site\"",
          "label=\"Version\"", "label=\"Update\"", "screentip=\"Check for new version now\"",
          "label=\"Version 1.2.0 (64-bit)\""})
    {
        EXPECT_THAT(Utf8(markup), HasSubstr(filled));
    }
}

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

constexpr wchar_t kFirstParagraph[] = L"The ORVA Connector links Outlook to the ORVA business network.";

// Other texts in place of the first two paragraphs, and how the first one's label then begins.
struct CPassesCase
{
    const char* name;
    std::wstring first;
    std::wstring second;
    std::string shown;
};

void PrintTo(const CPassesCase& passes, std::ostream* out)
{
    *out << passes.name;
}

// A DLL with other English texts, filled up with blanks: each placeholder in turn is replaced in all of the
// markup.
class GetCustomUIOrderTest : public GetCustomUITest
{
protected:
    static std::pair<std::string, std::string> Change(const std::wstring& before, std::wstring after)
    {
        after.resize(before.size(), L' ');
        return {Bytes(before), Bytes(after)};
    }

private:
    static std::string Bytes(const std::wstring& text)
    {
        return std::string(reinterpret_cast<const char*>(text.data()), text.size() * sizeof(wchar_t));
    }
};

class GetCustomUIPassesTest : public GetCustomUIOrderTest, public testing::WithParamInterface<CPassesCase>
{
};

TEST_P(GetCustomUIPassesTest, EachPlaceholderIsReplacedInTheResultOfTheEarlierOnes)
{
    const CAddInCopy copy(
        {Change(kFirstParagraph, GetParam().first),
         Change(L"It keeps your contacts from the network at hand in Outlook", GetParam().second)});
    LoadInstead(copy.Path());
    EXPECT_THAT(Utf8(MarkupIn(1033)), HasSubstr("id=\"lblText0\" label=\"" + GetParam().shown));
    // The copy cannot be deleted while it is loaded.
    ReleaseAll();
}

// The placeholders after the first paragraph's, in the order of their replacement.
constexpr const wchar_t* kOrder[] = {
    L"__IDS_DESCRIPTION2__",      L"__IDS_DESCRIPTION3__",  L"__IDS_LINKS_TITLE__",
    L"__IDS_LINKS_DESCRIPTION__", L"__IDS_LINK1_TITLE__",   L"__IDS_LINK1_HREF__",
    L"__IDS_LINK2_TITLE__",       L"__IDS_LINK2_HREF__",    L"__IDS_LINK3_TITLE__",
    L"__IDS_LINK3_HREF__",        L"__IDS_VERSION_TITLE__", L"__IDS_VERSION_DESCRIPTION__",
    L"__IDS_UPDBUTTON_LABEL__",   L"__IDS_UPDBUTTON_TIP__", L"__IDS_VERSION_LINE1__",
    L"__IDS_VERSION_LINE2__"};

TEST_F(GetCustomUIOrderTest, OfTwoNeighboursThatOverlapTheFirstIsReplaced)
{
    for (size_t i = 1; i < std::size(kOrder); ++i)
    {
        const std::wstring second = std::wstring(kOrder[i]).substr(2);
        const CAddInCopy copy({Change(kFirstParagraph, kOrder[i - 1] + second)});
        LoadInstead(copy.Path());
        EXPECT_THAT(Utf8(MarkupIn(1033)), HasSubstr(Utf8(second) + " "));
        // The copy cannot be deleted while it is loaded.
        ReleaseAll();
    }
}

INSTANTIATE_TEST_SUITE_P(
    Texts, GetCustomUIPassesTest,
    testing::Values(CPassesCase{"a later placeholder is expanded, its own is not",
                                L"__IDS_DESCRIPTION1__ __IDS_LINK2_TITLE__", L"One.",
                                "__IDS_DESCRIPTION1__ FAQs "},
                    CPassesCase{"an earlier placeholder is not expanded", L"__IDS_APPTITLE__", L"One.",
                                "__IDS_APPTITLE__ "},
                    CPassesCase{"of two that overlap the earlier in the table goes first",
                                L"__IDS_LINK1_TITLE__IDS_DESCRIPTION2__", L"One.", "__IDS_LINK1_TITLEOne."},
                    CPassesCase{"what a text completes is a placeholder again", L"__IDS___IDS_DESCRIPTION2__",
                                L"LINK2_TITLE__", "FAQs "}));

} // namespace
} // namespace orva::test
