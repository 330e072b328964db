// The dialog that offers a newer build: texts, keys, appearance and result.
#include "update/UpdateAvailableDlg.h"

#include "update/UpdateFixture.h"

#include <richedit.h>

namespace orva::test
{
namespace
{

class UpdateAvailableDlgTest : public testing::Test
{
protected:
    INT_PTR Run(std::function<void(HWND)> act)
    {
        m_user.OnDialogWith(kDescriptionText, std::move(act)).Start();
        AFX_MANAGE_STATE(AfxGetStaticModuleState());
        CUpdateAvailableDlg dialog;
        dialog.SetDescription(m_description);
        dialog.SetVersions(L"1.2.0", L"1.3.7");
        const INT_PTR result = dialog.DoModal();
        m_seen = m_user.Finish();
        return result;
    }

    CString m_description = L"Faster contacts.";
    COfficeLanguage m_language{1033};
    CUserScript m_user;
    std::vector<CSeenWindow> m_seen;
};

void ClickLater(HWND dialog)
{
    ClickButton(dialog, kLaterButton);
}

TEST_F(UpdateAvailableDlgTest, ButtonsAndKeysGiveTheirResults)
{
    EXPECT_EQ(Run([](HWND dialog) { ClickButton(dialog, kInstallButton); }), IDOK);
    EXPECT_EQ(Run(ClickLater), IDCANCEL);
    EXPECT_EQ(Run([](HWND dialog) { EXPECT_TRUE(TypeKey(dialog, VK_ESCAPE)); }), IDCANCEL);
    EXPECT_EQ(Run([](HWND dialog) { EXPECT_TRUE(TypeKey(dialog, VK_RETURN)); }), IDOK);
}

TEST_F(UpdateAvailableDlgTest, FocusStartsOnInstallAndTabGoesToLaterAndBack)
{
    EXPECT_EQ(Run([](HWND dialog) {
                  const auto hasFocus = [&](int id) {
                      return WaitUntil([&] { return FocusOf(dialog) == ChildById(dialog, id); });
                  };
                  EXPECT_TRUE(hasFocus(kInstallButton));
                  EXPECT_TRUE(TypeKey(dialog, VK_TAB));
                  EXPECT_TRUE(hasFocus(kLaterButton));
                  EXPECT_TRUE(TypeKey(dialog, VK_TAB));
                  EXPECT_TRUE(hasFocus(kInstallButton));
                  ClickLater(dialog);
              }),
              IDCANCEL);
}

TEST_F(UpdateAvailableDlgTest, EnglishTexts)
{
    Run(ClickLater);
    ASSERT_EQ(m_seen.size(), 1u);
    EXPECT_EQ(m_seen[0].caption, L"New update available");
    EXPECT_EQ(m_seen[0].Control(kAvailableText), L"Available version: 1.3.7");
    EXPECT_EQ(m_seen[0].Control(kInstalledText), L"Installed version: 1.2.0");
    EXPECT_EQ(m_seen[0].Control(kInstallButton), L"Install");
    EXPECT_EQ(m_seen[0].Control(kLaterButton), L"Later");
    EXPECT_EQ(m_seen[0].Control(kDescriptionText), L"Faster contacts.");
}

TEST_F(UpdateAvailableDlgTest, GermanTexts)
{
    const COfficeLanguage german(1031);
    Run(ClickLater);
    ASSERT_EQ(m_seen.size(), 1u);
    EXPECT_EQ(m_seen[0].caption, L"Neues Update verfügbar");
    EXPECT_EQ(m_seen[0].Control(kInstallButton), L"Installieren");
    EXPECT_EQ(m_seen[0].Control(kLaterButton), L"Später");
}

TEST_F(UpdateAvailableDlgTest, LongDescriptionWrapsAtTheControlsWidthAndCannotBeEdited)
{
    m_description = CString(std::wstring(4000, L'w').insert(2000, L" ").c_str());
    Run([](HWND dialog) {
        const HWND control = ChildById(dialog, kDescriptionText);
        EXPECT_GT(SendMessageW(control, EM_GETLINECOUNT, 0, 0), 20);
        const std::wstring before = WindowText(control);
        SendMessageW(control, WM_CHAR, L'x', 0);
        EXPECT_EQ(WindowText(control), before);
        ClickLater(dialog);
    });
}

TEST_F(UpdateAvailableDlgTest, DescriptionIsShownUnchangedWithItsSpecialCharacters)
{
    m_description = L"Größer & <schöner>: 100 % \u20AC şğı";
    Run(ClickLater);
    ASSERT_EQ(m_seen.size(), 1u);
    EXPECT_EQ(m_seen[0].Control(kDescriptionText), L"Größer & <schöner>: 100 % \u20AC şğı");
}

TEST_F(UpdateAvailableDlgTest, BackgroundIsWhite)
{
    Run([](HWND dialog) {
        RECT client;
        GetClientRect(dialog, &client);
        EXPECT_TRUE(WaitForWhite(dialog, client.right / 2, client.bottom - 4));
        ClickLater(dialog);
    });
}

TEST_F(UpdateAvailableDlgTest, OnlyTheVersionLinesAreWhite)
{
    Run([](HWND dialog) {
        const auto isWhite = [&](int id) {
            const HDC dc = CreateCompatibleDC(nullptr);
            SetBkColor(dc, RGB(255, 0, 0));
            SendMessageW(dialog, WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(dc),
                         reinterpret_cast<LPARAM>(ChildById(dialog, id)));
            const COLORREF background = GetBkColor(dc);
            DeleteDC(dc);
            return background == RGB(255, 255, 255);
        };
        EXPECT_TRUE(isWhite(kAvailableText));
        EXPECT_TRUE(isWhite(kInstalledText));
        EXPECT_FALSE(isWhite(IDC_UPDATE_LOGO));
        ClickLater(dialog);
    });
}

TEST_F(UpdateAvailableDlgTest, IsOwnedByTheThreadsActiveWindowWhenItHasNoParent)
{
    const COwnerWindow owner;
    Run(ClickLater);
    ASSERT_EQ(m_seen.size(), 1u);
    EXPECT_EQ(m_seen[0].owner, owner.Handle());
}

TEST(UpdateAvailableDlgClassTest, CarriesItsRunTimeClassName)
{
    CUpdateAvailableDlg dialog;
    EXPECT_STREQ(dialog.GetRuntimeClass()->m_lpszClassName, "CUpdateAvailableDlg");
}

} // namespace
} // namespace orva::test
