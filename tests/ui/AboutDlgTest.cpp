// The About dialog: texts, links, keys, the update check started from it, and the host's window while it is
// open.
#include "ui/AboutDlg.h"

#include "fixture/ProductFixture.h"
#include "fixture/UpdateInfo.h"
#include "fixture/UserTexts.h"
#include "harness/Files.h"
#include "harness/HttpReply.h"
#include "harness/LoopbackServer.h"
#include "harness/ProxySetting.h"
#include "harness/TempFolder.h"
#include "harness/Text.h"
#include "harness/UserScript.h"
#include "res/resource.h"
#include "ui/LocalizedResources.h"

#include <gtest/gtest.h>

#include <commctrl.h>

namespace orva::test
{
namespace
{

void Close(HWND dialog)
{
    ClickButton(dialog, IDC_ABOUT_CLOSE);
}

class AboutDlgTest : public testing::Test
{
protected:
    void SetUp() override { EnableWindow(m_owner.Handle(), TRUE); }

    CUserScript& OnAbout(std::function<void(HWND)> act)
    {
        return m_user.OnDialogWith(IDC_ABOUT_TITLE, std::move(act));
    }

    // The user reads this box of a check, and then presses a button of the dialog, which is enabled again.
    CUserScript& AnswerBoxAndPress(const wchar_t* text, int button)
    {
        return m_user.AnswerBox(text).Then("press " + std::to_string(button), [=] {
            const HWND about = FindTopLevelWindow({.childId = IDC_ABOUT_TITLE});
            return WaitUntilEnabled(about) && ClickButton(about, button);
        });
    }

    // Shows the dialog; the user must take all of his steps.
    void Show()
    {
        m_user.Start();
        ShowAboutDialog(m_owner.Handle());
        m_seen = m_user.Finish();
    }

    void Publish(const CHttpReply& reply) { m_server.On(kUpdateInfoPath, reply); }

    CLoopbackServer m_server;
    CProxySetting m_proxy{m_server.Port()};
    COfficeLanguage m_language{1033};
    COwnerWindow m_owner;
    CUserScript m_user;
    std::vector<CSeenWindow> m_seen;
};

TEST_F(AboutDlgTest, EnglishTexts)
{
    OnAbout(Close);
    Show();
    ASSERT_EQ(m_seen.size(), 1u);
    EXPECT_EQ(m_seen[0].caption, L"ORVA Connector");
    const std::pair<int, const wchar_t*> texts[] = {
        {IDC_ABOUT_TITLE, L"ORVA Connector"},
        {IDC_ABOUT_LINKS_GROUP, L"More information"},
        {IDC_ABOUT_LINKS_TEXT,
         L"The following links provide you with information about use and troubleshooting:"},
        {IDC_ABOUT_LINK1, L"<a href=\"http://www.orva.example/outlook\">ORVA Connector information</a>"},
        {IDC_ABOUT_LINK2, L"<a href=\"http://www.orva.example/outlook/faqs\">FAQs</a>"},
        {IDC_ABOUT_LINK3, L"<a href=\"http://www.orva.example/app/user?op=imprint\">About this site</a>"},
        {IDC_ABOUT_VERSION_GROUP, L"Version"},
        {IDC_ABOUT_VERSION_TEXT, L"Please click on the update button to ensure that you installed the latest "
                                 L"version of the ORVA Connector plugin."},
        {IDC_ABOUT_UPDATE, L"Update"},
        {IDC_ABOUT_VERSION_LINE1, L"Version 1.2.0 (64-bit)"},
        {IDC_ABOUT_CLOSE, L"Close"},
    };
    for (const auto& [control, text] : texts)
    {
        EXPECT_EQ(m_seen[0].Control(control), text);
    }
    const CLocalizedResources& resources = GetLocalizedResources();
    EXPECT_STREQ(m_seen[0].Control(IDC_ABOUT_DESCRIPTION).c_str(),
                 resources.LoadString(IDS_DESCRIPTION1) + L"\n\n" + resources.LoadString(IDS_DESCRIPTION2) +
                     L"\n\n" + resources.LoadString(IDS_DESCRIPTION3));
}

TEST_F(AboutDlgTest, GermanTexts)
{
    const COfficeLanguage german(1031);
    OnAbout(Close);
    Show();
    ASSERT_EQ(m_seen.size(), 1u);
    EXPECT_EQ(m_seen[0].Control(IDC_ABOUT_LINKS_GROUP), L"Weitere Informationen");
    EXPECT_EQ(m_seen[0].Control(IDC_ABOUT_CLOSE), L"Schließen");
    EXPECT_EQ(m_seen[0].Control(IDC_ABOUT_VERSION_LINE1), L"Version 1.2.0 (64-Bit)");
}

TEST_F(AboutDlgTest, TitleIsBoldAndOtherwiseTheDialogsFont)
{
    OnAbout([](HWND dialog) {
        const auto fontOf = [=](int id) {
            LOGFONTW font{};
            GetObjectW(reinterpret_cast<HFONT>(SendMessageW(ChildById(dialog, id), WM_GETFONT, 0, 0)),
                       sizeof(font), &font);
            return font;
        };
        const LOGFONTW title = fontOf(IDC_ABOUT_TITLE);
        const LOGFONTW other = fontOf(IDC_ABOUT_VERSION_LINE1);
        EXPECT_EQ(title.lfWeight, FW_BOLD);
        EXPECT_EQ(title.lfHeight, other.lfHeight);
        EXPECT_STREQ(title.lfFaceName, other.lfFaceName);
        EXPECT_NE(other.lfWeight, FW_BOLD);
        Close(dialog);
    });
    Show();
}

TEST_F(AboutDlgTest, HostWindowIsDisabledMeanwhileAndEnabledAfter)
{
    OnAbout([&](HWND dialog) {
        EXPECT_FALSE(IsWindowEnabled(m_owner.Handle()));
        Close(dialog);
    });
    Show();
    EXPECT_TRUE(IsWindowEnabled(m_owner.Handle()));
    ASSERT_EQ(m_seen.size(), 1u);
    EXPECT_EQ(m_seen[0].owner, m_owner.Handle());
}

TEST_F(AboutDlgTest, OpensASecondTimeAfterItWasClosed)
{
    OnAbout(Close);
    OnAbout(Close);
    m_user.Start();
    ShowAboutDialog(m_owner.Handle());
    ShowAboutDialog(m_owner.Handle());
    EXPECT_EQ(m_user.Finish().size(), 2u);
}

TEST_F(AboutDlgTest, EscapeEndsIt)
{
    OnAbout([](HWND dialog) { EXPECT_TRUE(TypeKey(dialog, VK_ESCAPE)); });
    Show();
}

TEST_F(AboutDlgTest, EnterPressesCloseWhenCloseHasTheFocus)
{
    const CLogMark log;
    OnAbout([](HWND dialog) {
        SendMessageW(dialog, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(ChildById(dialog, IDC_ABOUT_CLOSE)),
                     TRUE);
        EXPECT_TRUE(TypeKey(dialog, VK_RETURN));
    });
    Show();
    EXPECT_TRUE(log.Has("CAboutDlg::OnBnClickedBtnClose"));
}

// A link takes Enter for itself and reports it as NM_RETURN, which the dialog does not handle: neither the
// link nor the default button is pressed.
TEST_F(AboutDlgTest, EnterOnALinkDoesNothing)
{
    const CLogMark log;
    OnAbout([&](HWND dialog) {
        SendMessageW(dialog, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(ChildById(dialog, IDC_ABOUT_LINK1)),
                     TRUE);
        EXPECT_TRUE(TypeKey(dialog, VK_RETURN));
        // When the focus has moved on, Enter has been handled.
        EXPECT_TRUE(TypeKey(dialog, VK_TAB));
        EXPECT_TRUE(WaitUntil([&] { return FocusOf(dialog) == ChildById(dialog, IDC_ABOUT_LINK2); }));
        EXPECT_FALSE(log.Has("CAboutDlg::OnNMClickSyslink"));
        EXPECT_FALSE(log.Has("CAboutDlg::OnBnClickedBtnClose"));
        Close(dialog);
    });
    Show();
}

TEST_F(AboutDlgTest, TabVisitsTheLinksThenUpdateThenClose)
{
    OnAbout([](HWND dialog) {
        for (const int id : {IDC_ABOUT_LINK1, IDC_ABOUT_LINK2, IDC_ABOUT_LINK3, IDC_ABOUT_UPDATE,
                             IDC_ABOUT_CLOSE, IDC_ABOUT_LINK1})
        {
            EXPECT_TRUE(WaitUntil([&] { return FocusOf(dialog) == ChildById(dialog, id); })) << id;
            EXPECT_TRUE(TypeKey(dialog, VK_TAB));
        }
        Close(dialog);
    });
    Show();
}

TEST_F(AboutDlgTest, EveryHandlerWritesItsEntry)
{
    Publish(CHttpReply(200, kSameVersion));
    const CLogMark log;
    OnAbout([](HWND dialog) { ClickButton(dialog, IDC_ABOUT_UPDATE); });
    AnswerBoxAndPress(kLatest, IDC_ABOUT_CLOSE);
    Show();
    ASSERT_GE(log.Texts().size(), 2u);
    EXPECT_EQ(log.Texts()[0], "ShowAboutDialog");
    EXPECT_EQ(log.Texts()[1], "CAboutDlg::OnInitDialog");
    for (const char* const entry :
         {"CAboutDlg::OnEraseBkgnd", "CAboutDlg::OnCtlColor", "CAboutDlg::OnBnClickedBtnUpdate",
          "CheckForUpdateExplicit", "CAboutDlg::OnBnClickedBtnClose"})
    {
        EXPECT_TRUE(log.Has(entry)) << entry;
    }
}

TEST_F(AboutDlgTest, NeitherButtonReactsWhileTheCheckRunsAndBothWorkAfter)
{
    CGate gate;
    m_server.On(kUpdateInfoPath, CServerScript().WaitFor(gate).Send(CHttpReply(200, kSameVersion).Bytes()));
    HWND about = nullptr;
    OnAbout([&](HWND dialog) {
        about = dialog;
        ClickButton(dialog, IDC_ABOUT_UPDATE);
        EXPECT_TRUE(gate.WaitUntilReached());
        EXPECT_FALSE(IsWindowEnabled(dialog));
        gate.Open();
    });
    AnswerBoxAndPress(kLatest, IDC_ABOUT_UPDATE);
    AnswerBoxAndPress(kLatest, IDC_ABOUT_CLOSE);
    Show();
    ASSERT_EQ(m_seen.size(), 3u);
    EXPECT_EQ(m_seen[1].owner, about);
    EXPECT_EQ(m_server.RequestsFor(kUpdateInfoPath).size(), 2u);
}

TEST_F(AboutDlgTest, CheckThatRaisesIsShownAndLoggedAndLeavesTheDialogOpenAndEnabled)
{
    Publish(CHttpReply(200, R"({"x64": {"majorVersion": "1"}})"));
    const CLogMark log;
    OnAbout([](HWND dialog) { ClickButton(dialog, IDC_ABOUT_UPDATE); });
    AnswerBoxAndPress(kNotParsed, IDC_ABOUT_CLOSE);
    Show();
    EXPECT_TRUE(log.Has("CAboutDlg::OnBnClickedBtnUpdate() Caught exception value type is 2 not 4"));
}

TEST_F(AboutDlgTest, BackgroundIsWhite)
{
    OnAbout([](HWND dialog) {
        RECT client;
        GetClientRect(dialog, &client);
        EXPECT_TRUE(WaitForWhite(dialog, 4, client.bottom - 4));
        Close(dialog);
    });
    Show();
}

// Registers a browser that writes the address that it is called with to a file.
class AboutDlgLinkTest : public AboutDlgTest, public testing::WithParamInterface<std::pair<int, const char*>>
{
protected:
    AboutDlgLinkTest()
    {
        m_protocol.SetString(L"");
        m_command.SetString(L"cmd.exe /c echo %1>\"" + m_folder.File(L"address") + L"\"");
    }

    CTempFolder m_folder;
    CRegistryTreeGuard m_kept{HKEY_LOCAL_MACHINE, L"Software\\Classes\\http"};
    CRegistryValue m_protocol{HKEY_LOCAL_MACHINE, L"Software\\Classes\\http", L"URL Protocol"};
    CRegistryValue m_command{HKEY_LOCAL_MACHINE, L"Software\\Classes\\http\\shell\\open\\command", L""};
};

TEST_P(AboutDlgLinkTest, OpensItsExactAddressAndLeavesTheDialogOpen)
{
    const int link = GetParam().first;
    const char* const address = GetParam().second;
    const std::wstring file = m_folder.File(L"address");
    OnAbout([&](HWND dialog) {
        SendMessageW(dialog, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(ChildById(dialog, link)), TRUE);
        const LPARAM position = MAKELPARAM(6, 4);
        PostMessageW(ChildById(dialog, link), WM_LBUTTONDOWN, MK_LBUTTON, position);
        PostMessageW(ChildById(dialog, link), WM_LBUTTONUP, 0, position);
        EXPECT_TRUE(WaitForLogText("CAboutDlg::OnNMClickSyslink"));
        EXPECT_TRUE(WaitForFile(file, std::string(address).size()));
        EXPECT_TRUE(IsWindowVisible(dialog));
        Close(dialog);
    });
    Show();
    const std::string written = ReadFileBytes(file).value_or("");
    EXPECT_EQ(written.substr(0, written.find_last_not_of("\r\n ") + 1), address);
}

INSTANTIATE_TEST_SUITE_P(Links, AboutDlgLinkTest,
                         testing::Values(std::pair{IDC_ABOUT_LINK1, "http://www.orva.example/outlook"},
                                         std::pair{IDC_ABOUT_LINK2, "http://www.orva.example/outlook/faqs"},
                                         std::pair{IDC_ABOUT_LINK3,
                                                   "http://www.orva.example/app/user?op=imprint"}));

} // namespace
} // namespace orva::test
