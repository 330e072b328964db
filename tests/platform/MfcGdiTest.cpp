// Device contexts, brushes and fonts: drawing, who owns a handle and who only borrows it.
#include "MfcTestWindow.h"

#include <afxwin.h>

#include <gtest/gtest.h>

namespace
{

bool Exists(HGDIOBJ object)
{
    return GetObjectType(object) != 0;
}

TEST(MfcGdi, BrushPaintsARectangleAndThePreviousOneComesBack)
{
    AFX_MANAGE_STATE(AfxGetStaticModuleState())
    CDC dc;
    ASSERT_TRUE(dc.CreateCompatibleDC(nullptr));
    const HDC screen = GetDC(nullptr);
    const HBITMAP bitmap = CreateCompatibleBitmap(screen, 10, 10);
    ReleaseDC(nullptr, screen);
    const HGDIOBJ previousBitmap = SelectObject(dc, bitmap);

    CBrush brush(RGB(255, 0, 0));
    CBrush* const previous = dc.SelectObject(&brush);
    ASSERT_TRUE(previous);
    EXPECT_TRUE(dc.PatBlt(2, 2, 5, 5, PATCOPY));
    EXPECT_EQ(RGB(255, 0, 0), GetPixel(dc, 2, 2));
    EXPECT_EQ(RGB(255, 0, 0), GetPixel(dc, 6, 6));
    EXPECT_EQ(RGB(0, 0, 0), GetPixel(dc, 7, 7));
    EXPECT_EQ(static_cast<HBRUSH>(brush), dc.SelectObject(previous)->m_hObject);

    SelectObject(dc, previousBitmap);
    DeleteObject(bitmap);
}

TEST(MfcGdi, ColoursReturnThePreviousOnes)
{
    CDC dc;
    ASSERT_TRUE(dc.CreateCompatibleDC(nullptr));
    EXPECT_EQ(RGB(255, 255, 255), dc.SetBkColor(RGB(1, 2, 3)));
    EXPECT_EQ(RGB(1, 2, 3), dc.SetBkColor(0));
    EXPECT_EQ(RGB(0, 0, 0), dc.SetTextColor(RGB(4, 5, 6)));
    EXPECT_EQ(RGB(4, 5, 6), dc.SetTextColor(0));
}

TEST(MfcGdi, ObjectIsDeletedWithItsOwner)
{
    HGDIOBJ handle = nullptr;
    {
        CBrush brush;
        EXPECT_TRUE(brush.CreateSolidBrush(RGB(9, 9, 9)));
        handle = brush;
        EXPECT_TRUE(Exists(handle));
    }
    EXPECT_FALSE(Exists(handle));
}

TEST(MfcGdi, DetachedObjectOutlivesItsOwner)
{
    HGDIOBJ handle = nullptr;
    {
        CBrush brush(RGB(9, 9, 9));
        handle = brush.Detach();
    }
    EXPECT_TRUE(Exists(handle));
    DeleteObject(handle);
}

TEST(MfcGdi, BorrowedObjectsAreLeftAloneWhenTheirBlockEnds)
{
    const HBRUSH brush = CreateSolidBrush(RGB(9, 9, 9));
    const HDC dc = CreateCompatibleDC(nullptr);
    {
        AFX_MANAGE_STATE(AfxGetStaticModuleState())
        EXPECT_EQ(CBrush::FromHandle(brush), CBrush::FromHandle(brush));
        EXPECT_EQ(dc, CDC::FromHandle(dc)->GetSafeHdc());
        EXPECT_EQ(nullptr, CDC::FromHandle(nullptr));
        EXPECT_EQ(nullptr, CBrush::FromHandle(nullptr));
    }
    EXPECT_TRUE(Exists(brush));
    EXPECT_TRUE(Exists(dc));
    DeleteObject(brush);
    DeleteDC(dc);
}

TEST(MfcGdi, FontOfAControlCanBeCopiedInBold)
{
    AFX_MANAGE_STATE(AfxGetStaticModuleState())
    const CTestWindow window;
    const CTestWindow label(window, WS_CHILD | WS_VISIBLE, L"STATIC");
    CWnd control;
    control.Attach(label);
    EXPECT_EQ(nullptr, control.GetFont()) << "a new control uses the system font and says so by null";
    control.SetFont(CFont::FromHandle(static_cast<HFONT>(GetStockObject(DEFAULT_GUI_FONT))));

    LOGFONT description = {};
    ASSERT_TRUE(control.GetFont()->GetLogFont(&description));
    const LONG height = description.lfHeight;
    description.lfWeight = FW_BOLD;
    CFont bold;
    ASSERT_TRUE(bold.CreateFontIndirect(&description));
    control.SetFont(&bold);

    LOGFONT read = {};
    EXPECT_EQ(static_cast<HFONT>(bold), control.GetFont()->m_hObject);
    ASSERT_TRUE(control.GetFont()->GetLogFont(&read));
    EXPECT_EQ(FW_BOLD, read.lfWeight);
    EXPECT_EQ(height, read.lfHeight);
    control.SetFont(nullptr);
    control.Detach();
}

} // namespace
