// A command that an add-in adds to the menu: shown, chosen, and gone at the next start.
#include "harness/Text.h"
#include "host/HostFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

using namespace orva::test;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;

const char kHelpAlone[] = "Outlook: menu &Help: Stand-in Outlook &Help | &About Stand-in Outlook";
const char kHelpWithCommand[] =
    "Outlook: menu &Help: Stand-in Outlook &Help | &About Stand-in Outlook | Fake command";
const char kClicked[] = "Outlook -> add-in: CommandBarButton.Click = 0x00000000";

class MenuCommandTest : public HostFixture
{
protected:
    void Start(const std::vector<std::wstring>& more = {}, const std::wstring& fault = {})
    {
        std::vector<std::wstring> options = {L"--office", L"12"};
        options.insert(options.end(), more.begin(), more.end());
        StartHost(options, fault);
        ASSERT_TRUE(WaitForTrace("Outlook: start-up complete")) << TraceText();
    }

    // Starts and closes Outlook. Returns the trace's lines about its menus.
    std::vector<std::string> MenuOfOneRun(const std::wstring& fault = {})
    {
        Start({}, fault);
        EXPECT_EQ(CloseHost(), 0);
        std::vector<std::string> lines = Trace();
        std::erase_if(lines, [](const std::string& line) { return !line.starts_with("Outlook: menu &"); });
        return lines;
    }

    // The lines of all menus, of which `help` is the last.
    static std::vector<std::string> WithHelp(const char* help)
    {
        return {"Outlook: menu &File: &New | &Open | &Print... | --- | E&xit",
                "Outlook: menu &Edit: Cu&t | &Copy | &Paste | &Delete",
                "Outlook: menu &View: &Arrange By | &Navigation Pane | &Reading Pane | &Status Bar",
                "Outlook: menu &Go: &Mail | &Calendar | C&ontacts | &Tasks",
                "Outlook: menu &Tools: Send/R&eceive | &Find | Address &Book... | &Options...",
                "Outlook: menu &Actions: &New Mail Message | &Reply | Reply to A&ll | For&ward",
                help};
    }

    void ChooseLastItem(wchar_t letter)
    {
        ASSERT_TRUE(ChooseLastMenuItem(MainWindow(), letter)) << "the menu did not open";
    }
};

TEST_F(MenuCommandTest, StandsAtTheEndOfTheHelpMenu)
{
    Start();
    EXPECT_TRUE(WaitForTrace(kHelpWithCommand)) << TraceText();
    EXPECT_EQ(CloseHost(), 0);
}

TEST_F(MenuCommandTest, CallsOfTheAddInAreTraced)
{
    Start();
    EXPECT_TRUE(HasTrace("add-in -> Outlook: CommandBarControls.Add(1, missing, missing, missing, -1 (I2)) = "
                         "0x00000000; object"))
        << TraceText();
    EXPECT_TRUE(HasTrace(
        "add-in -> Outlook: CommandBarButton.Caption := \"Fake command\" [locale 1024] = 0x00000000"))
        << TraceText();
    EXPECT_TRUE(HasTrace("add-in -> Outlook: CommandBarButton.Advise(_CommandBarButtonEvents) = 0x00000000"));
    ASSERT_EQ(CloseHost(), 0);
    EXPECT_TRUE(
        HasTrace("add-in -> Outlook: CommandBarButton.Unadvise(_CommandBarButtonEvents) = 0x00000000"));
    EXPECT_TRUE(HasTrace("Outlook: OrvaHostTest.FakeAddIn unloaded")) << TraceText();
}

TEST_F(MenuCommandTest, ChoosingItRaisesClickWithItsTwoArguments)
{
    Start();
    ChooseLastItem(L'h');
    // With other arguments than a button and a by-reference Boolean, the fake add-in returns a failure.
    EXPECT_TRUE(WaitForTrace(kClicked)) << TraceText();
    EXPECT_EQ(CloseHost(), 0);
}

TEST_F(MenuCommandTest, IsThereOnceAfterEachStart)
{
    for (int start = 0; start < 2; ++start)
    {
        EXPECT_EQ(MenuOfOneRun(), WithHelp(kHelpWithCommand));
    }
}

TEST_F(MenuCommandTest, IsGoneAtTheNextStartWithoutTheAddIn)
{
    EXPECT_EQ(MenuOfOneRun(), WithHelp(kHelpWithCommand));
    SetLoadBehavior(2);
    EXPECT_EQ(MenuOfOneRun(), WithHelp(kHelpAlone));
}

// Shows that the previous test can fail: a control that is not temporary is restored.
TEST_F(MenuCommandTest, ThatIsNotTemporaryIsStillThereAtTheNextStartWithoutTheAddIn)
{
    EXPECT_EQ(MenuOfOneRun(L"last"), WithHelp(kHelpWithCommand));
    EXPECT_TRUE(HasTrace("Outlook: a control that is not temporary will be there at the next start"));
    SetLoadBehavior(2);
    EXPECT_EQ(MenuOfOneRun(), WithHelp(kHelpWithCommand));
}

TEST_F(MenuCommandTest, EmptyMenuBarHasNoItem)
{
    Start({L"--empty-menu-bar"});
    EXPECT_TRUE(HasTrace("add-in -> Outlook: CommandBarControls.Count = 0x00000000; 0")) << TraceText();
    EXPECT_TRUE(HasTrace("add-in -> Outlook: CommandBarControls.Item(0) = 0x80070057")) << TraceText();
    EXPECT_EQ(CloseHost(), 0);
    EXPECT_THAT(Trace(), Not(Contains(HasSubstr("Outlook: menu"))));
}

TEST_F(MenuCommandTest, LastControlThatIsNoPopupHasNoControls)
{
    Start({L"--last-control-not-popup"});
    EXPECT_TRUE(HasTrace("add-in -> Outlook: CommandBarControls.Item(8) = 0x00000000; object"))
        << TraceText();
    EXPECT_TRUE(HasTrace("add-in -> Outlook: CommandBarButton.GetIDsOfNames(Controls) = 0x80020006"))
        << TraceText();
    EXPECT_THAT(Trace(), Not(Contains(HasSubstr("CommandBarControls.Add"))));
    EXPECT_EQ(CloseHost(), 0);
}

TEST_F(MenuCommandTest, OutlookClosesOnlyWhenTheAddInsDialogIsGone)
{
    Start({}, L"box");
    ChooseLastItem(L'h');
    CWindowQuery query;
    query.process = HostProcess();
    query.caption = L"Fake add-in";
    const HWND box = WaitForWindow(query);
    ASSERT_NE(box, nullptr) << TraceText();
    const HWND main = MainWindow();
    EXPECT_FALSE(IsWindowEnabled(main));
    SendMessageW(main, WM_CLOSE, 0, 0);
    EXPECT_TRUE(IsWindow(main));
    EXPECT_FALSE(HasTrace("Outlook: shutting down"));
    ASSERT_TRUE(ClickButton(box, IDOK) || ClickButton(box, IDCANCEL)) << DescribeWindows(HostProcess());
    EXPECT_EQ(WaitForHost(), 0);
    EXPECT_LT(TraceIndex(kClicked), TraceIndex("Outlook: shutting down"));
}

TEST_F(MenuCommandTest, FileExitClosesOutlook)
{
    Start();
    ChooseLastItem(L'f');
    EXPECT_EQ(WaitForHost(), 0);
    EXPECT_TRUE(HasTrace("Outlook: menu command E&xit")) << TraceText();
}

} // namespace
