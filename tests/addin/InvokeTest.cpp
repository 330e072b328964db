// The one Invoke behind all of the object's dispatch interfaces: which dispatcher handles which id.
#include "addin/AddInFixture.h"

namespace orva::test
{
namespace
{

using Microsoft::WRL::ComPtr;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;

constexpr char kInvoke[] = "CConnect::Invoke";
constexpr DISPID kClick = 1;
constexpr DISPID kStartupComplete = 4;

class InvokeTest : public CAddInTest
{
protected:
    InvokeTest()
    {
        Create();
        NewLogLines();
    }

    static HRESULT Invoke(IDispatch* object, DISPID id, std::vector<VARIANT> reversed = {},
                          VARIANT* result = nullptr)
    {
        DISPPARAMS parameters{reversed.data(), nullptr, static_cast<UINT>(reversed.size()), 0};
        return object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &parameters, result,
                              nullptr, nullptr);
    }

    HRESULT Invoke(DISPID id, std::vector<VARIANT> reversed = {}, VARIANT* result = nullptr)
    {
        return Invoke(Dispatch().Get(), id, std::move(reversed), result);
    }

    // What Office passes with a click: CancelDefault, then the button.
    std::vector<VARIANT> ClickArguments()
    {
        std::vector<VARIANT> arguments(2);
        arguments[1].vt = VT_DISPATCH;
        arguments[0].vt = VT_BYREF | VT_BOOL;
        arguments[0].pboolVal = &m_cancelDefault;
        return arguments;
    }

    static std::vector<VARIANT> NullControl()
    {
        std::vector<VARIANT> arguments(1);
        arguments[0].vt = VT_DISPATCH;
        return arguments;
    }

    void ExpectAboutClosedByUser()
    {
        m_user.OnDialogWith(kAboutClose, [](HWND dialog) { ClickButton(dialog, kAboutClose); });
    }

    VARIANT_BOOL m_cancelDefault = VARIANT_FALSE;
};

// Removes the type library of _IDTExtensibility2 from the registry for its lifetime.
class CNoExtensibilityLibrary
{
public:
    CNoExtensibilityLibrary() { m_tree.Remove(); }

private:
    CRegistryTreeGuard m_tree{HKEY_LOCAL_MACHINE,
                              L"Software\\Classes\\TypeLib\\{AC0714F2-3D04-11D1-AE7D-00A0C90F26F4}"};
};

// Removes the add-in's own type library from the registry for its lifetime.
class CNoOwnLibrary
{
public:
    CNoOwnLibrary() { m_tree.Remove(); }

private:
    CRegistryTreeGuard m_tree{HKEY_LOCAL_MACHINE,
                              L"Software\\Classes\\TypeLib\\{ABF2CDBF-30F7-4827-9110-3BD6A8F1B786}"};
};

TEST_F(InvokeTest, TheRibbonsCallbacksAreFoundByNameOnTheObject)
{
    const ComPtr<IDispatch> dispatch = Dispatch();
    const std::vector<std::pair<std::wstring, DISPID>> callbacks = {{L"ButtonClicked", 42000},
                                                                    {L"GetImageLogo", 42001},
                                                                    {L"GetImageIcon", 42002},
                                                                    {L"buttonclicked", 42000}};
    for (const auto& [name, id] : callbacks)
    {
        std::wstring copy = name;
        LPOLESTR names[] = {copy.data()};
        DISPID found = DISPID_UNKNOWN;
        EXPECT_EQ(dispatch->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &found), S_OK);
        EXPECT_EQ(found, id);
    }
}

TEST_F(InvokeTest, ANameThatIsNoCallbackIsUnknown)
{
    wchar_t name[] = L"OnConnection";
    LPOLESTR names[] = {name};
    DISPID found = 0;
    EXPECT_EQ(Dispatch()->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &found), DISP_E_UNKNOWNNAME);
    EXPECT_EQ(found, DISPID_UNKNOWN);
}

TEST_F(InvokeTest, TheTypeInformationIsTheCallbacks)
{
    UINT count = 0;
    EXPECT_EQ(Dispatch()->GetTypeInfoCount(&count), S_OK);
    EXPECT_EQ(count, 1u);
    ComPtr<ITypeInfo> information;
    ASSERT_EQ(Dispatch()->GetTypeInfo(0, LOCALE_USER_DEFAULT, &information), S_OK);
    _bstr_t name;
    ASSERT_EQ(information->GetDocumentation(MEMBERID_NIL, name.GetAddress(), nullptr, nullptr, nullptr),
              S_OK);
    EXPECT_STREQ(name, L"IRibbonCallback");
}

TEST_F(InvokeTest, EveryDispatchInterfaceLeadsToTheSameInvoke)
{
    for (const IID& iid : {IID_IDispatch, kConnectInterface, IID__IDTExtensibility2, IID_IRibbonExtensibility,
                           __uuidof(IRibbonCallback)})
    {
        const ComPtr<IDispatch> dispatch = Query<IDispatch>(iid);
        Publish(kSameVersion);
        m_user.AnswerBox(kLatest);
        m_user.Start();
        NewLogLines();
        EXPECT_EQ(Invoke(dispatch.Get(), 42000, NullControl()), S_OK);
        m_user.Finish();
        const std::vector<std::string> lines = NewLogLines();
        ASSERT_GE(lines.size(), 3u);
        EXPECT_THAT(std::vector(lines.begin(), lines.begin() + 3),
                    ElementsAre(kInvoke, "CConnect::ButtonClicked", "CheckForUpdateExplicit"));
    }
}

TEST_F(InvokeTest, ACallbackWithAWrongArgumentCountIsRefusedByItsDispatcher)
{
    EXPECT_EQ(Invoke(42000), DISP_E_BADPARAMCOUNT);
    EXPECT_THAT(NewLogLines(), ElementsAre(kInvoke));
}

TEST_F(InvokeTest, IdsOfTheCallbackRangeWithoutCallbackEndInTheExtensibilityDispatcher)
{
    for (DISPID id = 42003; id < 42010; ++id)
    {
        EXPECT_EQ(Invoke(id), DISP_E_MEMBERNOTFOUND) << id;
    }
    EXPECT_THAT(NewLogLines(), ElementsAre(kInvoke, kInvoke, kInvoke, kInvoke, kInvoke, kInvoke, kInvoke));
}

TEST_F(InvokeTest, IdsOutsideTheCallbackRangeAreUnknown)
{
    for (const DISPID id : {41999, 42010, 0, -1, -4, 6})
    {
        EXPECT_EQ(Invoke(id), DISP_E_MEMBERNOTFOUND) << id;
    }
}

TEST_F(InvokeTest, OnlyIdsOfTheCallbackRangeAskTheCallbacksDispatcher)
{
    const CNoOwnLibrary missing;
    for (const DISPID id : {42000, 42003, 42009})
    {
        EXPECT_EQ(Invoke(id, NullControl()), TYPE_E_LIBNOTREGISTERED) << id;
    }
    for (const DISPID id : {41999, 42010})
    {
        EXPECT_EQ(Invoke(id), DISP_E_MEMBERNOTFOUND) << id;
    }
}

TEST_F(InvokeTest, WithoutTheHostsLibraryEveryOtherIdGivesLibNotRegistered)
{
    const CNoExtensibilityLibrary missing;
    for (const DISPID id : {41999, 42003, 42009, 42010, 4})
    {
        EXPECT_EQ(Invoke(id), TYPE_E_LIBNOTREGISTERED) << id;
    }
}

TEST_F(InvokeTest, TheLifeCycleCallsCanBeMadeByTheirIds)
{
    SAFEARRAY* custom = SafeArrayCreateVector(VT_VARIANT, 0, 0);
    std::vector<VARIANT> arguments(1);
    arguments[0].vt = VT_BYREF | VT_ARRAY | VT_VARIANT;
    arguments[0].pparray = &custom;
    EXPECT_EQ(Invoke(kStartupComplete, arguments), S_OK);
    SafeArrayDestroy(custom);
    EXPECT_THAT(NewLogLines(), ElementsAre(kInvoke, "CConnect::OnStartupComplete"));
}

TEST_F(InvokeTest, AClickShowsAboutAndReturnsWhatTheExtensibilityDispatcherSaysOfTwoArguments)
{
    ComPtr<ITypeLib> library;
    ASSERT_EQ(LoadRegTypeLib(LIBID_AddInDesignerObjects, 1, 0, 0, &library), S_OK);
    ComPtr<ITypeInfo> information;
    ASSERT_EQ(library->GetTypeInfoOfGuid(IID__IDTExtensibility2, &information), S_OK);
    std::vector<VARIANT> arguments = ClickArguments();
    DISPPARAMS parameters{arguments.data(), nullptr, 2, 0};
    const HRESULT expected =
        information->Invoke(AddIn().Get(), kClick, DISPATCH_METHOD, &parameters, nullptr, nullptr, nullptr);
    EXPECT_EQ(expected, DISP_E_BADPARAMCOUNT);

    ExpectAboutClosedByUser();
    m_user.Start();
    NewLogLines();
    EXPECT_EQ(Invoke(kClick, ClickArguments()), expected);
    const std::vector<CSeenWindow> seen = m_user.Finish();
    ASSERT_EQ(seen.size(), 1u);
    EXPECT_EQ(seen[0].owner, m_host.Handle());
    EXPECT_EQ(m_cancelDefault, VARIANT_FALSE);
    const std::vector<std::string> lines = NewLogLines();
    ASSERT_GE(lines.size(), 2u);
    EXPECT_THAT(std::vector(lines.begin(), lines.begin() + 2), ElementsAre(kInvoke, "ShowAboutDialog"));
    EXPECT_THAT(lines, Not(Contains("CConnect::OnConnection")));
}

TEST_F(InvokeTest, AClickShowsAboutEvenWithoutTheHostsLibrary)
{
    const CNoExtensibilityLibrary missing;
    ExpectAboutClosedByUser();
    m_user.Start();
    EXPECT_EQ(Invoke(kClick, ClickArguments()), TYPE_E_LIBNOTREGISTERED);
    EXPECT_EQ(m_user.Finish().size(), 1u);
}

TEST_F(InvokeTest, AClickAfterDisconnectionStillShowsAbout)
{
    EXPECT_EQ(AddIn()->OnDisconnection(ext_dm_UserClosed, nullptr), S_OK);
    ExpectAboutClosedByUser();
    m_user.Start();
    EXPECT_EQ(Invoke(kClick, ClickArguments()), DISP_E_BADPARAMCOUNT);
    EXPECT_EQ(m_user.Finish().size(), 1u);
}

TEST_F(InvokeTest, AClickWithoutAVisibleHostWindowShowsAboutWithoutOwner)
{
    ShowWindow(m_host.Handle(), SW_HIDE);
    ExpectAboutClosedByUser();
    m_user.Start();
    Invoke(kClick, ClickArguments());
    const std::vector<CSeenWindow> seen = m_user.Finish();
    ASSERT_EQ(seen.size(), 1u);
    EXPECT_EQ(seen[0].owner, nullptr);
}

} // namespace
} // namespace orva::test
