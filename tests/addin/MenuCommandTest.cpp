// The menu command of an Outlook without Backstage view: every call on the host's objects, argument by
// argument, and what happens where one of them fails.
#include "addin/ConnectLines.h"
#include "addin/MenuCommandFixture.h"
#include "harness/ImportHook.h"

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <utility>

namespace orva::test
{
namespace
{

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

constexpr char kReturnHr[] = "CConnect::InsertMenuCommands() return hr ";
constexpr LCID kUserDefault = 1024;
constexpr LCID kSystemDefault = 2048;

using MenuCommandTest = CMenuCommandTest;

bool g_hasFailed = false;

void* __cdecl FailOnce(size_t size)
{
    return std::exchange(g_hasFailed, true) ? std::malloc(size) : nullptr;
}

TEST_F(MenuCommandTest, IsAddedToTheLastMenuInThisOrder)
{
    EXPECT_THAT(LinesOfConnecting(), Contains(kInsert).Times(1));
    EXPECT_THAT(MemberNames(m_outlook->record),
                ElementsAre("application.ActiveExplorer", "application.Version", "explorer.CommandBars",
                            "commandBars.ActiveMenuBar", "menuBar.Controls", "menus.Count", "menus.Item",
                            "helpMenu.Controls", "commands.Add", "button.Caption", "button.Enabled"));
    EXPECT_EQ(m_outlook->button->Advises(), 1);
    EXPECT_EQ(m_outlook->button->Sinks().size(), 1u);
}

TEST_F(MenuCommandTest, TheLastMenuIsAskedForByTheCountBecauseIndicesStartAtOne)
{
    m_outlook->menus->Give(L"Count", _variant_t(3L));
    LinesOfConnecting();
    const CMemberCall item = Call("menus.Item");
    ASSERT_EQ(item.arguments.size(), 1u);
    EXPECT_EQ(item.arguments[0].vt, VT_I4);
    EXPECT_EQ(item.arguments[0].lVal, 3);
}

TEST_F(MenuCommandTest, AddGetsTypeThenThreeMissingThenTemporaryAsAShort)
{
    LinesOfConnecting();
    const CMemberCall add = Call("commands.Add");
    ASSERT_EQ(add.arguments.size(), 5u);
    EXPECT_THAT(add.named, IsEmpty());
    EXPECT_EQ(add.arguments[0].vt, VT_I4);
    EXPECT_EQ(add.arguments[0].lVal, 1);
    for (const size_t missing : {1u, 2u, 3u})
    {
        EXPECT_EQ(add.arguments[missing].vt, VT_ERROR) << missing;
        EXPECT_EQ(add.arguments[missing].scode, static_cast<SCODE>(0x80020004)) << missing;
    }
    EXPECT_EQ(add.arguments[4].vt, VT_I2);
    EXPECT_EQ(add.arguments[4].iVal, -1);
}

TEST_F(MenuCommandTest, TheCaptionIsABstrInOfficesLanguageEmptyForALanguageWithoutTexts)
{
    const std::pair<DWORD, const wchar_t*> captions[] = {
        {1033, L"About the ORVA Connector..."}, {1031, L"\u00DCber den ORVA Connector..."}, {1036, L""}};
    for (const auto& [language, text] : captions)
    {
        SCOPED_TRACE(language);
        UseOutlook(kOutlook2007);
        m_language.Set(12, language);
        LinesOfConnecting();
        const CMemberCall caption = Call("button.Caption");
        ASSERT_EQ(caption.arguments.size(), 1u);
        EXPECT_EQ(caption.arguments[0].vt, VT_BSTR);
        EXPECT_EQ(caption.text, text);
    }
}

TEST_F(MenuCommandTest, EnabledIsABooleanWhoseLowByteAloneIsOne)
{
    LinesOfConnecting();
    const CMemberCall enabled = Call("button.Enabled");
    ASSERT_EQ(enabled.arguments.size(), 1u);
    EXPECT_EQ(enabled.arguments[0].vt, VT_BOOL);
    EXPECT_EQ(enabled.arguments[0].boolVal, 1);
}

TEST_F(MenuCommandTest, PropertiesAreLookedUpInTheUsersLocaleAndSetInTheSystems)
{
    LinesOfConnecting();
    for (const char* const member : {"button.Caption", "button.Enabled"})
    {
        const CMemberCall put = Call(member);
        EXPECT_EQ(put.nameLocale, kUserDefault) << member;
        EXPECT_EQ(put.nameCount, 1u) << member;
        EXPECT_EQ(put.callLocale, kSystemDefault) << member;
        EXPECT_EQ(put.flags, DISPATCH_PROPERTYPUT) << member;
        EXPECT_THAT(put.named, ElementsAre(DISPID_PROPERTYPUT)) << member;
        EXPECT_FALSE(put.wantsResult) << member;
        EXPECT_FALSE(put.wantsException) << member;
        EXPECT_FALSE(put.wantsArgumentError) << member;
    }
}

TEST_F(MenuCommandTest, ResultsOfSettingPropertiesDoNotMatter)
{
    m_outlook->button->Fail(L"Caption", E_ACCESSDENIED);
    m_outlook->button->Forget(L"Enabled");
    EXPECT_THAT(LinesOfConnecting(), Not(Contains(kReturnHr)));
    EXPECT_THAT(MemberNames(m_outlook->record), Contains("button.Caption"));
    EXPECT_EQ(m_outlook->button->Sinks().size(), 1u);
}

TEST_F(MenuCommandTest, AnExceptionOnTheWayIsAbsorbedWithoutALine)
{
    std::optional<CImportHook> noMemory;
    m_outlook->helpMenu->On(L"Controls", [&](const DISPPARAMS&, VARIANT* result) {
        // The add-in's next allocation is for the arguments of Add.
        noMemory.emplace(GetModuleHandleW(kAddInModule), "msvcrt.dll", "malloc", &FailOnce);
        result->vt = VT_DISPATCH;
        return m_outlook->commands.CopyTo(IID_IDispatch, reinterpret_cast<void**>(&result->pdispVal));
    });
    g_hasFailed = false;
    EXPECT_THAT(LinesOfConnecting(), ElementsAre(kOnConnection, kAfterStartup, kExplorer, kInsert));
    EXPECT_TRUE(g_hasFailed);
    noMemory.reset();
    ExpectNoCommand();
}

// A way in which the host's objects fail to give a new control.
struct CMissingCase
{
    const char* name;
    std::function<void(CFakeOutlook&)> change;
    bool isLogged = false;
};

void PrintTo(const CMissingCase& missing, std::ostream* out)
{
    *out << missing.name;
}

class MenuCommandMissingTest : public MenuCommandTest, public testing::WithParamInterface<CMissingCase>
{
};

TEST_P(MenuCommandMissingTest, OutlookGoesOnWithoutTheCommandAndTheCheckRuns)
{
    GetParam().change(*m_outlook);
    std::vector<std::string> lines = LinesOfConnecting(ext_cm_Startup);
    lines.erase(std::ranges::find(lines, kCheck), lines.end());
    std::vector<std::string> expected = {kOnConnection, kStartup, kExplorer, kInsert};
    if (GetParam().isLogged)
    {
        expected.push_back(kReturnHr);
    }
    EXPECT_EQ(lines, expected);
    EXPECT_EQ(m_server.RequestsFor(kUpdateInfoPath).size(), 1u);
    ExpectNoCommand();
}

INSTANTIATE_TEST_SUITE_P(
    Objects, MenuCommandMissingTest,
    testing::Values(
        CMissingCase{"failing command bars",
                     [](CFakeOutlook& outlook) { outlook.explorer->Fail(L"CommandBars", E_FAIL); }, true},
        CMissingCase{"unknown command bars",
                     [](CFakeOutlook& outlook) { outlook.explorer->Forget(L"CommandBars"); }, true},
        CMissingCase{"null command bars",
                     [](CFakeOutlook& outlook) { outlook.explorer->GiveObject(L"CommandBars", nullptr); }},
        CMissingCase{
            "no menu bar",
            [](CFakeOutlook& outlook) { outlook.commandBars->GiveObject(L"ActiveMenuBar", nullptr); }},
        CMissingCase{"failing menu bar",
                     [](CFakeOutlook& outlook) { outlook.commandBars->Fail(L"ActiveMenuBar", E_FAIL); }},
        CMissingCase{"no controls",
                     [](CFakeOutlook& outlook) { outlook.menuBar->GiveObject(L"Controls", nullptr); }},
        CMissingCase{"empty menu bar",
                     [](CFakeOutlook& outlook) {
                         outlook.menus->Give(L"Count", _variant_t(0L));
                         outlook.menus->Fail(L"Item", E_INVALIDARG);
                     }},
        CMissingCase{"empty menu bar that gives null",
                     [](CFakeOutlook& outlook) {
                         outlook.menus->Give(L"Count", _variant_t(0L));
                         outlook.menus->GiveObject(L"Item", nullptr);
                     }},
        CMissingCase{"count that is no number",
                     [](CFakeOutlook& outlook) { outlook.menus->Give(L"Count", _variant_t(L"many")); }},
        CMissingCase{"failing count", [](CFakeOutlook& outlook) { outlook.menus->Fail(L"Count", E_FAIL); }},
        CMissingCase{"last control that is a button",
                     [](CFakeOutlook& outlook) {
                         outlook.menus->GiveObject(L"Item", static_cast<CFakeObject*>(outlook.button.Get()));
                     }},
        CMissingCase{"menu without controls",
                     [](CFakeOutlook& outlook) { outlook.helpMenu->GiveObject(L"Controls", nullptr); }},
        CMissingCase{"refused control",
                     [](CFakeOutlook& outlook) { outlook.commands->Fail(L"Add", E_ACCESSDENIED); }},
        CMissingCase{"null control",
                     [](CFakeOutlook& outlook) { outlook.commands->GiveObject(L"Add", nullptr); }},
        CMissingCase{"new control that is no button", [](CFakeOutlook& outlook) {
                         outlook.commands->GiveObject(L"Add", outlook.helpMenu.Get());
                     }}));

} // namespace
} // namespace orva::test
