// Where a modal dialog comes up, and where a window is centred.
#include "MfcResources.h"
#include "MfcTestWindow.h"

#include <afxwin.h>

#include <gtest/gtest.h>

#include <optional>

namespace
{

// Without a caption, so that no window manager moves it.
constexpr DWORD kPlain = WS_POPUP | WS_VISIBLE;

// Notes its place when it is shown, before a window manager has a say, and ends.
class CPlacedDialog : public CDialog
{
public:
    CPlacedDialog(UINT id, CWnd* parent) : CDialog(id, parent) {}
    RECT m_shownAt = {};
    std::optional<POINT> m_movesTo;

protected:
    BOOL OnInitDialog() override
    {
        CDialog::OnInitDialog();
        if (m_movesTo)
        {
            ::SetWindowPos(m_hWnd, nullptr, m_movesTo->x, m_movesTo->y, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
        }
        return TRUE;
    }
    BOOL OnWndMsg(UINT message, WPARAM wParam, LPARAM lParam, LRESULT* result) override
    {
        if (message == WM_SHOWWINDOW && wParam)
        {
            GetWindowRect(&m_shownAt);
            PostMessage(WM_COMMAND, IDOK);
        }
        return CDialog::OnWndMsg(message, wParam, lParam, result);
    }
};

class MfcDialogPlace : public testing::Test
{
protected:
    MfcDialogPlace()
    {
        SetWindowPos(m_owner, nullptr, 200, 150, 700, 600, SWP_NOZORDER);
        m_parent.Attach(m_owner);
    }
    ~MfcDialogPlace() override { m_parent.Detach(); }

    RECT PlaceOf(UINT id, std::optional<POINT> movesTo = {})
    {
        CPlacedDialog dialog(id, &m_parent);
        dialog.m_movesTo = movesTo;
        EXPECT_EQ(IDOK, dialog.DoModal());
        return dialog.m_shownAt;
    }

    AFX_MAINTAIN_STATE2 m_state{AfxGetStaticModuleState()};
    const CTestWindow m_owner{nullptr, kPlain};
    CWnd m_parent;
};

TEST_F(MfcDialogPlace, TemplateOfEitherFormIsCentredOverTheOwner)
{
    RECT owner = {};
    GetWindowRect(m_owner, &owner);
    for (const UINT id : {UINT{IDD_PLAIN}, UINT{IDD_OLD_FORM}})
    {
        const RECT rect = PlaceOf(id);
        EXPECT_NEAR(owner.left + owner.right, rect.left + rect.right, 2) << id;
        EXPECT_NEAR(owner.top + owner.bottom, rect.top + rect.bottom, 2) << id;
    }
}

TEST_F(MfcDialogPlace, TemplateOfEitherFormWithAPositionKeepsIt)
{
    POINT origin = {0, 0};
    ClientToScreen(m_owner, &origin);
    for (const UINT id : {UINT{IDD_POSITIONED}, UINT{IDD_OLD_POSITIONED}})
    {
        const RECT rect = PlaceOf(id);
        // Some dialog units right of and below the owner's corner; whether its frame counts differs by
        // system.
        EXPECT_GT(rect.left, origin.x + 20) << id;
        EXPECT_LT(rect.left, origin.x + 80) << id;
        EXPECT_GT(rect.top, origin.y - 10) << id;
        EXPECT_LT(rect.top, origin.y + 60) << id;
    }
}

TEST_F(MfcDialogPlace, AbsolutePlacementIsNotCentred)
{
    EXPECT_LT(PlaceOf(IDD_ABSOLUTE).left, 100);
}

TEST_F(MfcDialogPlace, DialogMovedByOnInitDialogStaysThere)
{
    const RECT rect = PlaceOf(IDD_PLAIN, POINT{33, 44});
    EXPECT_EQ(33, rect.left);
    EXPECT_EQ(44, rect.top);
}

TEST(MfcCenterWindow, IsOverTheVisibleOwnerAndInsideTheWorkArea)
{
    RECT work = {};
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &work, 0);
    const POINT middle = {(work.left + work.right) / 2, (work.top + work.bottom) / 2};
    const struct
    {
        const char* what;
        DWORD ownersStyle;
        POINT owner; // 600 by 500
        POINT expected;
    } rows[] = {
        {"the owner's middle", kPlain, {200, 150}, {300, 250}},
        {"inside the work area", kPlain, {-550, -450}, {0, 0}},
        {"over no hidden owner", WS_POPUP, {0, 0}, {middle.x - 200, middle.y - 150}},
    };
    for (const auto& [what, ownersStyle, owner, expected] : rows)
    {
        SCOPED_TRACE(what);
        const CTestWindow main(nullptr, ownersStyle);
        SetWindowPos(main, nullptr, owner.x, owner.y, 600, 500, SWP_NOZORDER);
        const CTestWindow popup(main, WS_POPUP);
        SetWindowPos(popup, nullptr, 10, 10, 400, 300, SWP_NOZORDER);
        CWnd wnd;
        wnd.Attach(popup);
        wnd.CenterWindow();
        wnd.Detach();
        RECT rect = {};
        GetWindowRect(popup, &rect);
        EXPECT_EQ(expected.x, rect.left);
        EXPECT_EQ(expected.y, rect.top);
    }
}

} // namespace
