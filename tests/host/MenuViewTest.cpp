// The real menu that shows the command-bar objects.
#include "host/MenuView.h"

#include "host/LateBound.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

using namespace orva::host;
using namespace orva::test;
using testing::ElementsAre;

class MenuViewTest : public testing::Test, public IMenuObserver
{
public:
    void MenuChanged() override { ++m_changes; }

protected:
    MenuViewTest() : m_bar(new CCommandBar(m_model)) { m_model.SetObserver(this); }

    std::vector<std::wstring> Show() const
    {
        const HMENU menu = MakeMenu(*m_bar.Get());
        std::vector<std::wstring> lines = DescribeMenu(menu);
        DestroyMenu(menu);
        return lines;
    }

    CTrace m_trace;
    CMenuModel m_model{m_trace};
    Microsoft::WRL::ComPtr<CCommandBar> m_bar;
    int m_changes = 0;
};

TEST_F(MenuViewTest, ShowsMenusWithTheirItemsInOrder)
{
    CCommandBarControls& menus = m_bar->Controls();
    menus.AddPopup(L"&One").Controls().AddButton(L"first");
    CCommandBarControls& two = menus.AddPopup(L"&Two").Controls();
    two.AddButton(L"second");
    two.AddButton(L"third");
    EXPECT_THAT(Show(), ElementsAre(L"&One: first", L"&Two: second | third"));
}

TEST_F(MenuViewTest, SeparatesGroups)
{
    CCommandBarControls& items = m_bar->Controls().AddPopup(L"&One").Controls();
    items.AddButton(L"first");
    items.AddButton(L"second").SetBeginsGroup(true);
    EXPECT_THAT(Show(), ElementsAre(L"&One: first | --- | second"));
}

TEST_F(MenuViewTest, GreysDisabledItemsAndHidesInvisibleOnes)
{
    CCommandBarControls& items = m_bar->Controls().AddPopup(L"&One").Controls();
    PutByName(&items.AddButton(L"first"), L"Enabled", false);
    PutByName(&items.AddButton(L"second"), L"Visible", false);
    EXPECT_THAT(Show(), ElementsAre(L"&One: first (greyed)"));
}

TEST_F(MenuViewTest, EmptyBarIsAnEmptyMenu)
{
    EXPECT_THAT(Show(), ElementsAre());
}

TEST_F(MenuViewTest, StandardMenusEndWithHelp)
{
    AddStandardMenus(m_bar->Controls(), {});
    const std::vector<std::wstring> lines = Show();
    ASSERT_EQ(lines.size(), 7u);
    EXPECT_EQ(lines.back(), L"&Help: Stand-in Outlook &Help | &About Stand-in Outlook");
}

TEST_F(MenuViewTest, ItemIdLeadsBackToItsButton)
{
    CCommandBarControls& items = m_bar->Controls().AddPopup(L"&One").Controls();
    CCommandBarButton& first = items.AddButton(L"first");
    CCommandBarButton& second = items.AddButton(L"second");
    const HMENU menu = MakeMenu(*m_bar.Get());
    const HMENU popup = GetSubMenu(menu, 0);
    EXPECT_EQ(m_bar->Controls().FindButton(GetMenuItemID(popup, 0)), &first);
    EXPECT_EQ(m_bar->Controls().FindButton(GetMenuItemID(popup, 1)), &second);
    EXPECT_EQ(m_bar->Controls().FindButton(1), nullptr);
    DestroyMenu(menu);
}

TEST_F(MenuViewTest, EveryChangeIsReported)
{
    CCommandBarControls& items = m_bar->Controls().AddPopup(L"&One").Controls();
    CCommandBarButton& button = items.AddButton(L"first");
    const int before = m_changes;
    items.Remove(button);
    EXPECT_EQ(m_changes, before + 1);
    EXPECT_EQ(before, 2);
}

TEST_F(MenuViewTest, ActionOfOurOwnButtonRuns)
{
    int runs = 0;
    m_bar->Controls().AddButton(L"Exit", [&] { ++runs; }).Click();
    EXPECT_EQ(runs, 1);
}

} // namespace
