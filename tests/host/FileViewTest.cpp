// The File view of version 14: what an add-in declares is shown, and its callbacks are called.
#include "host/FileView.h"

#include "harness/Text.h"
#include "host/HostFixture.h"
#include "host/MainWindow.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace
{

using namespace orva::host;
using namespace orva::test;

constexpr int kTabButton = kFirstTabButton;
// Ids of the controls that the markup below declares, in its order, headings and helper texts included.
constexpr int kHeading = kFirstPageItem;
constexpr int kLogo = kFirstPageItem + 1;
constexpr int kText = kFirstPageItem + 2;
constexpr int kHelper = kFirstPageItem + 4;
constexpr int kButton = kFirstPageItem + 5;
constexpr int kLink = kFirstPageItem + 6;
constexpr int kLastItem = kFirstPageItem + 7;

constexpr wchar_t kMarkup[] =
    L"\xFEFF<?xml version=\"1.0\" encoding=\"utf-16\"?>\r\n"
    L"<customUI xmlns=\"http://schemas.microsoft.com/office/2009/07/customui\"><backstage>"
    L"<tab id=\"tab\" label=\"Fake\"><firstColumn><group id=\"one\" label=\"Description\"><bottomItems>"
    L"<imageControl id=\"logo\" getImage=\"GetPicture\"/><labelControl id=\"text\" label=\"Some text\"/>"
    L"</bottomItems></group></firstColumn><secondColumn><group id=\"two\" label=\"Second\" "
    L"helperText=\"Help\">"
    L"<primaryItem><button id=\"go\" label=\"Go\" getImage=\"GetPicture\" isDefinitive=\"false\" "
    L"onAction=\"Press\"/></primaryItem>"
    L"<topItems><hyperlink id=\"link\" label=\"A link\" target=\"http://www.orva.example/\"/></topItems>"
    L"<bottomItems><imageControl id=\"none\" getImage=\"GetNothing\"/></bottomItems>"
    L"</group></secondColumn></tab></backstage></customUI>";

const std::string kTo = "Outlook -> OrvaHostTest.FakeAddIn: ";
const std::string kPressed = kTo + "Invoke 102 Press(go) = 0x00000000";

class FileViewTest : public HostFixture
{
protected:
    // Opens the File view with the markup, in which `replaced` is replaced, and waits until it is complete.
    void Start(const std::wstring& replaced = {}, const std::wstring& by = {}, const std::wstring& fault = {})
    {
        std::wstring markup = kMarkup;
        markup.replace(replaced.empty() ? 0 : markup.find(replaced), replaced.size(), by);
        StartHost({L"--backstage"}, fault, markup);
        ASSERT_TRUE(WaitUntil([&] {
            return HasTrace("Outlook: File view shows tab tab") || HasTrace("Outlook: File view shows Info");
        })) << TraceText();
    }

    // Waits for a control of the File view; null when there is none in time.
    HWND Control(int id)
    {
        HWND found = nullptr;
        WaitUntil([&] { return (found = ChildById(MainWindow(), id)) != nullptr; });
        return found;
    }

    bool WaitUntilControlIsGone(int id)
    {
        return WaitUntil([&] { return ChildById(MainWindow(), id) == nullptr; });
    }

    std::wstring ControlText(int id) { return WindowText(Control(id)); }
    void Click(int id) { PostMessageW(Control(id), BM_CLICK, 0, 0); }
};

TEST_F(FileViewTest, ShowsTheTabWithItsControlsAndTheirPictures)
{
    Start();
    ASSERT_NE(Control(kLastItem), nullptr);
    const std::pair<int, const wchar_t*> texts[] = {{kTabButton, L"Fake"}, {kHeading, L"Description"},
                                                    {kText, L"Some text"}, {kHelper, L"Help"},
                                                    {kButton, L"Go"},      {kLink, L"A link"}};
    for (const auto& [id, text] : texts)
    {
        EXPECT_EQ(ControlText(id), text) << id;
    }
    for (const std::string& line :
         {kTo + "GetIDsOfNames(GetPicture) = 0x00000000", kTo + "Invoke 101 GetPicture(logo) = 0x00000000",
          kTo + "Invoke 101 GetPicture(go) = 0x00000000",
          std::string("Outlook: picture of logo: 36 x 36, transparent"),
          kTo + "GetIDsOfNames(GetNothing) = 0x80020006", std::string("Outlook: picture of none: none")})
    {
        EXPECT_TRUE(HasTrace(line)) << line << " is not in:\n" << TraceText();
    }
    RECT box{};
    GetClientRect(Control(kLogo), &box);
    EXPECT_EQ(box.right, 36);
    EXPECT_EQ(box.bottom, 36);
}

TEST_F(FileViewTest, ButtonCallsItsActionWithTheControlByMouseAndKeyboard)
{
    Start();
    ASSERT_NE(Control(kLastItem), nullptr);
    // From the tab's button to "Back to mail", then to the first control of the page.
    for (const int id : {kTabButton, kBackButton, kButton})
    {
        ASSERT_TRUE(WaitUntil([&] { return FocusOf(MainWindow()) == Control(id); }))
            << id << " does not have the focus, but " << GetDlgCtrlID(FocusOf(MainWindow()));
        PostKey(MainWindow(), id == kButton ? VK_RETURN : VK_TAB);
    }
    ASSERT_TRUE(WaitForTrace(kPressed)) << TraceText();
    EXPECT_TRUE(HasTrace("add-in -> Outlook: IRibbonControl.get_Id = 0x00000000; \"go\"")) << TraceText();
    Click(kButton);
    EXPECT_TRUE(WaitUntil([&] {
        const std::vector<std::string> lines = Trace();
        return std::count(lines.begin(), lines.end(), kPressed) == 2;
    })) << TraceText();
    // Not definitive: the view stays.
    EXPECT_NE(ChildById(MainWindow(), kButton), nullptr);
    EXPECT_EQ(CloseHost(), 0);
}

TEST_F(FileViewTest, DefinitiveButtonClosesTheView)
{
    Start(L"isDefinitive=\"false\"", L"isDefinitive=\"true\"");
    Click(kButton);
    EXPECT_TRUE(WaitUntilControlIsGone(kButton)) << TraceText();
    EXPECT_TRUE(HasTrace(kPressed));
}

TEST_F(FileViewTest, IsLeftAndOpenedAgainAndHasAPageOfOutlooksOwn)
{
    Start();
    Click(kBackButton);
    ASSERT_TRUE(WaitUntilControlIsGone(kTabButton));
    Click(kFileButton);
    Click(kInfoButton);
    ASSERT_TRUE(WaitForTrace("Outlook: File view shows Info"));
    EXPECT_EQ(ControlText(kInfoNote), L"This is the stand-in Outlook. It has no accounts.");
    EXPECT_EQ(ChildById(MainWindow(), kButton), nullptr);
    Click(kTabButton);
    EXPECT_EQ(ControlText(kButton), L"Go");
    PostMessageW(Control(kTabButton), WM_KEYDOWN, VK_ESCAPE, 0);
    EXPECT_TRUE(WaitUntilControlIsGone(kTabButton));
}

TEST_F(FileViewTest, MarkupThatIsNotWellFormedGivesNoTabButANote)
{
    Start(L"helperText=\"Help\"", L"helperText=\"Press \"Go\" now\"");
    const std::string note = Utf8(ControlText(kInfoNote));
    EXPECT_THAT(note, testing::StartsWith("The custom UI of OrvaHostTest.FakeAddIn cannot be shown: "));
    EXPECT_THAT(note, testing::HasSubstr("(line 2, position "));
    EXPECT_EQ(ChildById(MainWindow(), kTabButton), nullptr);
    EXPECT_THAT(Trace(), testing::Contains(
                             testing::StartsWith("Outlook: custom UI of OrvaHostTest.FakeAddIn refused: ")));
}

TEST_F(FileViewTest, OutlookClosesOnlyWhenTheDialogOfACallbackIsGone)
{
    Start({}, {}, L"box");
    Click(kButton);
    const HWND box = WaitForBox();
    ASSERT_NE(box, nullptr) << TraceText();
    PostMessageW(MainWindow(), WM_CLOSE, 0, 0);
    ASSERT_TRUE(CloseBox(box));
    EXPECT_EQ(WaitForHost(), 0) << TraceText();
    EXPECT_LT(TraceIndex(kPressed), TraceIndex("Outlook: shutting down"));
}

} // namespace
