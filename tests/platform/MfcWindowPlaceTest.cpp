// The window that owns a modal one, and the place over it.
#include "MfcTestWindow.h"

#include <afxwin.h>

#include <gtest/gtest.h>

namespace
{

TEST(MfcWindowPlace, OwnerOfAModalWindowIsNeverAChild)
{
    const CTestWindow main;
    const CTestWindow child(main, WS_CHILD | WS_VISIBLE);
    const CTestWindow grandchild(child, WS_CHILD | WS_VISIBLE);
    HWND top = main;
    EXPECT_EQ(main, CWnd::GetSafeOwner_(grandchild, &top));
    EXPECT_EQ(nullptr, top) << "the owner itself is not the window to be disabled besides";
    EXPECT_TRUE(IsWindowEnabled(main));
}

TEST(MfcWindowPlace, TopLevelWindowAboveTheOwnerIsDisabledAndNamed)
{
    const CTestWindow main;
    const CTestWindow popup(main, WS_POPUP | WS_CAPTION | WS_VISIBLE);
    HWND top = nullptr;
    EXPECT_EQ(popup, CWnd::GetSafeOwner_(popup, &top));
    EXPECT_EQ(main, top);
    EXPECT_FALSE(IsWindowEnabled(main));
    EXPECT_EQ(popup, CWnd::GetSafeOwner_(popup, &top));
    EXPECT_EQ(nullptr, top) << "one that is disabled already is nobody's to enable";
}

TEST(MfcWindowPlace, OwnerWithoutAParentIsTheLastActivePopupOfTheActiveWindow)
{
    AFX_MANAGE_STATE(AfxGetStaticModuleState())
    const CTestWindow main;
    SetActiveWindow(main);
    EXPECT_EQ(main, CWnd::GetSafeOwner_(nullptr, nullptr));
    const CTestWindow popup(main, WS_POPUP | WS_CAPTION | WS_VISIBLE);
    SetActiveWindow(popup);
    EXPECT_EQ(popup, CWnd::GetSafeOwner_(nullptr, nullptr));
}

TEST(MfcWindowPlace, OwnerWithoutAParentIsTheLastActivePopupOfTheMainWindow)
{
    AFX_MODULE_STATE other(GetModuleHandleW(L"kernel32.dll"));
    AFX_MANAGE_STATE(&other)
    const CTestWindow main;
    const CTestWindow popup(main, WS_POPUP | WS_CAPTION | WS_VISIBLE);
    SetActiveWindow(popup);
    CWinApp app(L"Name");
    app.m_pMainWnd = CWnd::FromHandle(main);
    EXPECT_EQ(popup, CWnd::GetSafeOwner_(nullptr, nullptr));
    EXPECT_EQ(main, CWnd::GetSafeOwner_(main, nullptr)) << "a parent that is given is taken as it is";
}

TEST(MfcWindowPlace, CentringPlacesTheMiddleOverTheOwners)
{
    const CTestWindow main(nullptr, WS_POPUP | WS_VISIBLE);
    SetWindowPos(main, nullptr, 200, 150, 600, 500, SWP_NOZORDER);
    const CTestWindow popup(main, WS_POPUP);
    SetWindowPos(popup, nullptr, 0, 0, 200, 100, SWP_NOZORDER);
    CWnd wnd;
    wnd.Attach(popup);
    wnd.CenterWindow();
    RECT rect = {};
    GetWindowRect(popup, &rect);
    RECT owner = {};
    GetWindowRect(main, &owner);
    EXPECT_EQ((owner.left + owner.right) / 2 - 100, rect.left);
    EXPECT_EQ((owner.top + owner.bottom) / 2 - 50, rect.top);
    wnd.Detach();
}

TEST(MfcWindowPlace, CentringKeepsTheWindowInsideTheWorkArea)
{
    const CTestWindow main(nullptr, WS_POPUP | WS_VISIBLE);
    SetWindowPos(main, nullptr, -150, -120, 200, 200, SWP_NOZORDER);
    const CTestWindow popup(main, WS_POPUP);
    SetWindowPos(popup, nullptr, 300, 300, 400, 300, SWP_NOZORDER);
    CWnd wnd;
    wnd.Attach(popup);
    wnd.CenterWindow();
    RECT rect = {};
    GetWindowRect(popup, &rect);
    EXPECT_EQ(0, rect.left);
    EXPECT_EQ(0, rect.top);
    wnd.Detach();
}

TEST(MfcWindowPlace, CentringIgnoresAHiddenOwner)
{
    const CTestWindow main(nullptr, WS_POPUP);
    SetWindowPos(main, nullptr, 0, 0, 50, 50, SWP_NOZORDER);
    const CTestWindow popup(main, WS_POPUP);
    SetWindowPos(popup, nullptr, 0, 0, 400, 300, SWP_NOZORDER);
    CWnd wnd;
    wnd.Attach(popup);
    wnd.CenterWindow();
    RECT work = {};
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &work, 0);
    RECT rect = {};
    GetWindowRect(popup, &rect);
    EXPECT_EQ((work.left + work.right - 400) / 2, rect.left);
    EXPECT_EQ((work.top + work.bottom - 300) / 2, rect.top);
    wnd.Detach();
}

} // namespace
