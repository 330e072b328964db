// Device contexts, brushes and fonts: drawing, who owns a handle and who only borrows it.
#include <afxwin.h>

#include <gtest/gtest.h>

namespace
{

bool Exists(HGDIOBJ object)
{
    return GetObjectType(object) != 0;
}

TEST(MfcGdi, BrushPaintsARectangleAndSelectionAndColoursReturnThePreviousOnes)
{
    AFX_MANAGE_STATE(AfxGetStaticModuleState())
    CDC dc;
    dc.m_hDC = CreateCompatibleDC(nullptr);
    ASSERT_TRUE(dc.m_hDC);
    const HDC screen = GetDC(nullptr);
    const HBITMAP bitmap = CreateCompatibleBitmap(screen, 10, 10);
    ReleaseDC(nullptr, screen);
    const HGDIOBJ previousBitmap = SelectObject(dc.m_hDC, bitmap);

    CBrush brush(RGB(255, 0, 0));
    CBrush* const previous = dc.SelectObject(&brush);
    ASSERT_TRUE(previous);
    EXPECT_TRUE(dc.PatBlt(2, 2, 5, 5, PATCOPY));
    EXPECT_EQ(RGB(255, 0, 0), GetPixel(dc.m_hDC, 2, 2));
    EXPECT_EQ(RGB(255, 0, 0), GetPixel(dc.m_hDC, 6, 6));
    EXPECT_EQ(RGB(0, 0, 0), GetPixel(dc.m_hDC, 7, 7));
    EXPECT_EQ(brush.m_hObject, dc.SelectObject(previous)->m_hObject);
    EXPECT_EQ(RGB(255, 255, 255), dc.SetBkColor(RGB(1, 2, 3)));
    EXPECT_EQ(RGB(1, 2, 3), dc.SetBkColor(0));
    EXPECT_EQ(RGB(0, 0, 0), dc.SetTextColor(RGB(4, 5, 6)));
    EXPECT_EQ(RGB(4, 5, 6), dc.SetTextColor(0));

    SelectObject(dc.m_hDC, previousBitmap);
    DeleteObject(bitmap);
}

TEST(MfcGdi, ObjectIsDeletedWithItsOwner)
{
    HGDIOBJ handle = nullptr;
    {
        CBrush brush;
        EXPECT_TRUE(brush.CreateSolidBrush(RGB(9, 9, 9)));
        handle = brush.m_hObject;
        EXPECT_TRUE(Exists(handle));
    }
    EXPECT_FALSE(Exists(handle));
}

TEST(MfcGdi, BorrowedObjectsAreLeftAloneWhenTheirBlockEnds)
{
    const HBRUSH brush = CreateSolidBrush(RGB(9, 9, 9));
    const HDC dc = CreateCompatibleDC(nullptr);
    {
        AFX_MANAGE_STATE(AfxGetStaticModuleState())
        EXPECT_EQ(CBrush::FromHandle(brush), CBrush::FromHandle(brush));
        EXPECT_EQ(dc, CDC::FromHandle(dc)->m_hDC);
        EXPECT_EQ(nullptr, CDC::FromHandle(nullptr));
        EXPECT_EQ(nullptr, CBrush::FromHandle(nullptr));
    }
    EXPECT_TRUE(Exists(brush));
    EXPECT_TRUE(Exists(dc));
    DeleteObject(brush);
    DeleteDC(dc);
}

} // namespace
