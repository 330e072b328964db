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

TEST_F(ObjectModelTest, MenuIsAPopupAndNoButton)
{
    const ComPtr<IDispatch> help = Item(MenuBarControls().Get(), 7);
    EXPECT_TRUE(Answers<Office::CommandBarPopup>(help.Get()));
    EXPECT_TRUE(Answers<Office::CommandBarControl>(help.Get()));
    EXPECT_FALSE(Answers<Office::_CommandBarButton>(help.Get()));
}

TEST_F(ObjectModelTest, ButtonIsNoPopup)
{
    const ComPtr<IDispatch> button = AddButton(HelpControls().Get());
    EXPECT_TRUE(Answers<Office::_CommandBarButton>(button.Get()));
    EXPECT_TRUE(Answers<Office::CommandBarControl>(button.Get()));
    EXPECT_FALSE(Answers<Office::CommandBarPopup>(button.Get()));
    _variant_t value;
    EXPECT_EQ(GetByName(button.Get(), L"Controls", value), DISP_E_UNKNOWNNAME);
}

TEST_F(ObjectModelTest, ApplicationHasNameVersionAndExplorer)
{
    EXPECT_EQ(Text(m_application.Get(), L"Name"), L"Outlook");
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

TEST_F(ObjectModelTest, MethodIsNotReadAsAProperty)
{
    _variant_t value;
    EXPECT_EQ(GetByName(m_application.Get(), L"ActiveExplorer", value), DISP_E_MEMBERNOTFOUND);
}

TEST_F(ObjectModelTest, NamesAreFoundWithoutRegardToCaseAndUnknownOnesAreNot)
{
    EXPECT_EQ(Text(m_application.Get(), L"vErSiOn"), L"12.0.6423.1000");
    _variant_t value;
    EXPECT_EQ(GetByName(m_application.Get(), L"Session", value), DISP_E_UNKNOWNNAME);
}

TEST_F(ObjectModelTest, MenuBarHoldsSevenMenusAndHelpIsTheLast)
{
    const ComPtr<IDispatch> controls = MenuBarControls();
    ASSERT_EQ(Number(controls.Get(), L"Count"), 7);
    const wchar_t* captions[] = {L"&File", L"&Edit", L"&View", L"&Go", L"&Tools", L"&Actions", L"&Help"};
    for (long index = 1; index <= 7; ++index)
    {
        EXPECT_EQ(Text(Item(controls.Get(), index).Get(), L"Caption"), captions[index - 1]);
    }
}

TEST_F(ObjectModelTest, ItemCountsFromOneToCount)
{
    _variant_t item;
    const ComPtr<IDispatch> controls = MenuBarControls();
    EXPECT_EQ(CallByName(controls.Get(), L"Item", DISPATCH_PROPERTYGET, {_variant_t(0L)}, item),
              E_INVALIDARG);
    EXPECT_EQ(CallByName(controls.Get(), L"Item", DISPATCH_PROPERTYGET, {_variant_t(8L)}, item),
              E_INVALIDARG);
}

TEST_F(ObjectModelTest, ItemIsTheDefaultMember)
{
    VARIANT index;
    index.vt = VT_I4;
    index.lVal = 7;
    DISPPARAMS parameters{&index, nullptr, 1, 0};
    _variant_t item;
    EXPECT_EQ(MenuBarControls()->Invoke(DISPID_VALUE, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET,
                                        &parameters, &item, nullptr, nullptr),
              S_OK);
    ASSERT_EQ(item.vt, VT_DISPATCH);
    EXPECT_EQ(Text(item.pdispVal, L"Caption"), L"&Help");
}

TEST_F(ObjectModelTest, AddedButtonIsTheLastOfItsMenu)
{
    const ComPtr<IDispatch> controls = HelpControls();
    const long before = Number(controls.Get(), L"Count");
    const ComPtr<IDispatch> button = AddButton(controls.Get());
    EXPECT_EQ(Number(controls.Get(), L"Count"), before + 1);
    EXPECT_EQ(Number(button.Get(), L"Index"), before + 1);
    EXPECT_EQ(Number(button.Get(), L"Type"), 1);
}

TEST_F(ObjectModelTest, AddBeforePutsTheControlThere)
{
    const ComPtr<IDispatch> controls = HelpControls();
    _variant_t button;
    ASSERT_EQ(CallByName(controls.Get(), L"Add", DISPATCH_METHOD,
                         {_variant_t(1L), Missing(), Missing(), _variant_t(1L), _variant_t(true)}, button),
              S_OK);
    EXPECT_EQ(Number(button.pdispVal, L"Index"), 1);
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

TEST_F(ObjectModelTest, CaptionEnabledAndVisibleAreWrittenAndReadBack)
{
    const ComPtr<IDispatch> button = AddButton(HelpControls().Get());
    EXPECT_EQ(PutByName(button.Get(), L"Caption", L"About..."), S_OK);
    EXPECT_EQ(PutByName(button.Get(), L"Enabled", false), S_OK);
    EXPECT_EQ(PutByName(button.Get(), L"Visible", false), S_OK);
    EXPECT_EQ(Text(button.Get(), L"Caption"), L"About...");
    _variant_t value;
    EXPECT_EQ(GetByName(button.Get(), L"Enabled", value), S_OK);
    EXPECT_EQ(value.boolVal, VARIANT_FALSE);
    EXPECT_EQ(GetByName(button.Get(), L"Visible", value), S_OK);
    EXPECT_EQ(value.boolVal, VARIANT_FALSE);
}

TEST_F(ObjectModelTest, TrueMayBeAnyValueOtherThanZero)
{
    const ComPtr<IDispatch> button = AddButton(HelpControls().Get());
    ASSERT_EQ(PutByName(button.Get(), L"Enabled", false), S_OK);
    _variant_t oneByte(false);
    oneByte.boolVal = 1;
    EXPECT_EQ(PutByName(button.Get(), L"Enabled", oneByte), S_OK);
    _variant_t value;
    EXPECT_EQ(GetByName(button.Get(), L"Enabled", value), S_OK);
    EXPECT_EQ(value.boolVal, VARIANT_TRUE);
}

TEST_F(ObjectModelTest, ReadOnlyPropertyCannotBeWritten)
{
    const ComPtr<IDispatch> button = AddButton(HelpControls().Get());
    EXPECT_EQ(PutByName(button.Get(), L"Index", 1L), DISP_E_MEMBERNOTFOUND);
}

TEST_F(ObjectModelTest, DeletedControlLeavesItsMenuAndIsDeletedOnlyOnce)
{
    const ComPtr<IDispatch> controls = HelpControls();
    const long before = Number(controls.Get(), L"Count");
    const ComPtr<IDispatch> button = AddButton(controls.Get());
    _variant_t nothing;
    EXPECT_EQ(CallByName(button.Get(), L"Delete", DISPATCH_METHOD, {}, nothing), S_OK);
    EXPECT_EQ(Number(controls.Get(), L"Count"), before);
    EXPECT_EQ(CallByName(button.Get(), L"Delete", DISPATCH_METHOD, {}, nothing), E_FAIL);
}

TEST_F(ObjectModelTest, ControlOutlivesItsMenu)
{
    const ComPtr<IDispatch> button = AddButton(HelpControls().Get());
    m_application.Reset();
    m_explorer.Reset();
    EXPECT_EQ(PutByName(button.Get(), L"Caption", L"still here"), S_OK);
    _variant_t value;
    EXPECT_EQ(GetByName(button.Get(), L"Index", value), E_FAIL);
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
