// The white look of the dialogs: what is painted, and what a control's device context gets.
#include "ui/WhiteBackground.h"

#include <gtest/gtest.h>

namespace orva::test
{
namespace
{

constexpr COLORREF kWhite = RGB(255, 255, 255);
constexpr COLORREF kRed = RGB(255, 0, 0);

class WhiteBackgroundTest : public testing::Test
{
protected:
    void SetUp() override
    {
        m_dc.m_hDC = CreateCompatibleDC(nullptr);
        ASSERT_TRUE(m_dc.m_hDC);
    }

    CDC m_dc;
};

TEST_F(WhiteBackgroundTest, PaintingLeavesTheDeviceItsBrush)
{
    AFX_MANAGE_STATE(AfxGetStaticModuleState());
    CWnd window;
    ASSERT_TRUE(window.Attach(CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 20, 10, nullptr, nullptr,
                                              GetModuleHandleW(nullptr), nullptr)));
    const HGDIOBJ brush = GetCurrentObject(m_dc.m_hDC, OBJ_BRUSH);
    EXPECT_TRUE(PaintWhiteBackground(window, m_dc));
    EXPECT_EQ(GetCurrentObject(m_dc.m_hDC, OBJ_BRUSH), brush);
}

TEST_F(WhiteBackgroundTest, AControlGetsBlackTextOnWhiteAndAWhiteBrush)
{
    m_dc.SetBkColor(kRed);
    m_dc.SetTextColor(kRed);
    const HBRUSH brush = MakeControlWhite(m_dc);
    EXPECT_EQ(GetBkColor(m_dc.m_hDC), kWhite);
    EXPECT_EQ(GetTextColor(m_dc.m_hDC), RGB(0, 0, 0));
    LOGBRUSH properties{};
    ASSERT_NE(GetObjectW(brush, sizeof(properties), &properties), 0);
    EXPECT_EQ(properties.lbStyle, static_cast<UINT>(BS_SOLID));
    EXPECT_EQ(properties.lbColor, kWhite);
    DeleteObject(brush);
}

} // namespace
} // namespace orva::test
