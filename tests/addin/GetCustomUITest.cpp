// The Backstage markup as Office gets it: for which version, in which language, with which texts.
#include "addin/AddInFixture.h"
#include "harness/Files.h"
#include "harness/Text.h"
#include "res/resource.h"

#include <msxml2.h>

#include <map>
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

// Replacements for the product name and the first paragraph, and the product name that the markup then shows.
struct CPassesCase
{
    const char* name;
    std::wstring productName;
    std::wstring firstParagraph;
    std::string shown;
};

void PrintTo(const CPassesCase& passes, std::ostream* out)
{
    *out << passes.name;
}

// A DLL with other English texts: each placeholder in turn is replaced in all of the markup.
class GetCustomUIPassesTest : public GetCustomUITest, public testing::WithParamInterface<CPassesCase>
{
protected:
    // The block of the English string table that holds both texts: 16 texts, each with its length before it.
    static std::wstring ReadBlock()
    {
        const HMODULE module =
            LoadLibraryExW(BuiltFile(kAddInModule).c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
        const HRSRC resource = FindResourceExW(module, RT_STRING, MAKEINTRESOURCEW(IDS_APPTITLE / kBlock + 1),
                                               MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US));
        const auto* const units = static_cast<const wchar_t*>(LockResource(LoadResource(module, resource)));
        std::wstring block(units, SizeofResource(module, resource) / sizeof(wchar_t));
        FreeLibrary(module);
        return block;
    }

    // The block with other texts, in its old length. Zeros fill its end.
    static std::wstring Changed(const std::wstring& block, const std::map<UINT, std::wstring>& texts)
    {
        std::wstring changed;
        size_t at = 0;
        for (UINT id = IDS_APPTITLE / kBlock * kBlock; id % kBlock != 0 || at == 0; ++id)
        {
            const size_t length = block.at(at);
            const auto other = texts.find(id);
            const std::wstring text = other != texts.end() ? other->second : block.substr(at + 1, length);
            changed += static_cast<wchar_t>(text.size());
            changed += text;
            at += 1 + length;
        }
        EXPECT_LE(changed.size(), block.size());
        changed.resize(block.size());
        return changed;
    }

    static std::string Bytes(const std::wstring& text)
    {
        return std::string(reinterpret_cast<const char*>(text.data()), text.size() * sizeof(wchar_t));
    }

private:
    static constexpr UINT kBlock = 16;
};

TEST_P(GetCustomUIPassesTest, EachPlaceholderIsReplacedInTheResultOfTheEarlierOnes)
{
    const std::wstring block = ReadBlock();
    const std::wstring changed = Changed(
        block, {{IDS_APPTITLE, GetParam().productName}, {IDS_DESCRIPTION1, GetParam().firstParagraph}});
    const CAddInCopy copy(Bytes(block), Bytes(changed));
    LoadInstead(copy.Path());
    EXPECT_THAT(Utf8(MarkupIn(1033)), HasSubstr("id=\"grpDescription\" label=\"" + GetParam().shown + "\""));
    // The copy cannot be deleted while it is loaded.
    ReleaseAll();
}

INSTANTIATE_TEST_SUITE_P(
    Texts, GetCustomUIPassesTest,
    testing::Values(CPassesCase{"a later placeholder is expanded, its own is not",
                                L"__IDS_APPTITLE__ __IDS_DESCRIPTION1__ __IDS_LINK2_TITLE__", L"One.",
                                "__IDS_APPTITLE__ One. FAQs"},
                    CPassesCase{"an earlier placeholder is not expanded", L"__IDS_DESCRIPTION1__",
                                L"__IDS_APPTITLE__", "__IDS_APPTITLE__"},
                    CPassesCase{"of two that overlap the earlier in the table goes first",
                                L"__IDS_LINK1_TITLE__IDS_DESCRIPTION1__", L"One.", "__IDS_LINK1_TITLEOne."},
                    CPassesCase{"what an empty text joins is a placeholder again",
                                L"__IDS___IDS_DESCRIPTION1__LINK2_TITLE__", L"", "FAQs"}));

} // namespace
} // namespace orva::test
