// Where a modal dialog comes up.
#include "MfcResources.h"
#include "MfcTestWindow.h"

#include <afxwin.h>

#include <gtest/gtest.h>

#include <optional>

namespace
{

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

    RECT PlaceOf(CPlacedDialog& dialog)
    {
        EXPECT_EQ(IDOK, dialog.DoModal());
        return dialog.m_shownAt;
    }
    void ExpectCentred(const RECT& rect)
    {
        RECT owner = {};
        GetWindowRect(m_owner, &owner);
        EXPECT_NEAR(owner.left + owner.right, rect.left + rect.right, 2);
        EXPECT_NEAR(owner.top + owner.bottom, rect.top + rect.bottom, 2);
    }
    POINT OwnersClientOrigin() const
    {
        POINT origin = {0, 0};
        ClientToScreen(m_owner, &origin);
        return origin;
    }

    AFX_MAINTAIN_STATE2 m_state{AfxGetStaticModuleState()};
    // Without a caption, so that no window manager moves it.
    const CTestWindow m_owner{nullptr, WS_POPUP | WS_VISIBLE};
    CWnd m_parent;
};

TEST_F(MfcDialogPlace, IsCentredOverItsOwner)
{
    CPlacedDialog dialog(IDD_PLAIN, &m_parent);
    ExpectCentred(PlaceOf(dialog));
}

TEST_F(MfcDialogPlace, TemplateOfTheOldFormIsCentredToo)
{
    CPlacedDialog dialog(IDD_OLD_FORM, &m_parent);
    ExpectCentred(PlaceOf(dialog));
}

TEST_F(MfcDialogPlace, TemplateWithAPositionKeepsIt)
{
    CPlacedDialog dialog(IDD_POSITIONED, &m_parent);
    const RECT rect = PlaceOf(dialog);
    const POINT origin = OwnersClientOrigin();
    // Some dialog units right of and below the owner's corner; whether its frame counts differs by system.
    EXPECT_GT(rect.left, origin.x + 20);
    EXPECT_LT(rect.left, origin.x + 80);
    EXPECT_GT(rect.top, origin.y - 10);
    EXPECT_LT(rect.top, origin.y + 60);
}

TEST_F(MfcDialogPlace, TemplateOfTheOldFormWithAPositionKeepsIt)
{
    CPlacedDialog dialog(IDD_OLD_POSITIONED, &m_parent);
    EXPECT_LT(PlaceOf(dialog).left, OwnersClientOrigin().x + 80);
}

TEST_F(MfcDialogPlace, AbsolutePlacementIsNotCentred)
{
    CPlacedDialog dialog(IDD_ABSOLUTE, &m_parent);
    EXPECT_LT(PlaceOf(dialog).left, 100);
}

TEST_F(MfcDialogPlace, DialogMovedByOnInitDialogStaysThere)
{
    CPlacedDialog dialog(IDD_PLAIN, &m_parent);
    dialog.m_movesTo = {33, 44};
    const RECT rect = PlaceOf(dialog);
    EXPECT_EQ(33, rect.left);
    EXPECT_EQ(44, rect.top);
}

} // namespace
