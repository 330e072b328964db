// What each Outlook gets: the menu command, the Backstage tab or neither; and how the add-in is released.
#include "end_to_end/OutlookFixture.h"
#include "end_to_end/Texts.h"
#include "harness/Files.h"

#include <algorithm>

namespace orva::test
{

namespace
{

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

constexpr char kNoMenu[] = "(none)";
constexpr char kHelpMenu[] = "Outlook: menu &Help: Stand-in Outlook &Help | &About Stand-in Outlook";
constexpr char kHelpMenuWithCommand[] =
    "Outlook: menu &Help: Stand-in Outlook &Help | &About Stand-in Outlook | About the ORVA Connector...";

class OutlookVersionsTest : public OutlookFixture
{
protected:
    OutlookVersionsTest() { Publish(UpdateInfo("1", "2", "0", kInstallerUrl)); }

    // The traced items of the Help menu, or kNoMenu.
    std::string HelpMenu() const
    {
        std::string menu = kNoMenu;
        for (const std::string& line : Trace())
        {
            if (line.starts_with("Outlook: menu &Help:"))
            {
                menu = line;
            }
        }
        return menu;
    }

    void ChooseLastHelpItem() { ASSERT_TRUE(ChooseLastMenuItem(MainWindow(), L'h')); }
};

} // namespace

TEST_F(OutlookVersionsTest, Outlook2007GetsTheCommandAtTheEndOfTheHelpMenu)
{
    RunToTheEnd({L"--office", L"12"});
    EXPECT_EQ(HelpMenu(), kHelpMenuWithCommand);
    EXPECT_THAT(ReadLogTexts(), Contains("CConnect::OnConnection() m_spExplorer is not NULL "));
    EXPECT_THAT(Trace(), Not(Contains(HasSubstr("custom UI"))));
}

TEST_F(OutlookVersionsTest, TheCommandIsTemporaryAndStandsThereOnceAtTheNextStart)
{
    RunToTheEnd({L"--office", L"12"});
    ASSERT_EQ(HelpMenu(), kHelpMenuWithCommand);
    // The stand-in Outlook shows a control that is not temporary again at the next start.
    RunToTheEnd({L"--office", L"12"});
    EXPECT_EQ(HelpMenu(), kHelpMenuWithCommand);
}

TEST_F(OutlookVersionsTest, TheCommandIsGoneAtTheNextStartWithoutTheAddIn)
{
    RunToTheEnd({L"--office", L"12"});
    ASSERT_EQ(HelpMenu(), kHelpMenuWithCommand);
    CRegistryValue behavior(HKEY_LOCAL_MACHINE, kAddInKey, L"LoadBehavior");
    behavior.SetDword(2);
    StartOutlook({L"--office", L"12", L"--quit-after-startup"});
    ASSERT_EQ(m_outlook->WaitForExit(), 0u);
    EXPECT_EQ(HelpMenu(), kHelpMenu);
}

TEST_F(OutlookVersionsTest, TheCommandOpensTheAboutDialogAndItsUpdateButtonChecks)
{
    m_user.OnDialogWith(kAboutUpdate, [](HWND about) { EXPECT_TRUE(ClickButton(about, kAboutUpdate)); });
    m_user.AnswerBox(kLatest);
    HWND about = nullptr;
    m_user.Then("the About dialog can be used again", [&] {
        about = FindTopLevelWindow({.process = m_outlook->Id(), .childId = kAboutUpdate});
        return about != nullptr && WaitUntilEnabled(about) && ClickButton(about, kAboutClose);
    });
    StartOutlook({L"--office", L"12"});
    WaitForStart();
    ChooseLastHelpItem();
    // The dispatcher of _IDTExtensibility2 refuses the click's arguments; Outlook ignores the result.
    ASSERT_TRUE(WaitForTrace("CommandBarButton.Click = "));
    ExpectOutlookGoesOn();
    EXPECT_FALSE(IsWindow(about));
    EXPECT_THAT(ReadLogTexts(), Contains("CheckForUpdateExplicit"));
    EXPECT_EQ(m_server.Requests().size(), 2u);
}

TEST_F(OutlookVersionsTest, Outlook2007WithoutAnExplorerGetsNoCommand)
{
    RunToTheEnd({L"--office", L"12", L"--no-explorer"});
    EXPECT_EQ(HelpMenu(), kHelpMenu);
    EXPECT_THAT(ReadLogTexts(), Contains("CConnect::OnConnection() m_spExplorer is NULL "));
}

TEST_F(OutlookVersionsTest, AMenuBarWithoutMenusGetsNoCommandAndTheCheckRuns)
{
    const std::pair<const wchar_t*, const char*> bars[] = {{L"--empty-menu-bar", kNoMenu},
                                                           {L"--last-control-not-popup", kHelpMenu}};
    for (const auto& [option, menu] : bars)
    {
        RunToTheEnd({L"--office", L"12", option});
        EXPECT_EQ(HelpMenu(), menu);
        EXPECT_THAT(ReadLogTexts(), Contains("CheckForUpdate() buildNumber 0"));
        DeleteLog();
    }
}

TEST_F(OutlookVersionsTest, Outlook2010GetsTheTabAndNoCommand)
{
    RunToTheEnd({L"--office", L"14"});
    EXPECT_THAT(Trace(),
                Contains(HasSubstr("custom UI of OrvaOscAddin.Connect: File tab OrvaOSCBackStageTab")));
    EXPECT_EQ(HelpMenu(), kHelpMenu);
    EXPECT_THAT(ReadLogTexts(), Not(Contains(HasSubstr("m_spExplorer"))));
}

TEST_F(OutlookVersionsTest, Outlook2013GetsNeither)
{
    RunToTheEnd({L"--office", L"15"});
    EXPECT_THAT(Trace(), Contains("Outlook: custom UI of OrvaOscAddin.Connect: 0 characters"));
    EXPECT_EQ(HelpMenu(), kHelpMenu);
    EXPECT_THAT(ReadLogTexts(), Contains("CheckForUpdate() buildNumber 0"));
}

TEST_F(OutlookVersionsTest, AVersionThatDoesNotStartWithADigitCountsAsOld)
{
    RunToTheEnd({L"--office", L"beta 14.0"});
    EXPECT_EQ(HelpMenu(), kHelpMenuWithCommand);
    EXPECT_THAT(ReadLogTexts(), Contains("CConnect::OnConnection() m_spExplorer is not NULL "));
}

TEST_F(OutlookVersionsTest, AFastShutdownWithoutDisconnectionEndsWithExitCode0)
{
    for (const wchar_t* const version : {L"12", L"14"})
    {
        StartOutlook({L"--office", version, L"--fast-shutdown"});
        WaitForStart();
        PostMessageW(MainWindow(), WM_CLOSE, 0, 0);
        EXPECT_EQ(m_outlook->WaitForExit(), 0u);
        m_user.Finish();
        EXPECT_THAT(Trace(), Contains("Outlook: fast shutdown"));
    }
    EXPECT_THAT(ReadLogTexts(), Not(Contains("CConnect::OnDisconnection")));
}

TEST_F(OutlookVersionsTest, TheLogHasTheLinesOfTheWholeRunInOrder)
{
    RunToTheEnd();
    std::vector<std::string> log = ReadLogTexts();
    // The check's own lines are tested elsewhere.
    const auto check = std::find(log.begin(), log.end(), "CheckForUpdate");
    const auto end = std::find(log.begin(), log.end(), "CConnect::GetCustomUI");
    ASSERT_LT(check, end);
    log.erase(check, end);
    // COM may ask any number of times whether the DLL can be unloaded.
    std::erase(log, "DllCanUnloadNow");
    EXPECT_THAT(log, ElementsAre("DllGetClassObject", "CConnect::OnConnection",
                                 "CConnect::OnConnection() ext_cm_Startup ",
                                 "CConnect::OnConnection() check for updates ", "CConnect::GetCustomUI",
                                 "CConnect::OnStartupComplete", "CConnect::OnDisconnection"));
    for (const CLogEntry& entry : ReadLogEntries())
    {
        EXPECT_NE(entry.time, "") << entry.text;
    }
}

TEST_F(OutlookVersionsTest, TheDebuggerOutputHasTheLogsLinesEvenIfTheLogIsOff)
{
    RunToTheEnd();
    const std::vector<std::string> log = ReadLogTexts();
    DeleteLog();
    CRegistryValue off(HKEY_CURRENT_USER, kLogSwitchKey, kLogSwitchValue);
    off.SetDword(0);
    CChildProcess outlook(
        {.program = BuiltFile(kHost), .arguments = {L"--quit-after-startup"}, .debug = true});
    ASSERT_EQ(outlook.WaitForExit(), 0u);
    EXPECT_FALSE(FolderExists(LogFolder()));
    EXPECT_THAT(outlook.DebugLines(), testing::IsSupersetOf(log));
}

TEST_F(OutlookVersionsTest, TheOfferSpeaksTheLanguageOfOffice)
{
    struct CLanguage
    {
        DWORD id;
        const wchar_t* caption;
        const wchar_t* install;
        const wchar_t* description;
    };
    // Other variants of Spanish have the Spanish texts, but the default description.
    constexpr wchar_t kSpanish[] = L"Nueva actualización disponible";
    const CLanguage languages[] = {
        {1033, L"New update available", L"Install", L"default"},
        {1031, L"Neues Update verfügbar", L"Installieren", L"deutsch"},
        {3082, kSpanish, L"Instalar", L"español"},
        {1034, kSpanish, L"Instalar", L"default"},
        {1055, L"Yeni güncelleme mevcut", L"Yükle", L"Türkçe"},
    };
    Publish(R"({"x64":{"majorVersion":1,"minorVersion":3,"buildNumber":0,"downloadLink":"http://h/s.exe",)"
            R"("description":{"de":"deutsch","es":"español","tr":"Türkçe","default":"default"}}})");
    for (const CLanguage& language : languages)
    {
        SCOPED_TRACE(language.id);
        const COfficeLanguageSetting setting(language.id);
        m_user.OnDialog(language.caption,
                        [](HWND dialog) { EXPECT_TRUE(ClickButton(dialog, kLaterButton)); });
        RunToTheEnd();
        ASSERT_EQ(m_seen.size(), 1u);
        EXPECT_EQ(m_seen[0].Control(kInstallButton), language.install);
        EXPECT_EQ(m_seen[0].Control(kDescriptionText), language.description);
    }
}

} // namespace orva::test
