// Outlook's objects as an add-in calls them: by interface id, then by name.
#include "host/LateBound.h"
#include "host/MenuView.h"
#include "host/OutlookObjects.h"

#include <OfficeObjects.h>

#include <gtest/gtest.h>

namespace
{

using namespace orva::host;
using namespace orva::test;
using Microsoft::WRL::ComPtr;

class ObjectModelTest : public testing::Test
{
protected:
    void SetUp() override
    {
        m_explorer = new CExplorer(m_model);
        m_application = new CApplication(m_trace, L"12.0.6423.1000", m_explorer.Get());
        AddStandardMenus(m_explorer->MenuBar().Controls(), {});
    }

    ComPtr<IDispatch> MenuBarControls()
    {
        const ComPtr<IDispatch> bars = ObjectByName(m_explorer.Get(), L"CommandBars");
        const ComPtr<IDispatch> bar = ObjectByName(bars.Get(), L"ActiveMenuBar");
        return ObjectByName(bar.Get(), L"Controls");
    }

    ComPtr<IDispatch> Item(IDispatch* controls, long index)
    {
        _variant_t item;
        EXPECT_EQ(CallByName(controls, L"Item", DISPATCH_PROPERTYGET, {_variant_t(index)}, item), S_OK);
        return item.vt == VT_DISPATCH ? item.pdispVal : nullptr;
    }

    ComPtr<IDispatch> HelpControls()
    {
        return ObjectByName(Item(MenuBarControls().Get(), 7).Get(), L"Controls");
    }

    ComPtr<IDispatch> AddButton(IDispatch* controls)
    {
        _variant_t button;
        EXPECT_EQ(CallByName(controls, L"Add", DISPATCH_METHOD,
                             {_variant_t(1L), Missing(), Missing(), Missing(), _variant_t(short{-1})},
                             button),
                  S_OK);
        return button.vt == VT_DISPATCH ? button.pdispVal : nullptr;
    }

    std::wstring Text(IDispatch* object, const wchar_t* name)
    {
        _variant_t value;
        EXPECT_EQ(GetByName(object, name, value), S_OK);
        return value.vt == VT_BSTR ? value.bstrVal : L"(no text)";
    }

    long Number(IDispatch* object, const wchar_t* name)
    {
        _variant_t value;
        EXPECT_EQ(GetByName(object, name, value), S_OK);
        return value.vt == VT_I4 ? value.lVal : -1;
    }

    // What the real menu shows under its last item.
    std::wstring LastMenu() const
    {
        const HMENU menu = MakeMenu(m_explorer->MenuBar());
        const std::vector<std::wstring> lines = DescribeMenu(menu);
        DestroyMenu(menu);
        return lines.empty() ? L"" : lines.back();
    }

    template <typename Interface> static bool Answers(IDispatch* object)
    {
        ComPtr<IDispatch> found;
        return object != nullptr && SUCCEEDED(object->QueryInterface(__uuidof(Interface), &found));
    }

    CTrace m_trace;
    CMenuModel m_model{m_trace};
    ComPtr<CExplorer> m_explorer;
    ComPtr<CApplication> m_application;
};

TEST_F(ObjectModelTest, EachObjectAnswersToItsOwnInterfaceId)
{
    EXPECT_TRUE(Answers<Outlook::_Application>(m_application.Get()));
    EXPECT_FALSE(Answers<Outlook::_Explorer>(m_application.Get()));
    EXPECT_TRUE(Answers<Outlook::_Explorer>(m_explorer.Get()));
    const ComPtr<IDispatch> bars = ObjectByName(m_explorer.Get(), L"CommandBars");
    EXPECT_TRUE(Answers<Office::CommandBars>(bars.Get()));
    EXPECT_TRUE(Answers<Office::CommandBar>(ObjectByName(bars.Get(), L"ActiveMenuBar").Get()));
    EXPECT_TRUE(Answers<Office::CommandBarControls>(MenuBarControls().Get()));
}

TEST_F(ObjectModelTest, MenuIsAPopupAndAButtonIsNone)
{
    const ComPtr<IDispatch> help = Item(MenuBarControls().Get(), 7);
    EXPECT_TRUE(Answers<Office::CommandBarPopup>(help.Get()));
    EXPECT_TRUE(Answers<Office::CommandBarControl>(help.Get()));
    EXPECT_FALSE(Answers<Office::_CommandBarButton>(help.Get()));

    const ComPtr<IDispatch> button = AddButton(HelpControls().Get());
    EXPECT_TRUE(Answers<Office::_CommandBarButton>(button.Get()));
    EXPECT_TRUE(Answers<Office::CommandBarControl>(button.Get()));
    EXPECT_FALSE(Answers<Office::CommandBarPopup>(button.Get()));
    _variant_t value;
    EXPECT_EQ(GetByName(button.Get(), L"Controls", value), DISP_E_UNKNOWNNAME);
}

TEST_F(ObjectModelTest, ApplicationHasVersionAndExplorer)
{
    EXPECT_EQ(Text(m_application.Get(), L"Version"), L"12.0.6423.1000");
    EXPECT_EQ(ObjectByName(m_application.Get(), L"ActiveExplorer", DISPATCH_METHOD).Get(), m_explorer.Get());
}

TEST_F(ObjectModelTest, NoExplorerIsSuccessWithoutAnObject)
{
    const ComPtr<CApplication> application = new CApplication(m_trace, L"12.0", nullptr);
    _variant_t explorer;
    EXPECT_EQ(CallByName(application.Get(), L"ActiveExplorer", DISPATCH_METHOD, {}, explorer), S_OK);
    EXPECT_EQ(explorer.vt, VT_DISPATCH);
    EXPECT_EQ(explorer.pdispVal, nullptr);
}

TEST_F(ObjectModelTest, MethodIsNotReadAsAPropertyAndAReadOnlyPropertyIsNotWritten)
{
    _variant_t value;
    EXPECT_EQ(GetByName(m_application.Get(), L"ActiveExplorer", value), DISP_E_MEMBERNOTFOUND);
    EXPECT_EQ(PutByName(MenuBarControls().Get(), L"Count", 1L), DISP_E_MEMBERNOTFOUND);
}

TEST_F(ObjectModelTest, NamesAreFoundWithoutRegardToCaseAndUnknownOnesAreNot)
{
    EXPECT_EQ(Text(m_application.Get(), L"vErSiOn"), L"12.0.6423.1000");
    _variant_t value;
    EXPECT_EQ(GetByName(m_application.Get(), L"Session", value), DISP_E_UNKNOWNNAME);
}

TEST_F(ObjectModelTest, ItemCountsFromOneToCount)
{
    const ComPtr<IDispatch> controls = MenuBarControls();
    ASSERT_EQ(Number(controls.Get(), L"Count"), 7);
    EXPECT_EQ(Text(Item(controls.Get(), 1).Get(), L"Caption"), L"&File");
    EXPECT_EQ(Text(Item(controls.Get(), 7).Get(), L"Caption"), L"&Help");
    for (const long index : {0L, 8L})
    {
        _variant_t item;
        EXPECT_EQ(CallByName(controls.Get(), L"Item", DISPATCH_PROPERTYGET, {_variant_t(index)}, item),
                  E_INVALIDARG);
    }
}

TEST_F(ObjectModelTest, AddedButtonIsTheLastOfItsMenu)
{
    const ComPtr<IDispatch> controls = HelpControls();
    const long before = Number(controls.Get(), L"Count");
    const ComPtr<IDispatch> button = AddButton(controls.Get());
    EXPECT_EQ(Number(controls.Get(), L"Count"), before + 1);
    EXPECT_EQ(Number(button.Get(), L"Index"), before + 1);
}

TEST_F(ObjectModelTest, AddRefusesAnUnknownTypeAPositionOutsideAndTooManyArguments)
{
    const ComPtr<IDispatch> controls = HelpControls();
    _variant_t button;
    EXPECT_EQ(CallByName(controls.Get(), L"Add", DISPATCH_METHOD, {_variant_t(99L)}, button), E_INVALIDARG);
    EXPECT_EQ(CallByName(controls.Get(), L"Add", DISPATCH_METHOD,
                         {_variant_t(1L), Missing(), Missing(), _variant_t(9L)}, button),
              E_INVALIDARG);
    EXPECT_EQ(CallByName(controls.Get(), L"Add", DISPATCH_METHOD,
                         {_variant_t(1L), Missing(), Missing(), Missing(), Missing(), Missing()}, button),
              DISP_E_BADPARAMCOUNT);
}

TEST_F(ObjectModelTest, CaptionEnabledAndVisibleShowInTheRealMenu)
{
    const ComPtr<IDispatch> button = AddButton(HelpControls().Get());
    const std::wstring help = L"&Help: Stand-in Outlook &Help | &About Stand-in Outlook";
    EXPECT_EQ(PutByName(button.Get(), L"Caption", L"About..."), S_OK);
    EXPECT_EQ(LastMenu(), help + L" | About...");
    EXPECT_EQ(PutByName(button.Get(), L"Enabled", false), S_OK);
    EXPECT_EQ(LastMenu(), help + L" | About... (greyed)");
    // True may be any value other than zero.
    _variant_t oneByte(false);
    oneByte.boolVal = 1;
    EXPECT_EQ(PutByName(button.Get(), L"Enabled", oneByte), S_OK);
    EXPECT_EQ(LastMenu(), help + L" | About...");
    EXPECT_EQ(PutByName(button.Get(), L"Visible", false), S_OK);
    EXPECT_EQ(LastMenu(), help);
}

TEST_F(ObjectModelTest, PropertyWriteNeedsItsArgumentNamed)
{
    const ComPtr<IDispatch> button = AddButton(HelpControls().Get());
    LPOLESTR names[] = {const_cast<LPOLESTR>(L"Caption")};
    DISPID id = 0;
    ASSERT_EQ(button->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id), S_OK);
    _variant_t text(L"x");
    DISPPARAMS parameters{&text, nullptr, 1, 0};
    EXPECT_EQ(button->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYPUT, &parameters, nullptr,
                             nullptr, nullptr),
              DISP_E_PARAMNOTOPTIONAL);
}

} // namespace
