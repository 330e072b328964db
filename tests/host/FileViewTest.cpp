// The File view of version 14: what an add-in declares is shown, its callbacks are called, its links are
// followed.
#include "harness/Files.h"
#include "harness/Text.h"
#include "host/HostFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

using namespace orva::test;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr int kFileButton = 600;
constexpr int kInfoButton = 700;
constexpr int kBackButton = 701;
constexpr int kTabButton = 710;
constexpr int kInfoNote = 1001;
// Ids of the controls that the markup below declares, in its order, headings and helper texts included.
constexpr int kHeading = 1000;
constexpr int kLogo = 1001;
constexpr int kText = 1002;
constexpr int kHelper = 1004;
constexpr int kButton = 1005;
constexpr int kLink = 1006;

constexpr wchar_t kMarkup[] =
    L"\xFEFF<?xml version=\"1.0\" encoding=\"utf-16\"?>\r\n"
    L"<customUI xmlns=\"http://schemas.microsoft.com/office/2009/07/customui\"><backstage>"
    L"<tab id=\"tab\" label=\"Fake\"><firstColumn><group id=\"one\" label=\"Description\"><bottomItems>"
    L"<imageControl id=\"logo\" getImage=\"GetPicture\"/><labelControl id=\"text\" label=\"Text with \u015f "
    L"&amp; more\"/>"
    L"</bottomItems></group></firstColumn><secondColumn><group id=\"two\" label=\"Second\" "
    L"helperText=\"Help\">"
    L"<primaryItem><button id=\"go\" label=\"Go\" getImage=\"GetPicture\" isDefinitive=\"false\" "
    L"onAction=\"Press\"/>"
    L"</primaryItem><topItems><hyperlink id=\"link\" label=\"A link\" "
    L"target=\"orvahosttest:page?a=b&amp;c=%20d\"/>"
    L"</topItems></group></secondColumn></tab></backstage></customUI>";

class FileViewTest : public HostFixture
{
protected:
    void Start(const std::wstring& markup = kMarkup, const std::wstring& fault = {},
               const std::vector<std::wstring>& options = {L"--backstage"})
    {
        StartHost(options, fault, markup);
        ASSERT_TRUE(WaitForTrace("Outlook: start-up complete")) << TraceText();
    }

    // Waits for a control of the File view; null when there is none in time.
    HWND Control(int id)
    {
        HWND found = nullptr;
        WaitUntil([&] {
            found = ChildById(MainWindow(), id);
            return found != nullptr;
        });
        return found;
    }

    std::wstring ControlText(int id) { return WindowText(Control(id)); }
    void Click(int id) { PostMessageW(Control(id), BM_CLICK, 0, 0); }
};

TEST_F(FileViewTest, ShowsTheTabWithItsControls)
{
    Start();
    EXPECT_EQ(ControlText(kTabButton), L"Fake");
    EXPECT_EQ(ControlText(kHeading), L"Description");
    EXPECT_EQ(ControlText(kText), L"Text with \u015f & more");
    EXPECT_EQ(ControlText(kHelper), L"Help");
    EXPECT_EQ(ControlText(kButton), L"Go");
    EXPECT_EQ(ControlText(kLink), L"A link");
    EXPECT_TRUE(HasTrace("Outlook: custom UI of OrvaHostTest.FakeAddIn: File tab tab \"Fake\""))
        << TraceText();
    EXPECT_EQ(CloseHost(), 0);
}

TEST_F(FileViewTest, AsksForPicturesByNameWithARibbonControl)
{
    Start();
    ASSERT_NE(Control(kLink), nullptr);
    const std::string to = "Outlook -> OrvaHostTest.FakeAddIn: ";
    EXPECT_TRUE(HasTrace(to + "GetIDsOfNames(GetPicture) = 0x00000000")) << TraceText();
    EXPECT_TRUE(HasTrace(to + "Invoke 101 GetPicture(logo) = 0x00000000")) << TraceText();
    EXPECT_TRUE(HasTrace(to + "Invoke 101 GetPicture(go) = 0x00000000"));
    EXPECT_TRUE(HasTrace("Outlook: picture of logo: 36 x 36, transparent")) << TraceText();
    RECT box{};
    GetClientRect(Control(kLogo), &box);
    EXPECT_EQ(box.right, 36);
    EXPECT_EQ(box.bottom, 36);
    EXPECT_EQ(CloseHost(), 0);
}

TEST_F(FileViewTest, ButtonCallsItsActionWithTheControl)
{
    Start();
    Click(kButton);
    EXPECT_TRUE(WaitForTrace("Outlook -> OrvaHostTest.FakeAddIn: Invoke 102 Press(go) = 0x00000000"))
        << TraceText();
    EXPECT_TRUE(HasTrace("add-in -> Outlook: IRibbonControl.get_Id = 0x00000000; \"go\"")) << TraceText();
    // Not definitive: the view stays.
    EXPECT_NE(ChildById(MainWindow(), kButton), nullptr);
    EXPECT_EQ(CloseHost(), 0);
}

TEST_F(FileViewTest, DefinitiveButtonClosesTheView)
{
    std::wstring markup = kMarkup;
    const std::wstring stored = L"isDefinitive=\"false\"";
    markup.replace(markup.find(stored), stored.size(), L"isDefinitive=\"true\"");
    Start(markup);
    Click(kButton);
    EXPECT_TRUE(WaitUntil([&] { return ChildById(MainWindow(), kButton) == nullptr; })) << TraceText();
    EXPECT_TRUE(HasTrace("Outlook -> OrvaHostTest.FakeAddIn: Invoke 102 Press(go) = 0x00000000"));
    EXPECT_EQ(CloseHost(), 0);
}

TEST_F(FileViewTest, LinkOpensItsTargetWithTheSystemsHandler)
{
    // The handler writes the address into a file.
    const std::wstring record = Folder().File(L"opened.txt");
    const std::wstring key = L"Software\\Classes\\orvahosttest";
    CRegistryValue protocol(HKEY_LOCAL_MACHINE, key, L"URL Protocol");
    protocol.SetString(L"");
    CRegistryValue handler(HKEY_LOCAL_MACHINE, key + L"\\shell\\open\\command", L"");
    handler.SetString(L"cmd.exe /c echo \"%1\">\"" + record + L"\"");
    Start();
    Click(kLink);
    EXPECT_TRUE(WaitUntil([&] { return ReadFileBytes(record).value_or("").find('\n') != std::string::npos; }))
        << TraceText();
    EXPECT_THAT(SplitLines(ReadFileBytes(record).value_or("")),
                ElementsAre("\"orvahosttest:page?a=b&c=%20d\""));
    EXPECT_TRUE(HasTrace("Outlook: link link opened orvahosttest:page?a=b&c=%20d")) << TraceText();
    EXPECT_EQ(CloseHost(), 0);
}

TEST_F(FileViewTest, BackAndTheFileButtonCloseAndOpenIt)
{
    Start();
    Click(kBackButton);
    ASSERT_TRUE(WaitUntil([&] { return ChildById(MainWindow(), kTabButton) == nullptr; }));
    Click(kFileButton);
    EXPECT_EQ(ControlText(kTabButton), L"Fake");
    PostMessageW(Control(kTabButton), WM_KEYDOWN, VK_ESCAPE, 0);
    EXPECT_TRUE(WaitUntil([&] { return ChildById(MainWindow(), kTabButton) == nullptr; }));
    EXPECT_EQ(CloseHost(), 0);
}

TEST_F(FileViewTest, EnterOnTheFocusedButtonPressesIt)
{
    Start();
    ASSERT_NE(Control(kButton), nullptr);
    // From the tab's button to "Back to mail", then to the first control of the page.
    for (const int id : {kTabButton, kBackButton, kButton})
    {
        ASSERT_TRUE(WaitUntil([&] { return FocusOf(MainWindow()) == Control(id); }))
            << id << " does not have the focus, but " << GetDlgCtrlID(FocusOf(MainWindow()));
        if (id != kButton)
        {
            PostKey(MainWindow(), VK_TAB);
        }
    }
    PostKey(MainWindow(), VK_RETURN);
    EXPECT_TRUE(WaitForTrace("Outlook -> OrvaHostTest.FakeAddIn: Invoke 102 Press(go) = 0x00000000"))
        << TraceText();
    EXPECT_EQ(CloseHost(), 0);
}

TEST_F(FileViewTest, InfoAndTabPagesCanBeSwitched)
{
    Start();
    Click(kInfoButton);
    ASSERT_TRUE(WaitForTrace("Outlook: File view shows Info"));
    EXPECT_EQ(ControlText(kInfoNote), L"This is the stand-in Outlook. It has no accounts.");
    EXPECT_EQ(ChildById(MainWindow(), kButton), nullptr);
    Click(kTabButton);
    ASSERT_NE(Control(kLink), nullptr);
    EXPECT_EQ(ControlText(kButton), L"Go");
    EXPECT_EQ(CloseHost(), 0);
}

TEST_F(FileViewTest, MarkupThatIsNotWellFormedGivesNoTabButANote)
{
    std::wstring markup = kMarkup;
    const std::wstring stored = L"helperText=\"Help\"";
    markup.replace(markup.find(stored), stored.size(), L"helperText=\"Press \"Go\" now\"");
    Start(markup);
    const std::wstring note = ControlText(kInfoNote);
    EXPECT_EQ(note.rfind(L"The custom UI of OrvaHostTest.FakeAddIn cannot be shown: ", 0), 0u) << Utf8(note);
    EXPECT_NE(note.find(L"(line 2, position "), std::wstring::npos) << Utf8(note);
    EXPECT_EQ(ChildById(MainWindow(), kTabButton), nullptr);
    const std::vector<std::string> lines = Trace();
    EXPECT_EQ(std::count_if(lines.begin(), lines.end(),
                            [](const std::string& line) {
                                return line.rfind("Outlook: custom UI of OrvaHostTest.FakeAddIn refused: ",
                                                  0) == 0;
                            }),
              1)
        << TraceText();
    EXPECT_EQ(CloseHost(), 0);
}

TEST_F(FileViewTest, MissingCallbackLeavesTheControlWithoutAPicture)
{
    std::wstring markup = kMarkup;
    const std::wstring stored = L"GetPicture";
    markup.replace(markup.find(stored), stored.size(), L"GetNothing");
    Start(markup);
    ASSERT_NE(Control(kLink), nullptr);
    EXPECT_TRUE(HasTrace("Outlook -> OrvaHostTest.FakeAddIn: GetIDsOfNames(GetNothing) = 0x80020006"))
        << TraceText();
    EXPECT_TRUE(HasTrace("Outlook: picture of logo: none"));
    EXPECT_EQ(CloseHost(), 0);
}

TEST_F(FileViewTest, OutlookClosesOnlyWhenTheDialogOfACallbackIsGone)
{
    Start(kMarkup, L"box");
    Click(kButton);
    CWindowQuery query;
    query.process = HostProcess();
    query.caption = L"Fake add-in";
    const HWND box = WaitForWindow(query);
    ASSERT_NE(box, nullptr) << TraceText();
    PostMessageW(MainWindow(), WM_CLOSE, 0, 0);
    ASSERT_TRUE(ClickButton(box, IDOK) || ClickButton(box, IDCANCEL));
    EXPECT_EQ(WaitForHost(), 0) << TraceText();
    EXPECT_LT(TraceIndex("Outlook -> OrvaHostTest.FakeAddIn: Invoke 102 Press(go) = 0x00000000"),
              TraceIndex("Outlook: shutting down"));
}

TEST_F(FileViewTest, Version12HasNoneAndDoesNotAskForCustomUi)
{
    Start(kMarkup, {}, {L"--office", L"12", L"--backstage"});
    EXPECT_TRUE(WaitForTrace("Outlook: version 12 shows no File tab")) << TraceText();
    EXPECT_EQ(CloseHost(), 0);
    EXPECT_THAT(Trace(), Not(Contains(HasSubstr("GetCustomUI"))));
    EXPECT_THAT(Trace(), Not(Contains(StartsWith("Outlook: File view"))));
}

TEST_F(FileViewTest, Version15AsksForCustomUiAndShowsNoTab)
{
    Start(kMarkup, {}, {L"--office", L"15", L"--backstage"});
    EXPECT_TRUE(WaitForTrace("Outlook: version 15 shows no File tab")) << TraceText();
    EXPECT_EQ(CloseHost(), 0);
    EXPECT_THAT(Trace(), Contains(HasSubstr("GetCustomUI")));
    EXPECT_THAT(Trace(), Not(Contains(StartsWith("Outlook: File view"))));
}

} // namespace
