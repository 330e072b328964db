// Reading the custom UI that an add-in returns.
#include "host/RibbonMarkup.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <objbase.h>

namespace
{

using namespace orva::host;
using testing::ElementsAre;

constexpr wchar_t kHead[] = L"\xFEFF<?xml version=\"1.0\" encoding=\"utf-16\"?>\r\n"
                            L"<customUI xmlns=\"http://schemas.microsoft.com/office/2009/07/customui\">\r\n";

class RibbonMarkupTest : public testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(SUCCEEDED(CoInitialize(nullptr))); }
    void TearDown() override { CoUninitialize(); }

    bool Parse(const std::wstring& text) { return ParseRibbonMarkup(text, m_markup, m_error); }

    RibbonMarkup m_markup;
    MarkupError m_error;
};

TEST_F(RibbonMarkupTest, ReadsTabColumnsGroupsAndControls)
{
    ASSERT_TRUE(Parse(std::wstring(kHead) + LR"(<backstage><tab id="tab" label="ORVA">
        <firstColumn><group id="one" label="First"><bottomItems>
            <imageControl id="logo" getImage="GetLogo"/><labelControl id="text" label="Şirket ı ä"/>
        </bottomItems></group></firstColumn>
        <secondColumn><group id="two" label="Second" helperText="Help">
            <primaryItem><button id="go" label="Go" getImage="GetIcon" onAction="Press" isDefinitive="false"
                screentip="Tip"/></primaryItem>
            <topItems><hyperlink id="link" label="Link" target="http://www.orva.example/a?b=c&amp;d=%20"/></topItems>
            <!-- some room --><bottomItems><labelControl id="empty"/>
                <button id="close" isDefinitive="true"/></bottomItems>
        </group></secondColumn></tab></backstage></customUI>)"))
        << m_error.reason.c_str();
    ASSERT_EQ(m_markup.tabs.size(), 1u);
    const RibbonTab& tab = m_markup.tabs[0];
    EXPECT_EQ(tab.id, L"tab");
    EXPECT_EQ(tab.label, L"ORVA");

    ASSERT_EQ(tab.firstColumn.size(), 1u);
    const RibbonGroup& first = tab.firstColumn[0];
    EXPECT_EQ(first.label, L"First");
    EXPECT_FALSE(first.primary);
    ASSERT_EQ(first.bottom.size(), 2u);
    EXPECT_EQ(first.bottom[0].kind, RibbonItemKind::Image);
    EXPECT_EQ(first.bottom[0].getImage, L"GetLogo");
    EXPECT_EQ(first.bottom[1].kind, RibbonItemKind::Label);
    EXPECT_EQ(first.bottom[1].label, L"\u015eirket \u0131 \u00e4");

    ASSERT_EQ(tab.secondColumn.size(), 1u);
    const RibbonGroup& second = tab.secondColumn[0];
    EXPECT_EQ(second.helperText, L"Help");
    ASSERT_TRUE(second.primary);
    EXPECT_EQ(second.primary->kind, RibbonItemKind::Button);
    EXPECT_EQ(second.primary->onAction, L"Press");
    EXPECT_EQ(second.primary->screentip, L"Tip");
    EXPECT_FALSE(second.primary->isDefinitive);
    ASSERT_EQ(second.top.size(), 1u);
    EXPECT_EQ(second.top[0].kind, RibbonItemKind::Link);
    EXPECT_EQ(second.top[0].target, L"http://www.orva.example/a?b=c&d=%20");
    ASSERT_EQ(second.bottom.size(), 2u);
    EXPECT_EQ(second.bottom[0].label, L"");
    EXPECT_TRUE(second.bottom[1].isDefinitive);
    EXPECT_THAT(m_markup.ignored, ElementsAre());
}

TEST_F(RibbonMarkupTest, IgnoredElementsAreListed)
{
    ASSERT_TRUE(Parse(std::wstring(kHead) + L"<ribbon/><backstage><button/></backstage></customUI>"));
    EXPECT_THAT(m_markup.ignored, ElementsAre(L"ribbon", L"button"));
    EXPECT_EQ(m_markup.tabs.size(), 0u);
}

TEST_F(RibbonMarkupTest, QuoteInsideAnAttributeIsRefusedWithReasonAndPlace)
{
    EXPECT_FALSE(Parse(std::wstring(kHead) + L"<backstage>\r\n<tab id=\"t\" label=\"say \"this\" now\"/>\r\n"
                                             L"</backstage></customUI>"));
    EXPECT_NE(m_error.reason, L"");
    // The fault is in line 4, as Windows says. Wine's parser reports the end of the last valid element.
    EXPECT_GE(m_error.line, 3);
    EXPECT_LE(m_error.line, 4);
    EXPECT_GT(m_error.position, 0);
    EXPECT_EQ(m_error.Text(), m_error.reason + L" (line " + std::to_wstring(m_error.line) + L", position " +
                                  std::to_wstring(m_error.position) + L")");
}

TEST_F(RibbonMarkupTest, OtherTextsAreRefusedWithTheReason)
{
    EXPECT_FALSE(Parse(L"no markup"));
    EXPECT_NE(m_error.reason, L"");
    EXPECT_FALSE(Parse(L"<customUI xmlns=\"http://schemas.microsoft.com/office/2006/01/customui\"/>"));
    EXPECT_EQ(m_error.reason,
              L"The root element is not customUI of http://schemas.microsoft.com/office/2009/07/customui.");
}

} // namespace
