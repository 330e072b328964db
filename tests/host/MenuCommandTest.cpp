// A command that an add-in adds to the menu: shown, chosen, and gone at the next start.
#include "host/CommandBars.h"
#include "host/HostFixture.h"
#include "host/StoredControls.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <wrl/client.h>

namespace
{

using namespace orva::host;
using namespace orva::test;

const char kHelpAlone[] = "Outlook: menu &Help: Stand-in Outlook &Help | &About Stand-in Outlook";
const char kHelpWithCommand[] =
    "Outlook: menu &Help: Stand-in Outlook &Help | &About Stand-in Outlook | Fake command";
const char kClicked[] = "Outlook -> add-in: CommandBarButton.Click = 0x00000000";

class MenuCommandTest : public HostFixture
{
protected:
    void Start(const std::wstring& fault = {})
    {
        StartHost({L"--office", L"12"}, fault);
        ASSERT_TRUE(WaitForTrace("Outlook: start-up complete")) << TraceText();
    }

    // Starts and closes Outlook. Returns the trace's lines about its menus.
    std::vector<std::string> MenuOfOneRun(const std::wstring& fault = {})
    {
        Start(fault);
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

TEST_F(MenuCommandTest, TheAddInsCallsAndItsClickAreTraced)
{
    Start();
    // With other arguments than a button and a by-reference Boolean, the fake add-in returns a failure.
    ChooseLastItem(L'h');
    EXPECT_TRUE(WaitForTrace(kClicked)) << TraceText();
    ASSERT_EQ(CloseHost(), 0);
    for (const char* const call :
         {"CommandBarControls.Add(1, missing, missing, missing, -1 (I2)) = 0x00000000; object",
          "CommandBarButton.Caption := \"Fake command\" [locale 1024] = 0x00000000",
          "CommandBarButton.Advise(_CommandBarButtonEvents) = 0x00000000",
          "CommandBarButton.Unadvise(_CommandBarButtonEvents) = 0x00000000"})
    {
        EXPECT_TRUE(HasTrace(std::string("add-in -> Outlook: ") + call)) << TraceText();
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

TEST_F(MenuCommandTest, IsRestoredWhateverTheLengthOfItsCaption)
{
    CTrace trace;
    CMenuModel model(trace);
    const std::vector<std::wstring> captions = {L"short", std::wstring(300, L'x'), L"after it"};
    const Microsoft::WRL::ComPtr<CCommandBar> stored = new CCommandBar(model);
    CCommandBarControls& items = stored->Controls().AddPopup(L"&Menu").Controls();
    for (const std::wstring& caption : captions)
    {
        items.AddButton(caption).SetLasting(true);
    }
    StoreControls(stored->Controls());

    const Microsoft::WRL::ComPtr<CCommandBar> next = new CCommandBar(model);
    const CCommandBarControls& restored = next->Controls().AddPopup(L"&Menu").Controls();
    RestoreControls(next->Controls());
    std::vector<std::wstring> found;
    for (const auto& item : restored.Items())
    {
        found.push_back(item->Caption());
    }
    EXPECT_EQ(found, captions);
}

TEST_F(MenuCommandTest, OutlookClosesOnlyWhenTheAddInsDialogIsGone)
{
    Start(L"box");
    ChooseLastItem(L'h');
    const HWND box = WaitForBox();
    ASSERT_NE(box, nullptr) << TraceText();
    const HWND main = MainWindow();
    EXPECT_FALSE(IsWindowEnabled(main));
    SendMessageW(main, WM_CLOSE, 0, 0);
    EXPECT_TRUE(IsWindow(main));
    EXPECT_FALSE(HasTrace("Outlook: shutting down"));
    ASSERT_TRUE(CloseBox(box));
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
