// The one Invoke behind all of the object's dispatch interfaces: which dispatcher handles which id.
#include "addin/AddInFixture.h"
#include "harness/Files.h"

namespace orva::test
{
namespace
{

using Microsoft::WRL::ComPtr;
using testing::ElementsAre;

constexpr char kInvoke[] = "CConnect::Invoke";
constexpr DISPID kClick = 1;
constexpr DISPID kStartupComplete = 4;
constexpr DISPID kButtonClicked = 42000;

class InvokeTest : public CAddInTest
{
protected:
    InvokeTest()
    {
        Create();
        NewLogLines();
    }

    static HRESULT Invoke(IDispatch* object, DISPID id, std::vector<VARIANT> reversed = {})
    {
        DISPPARAMS parameters{reversed.data(), nullptr, static_cast<UINT>(reversed.size()), 0};
        return object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &parameters, nullptr,
                              nullptr, nullptr);
    }

    HRESULT Invoke(DISPID id, std::vector<VARIANT> reversed = {})
    {
        return Invoke(Dispatch().Get(), id, std::move(reversed));
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

    // Invokes the click, upon which the user sees the About dialog and closes it. Returns Invoke's result.
    HRESULT Click()
    {
        ExpectAbout();
        m_user.Start();
        const HRESULT result = Invoke(kClick, ClickArguments());
        m_seen = m_user.Finish();
        EXPECT_EQ(m_seen.size(), 1u);
        return result;
    }

    VARIANT_BOOL m_cancelDefault = VARIANT_FALSE;
    std::vector<CSeenWindow> m_seen;
};

// Removes a type library from the registry for its lifetime.
class CNoLibrary
{
public:
    explicit CNoLibrary(const wchar_t* key) : m_tree(HKEY_LOCAL_MACHINE, key) { m_tree.Remove(); }

private:
    CRegistryTreeGuard m_tree;
};

constexpr wchar_t kHostsLibraryKey[] = L"Software\\Classes\\TypeLib\\{AC0714F2-3D04-11D1-AE7D-00A0C90F26F4}";

TEST_F(InvokeTest, OnlyTheRibbonsCallbacksAreFoundByNameOnTheObject)
{
    struct CName
    {
        const wchar_t* name;
        HRESULT result;
        DISPID id;
    };
    const CName names[] = {{L"ButtonClicked", S_OK, kButtonClicked},
                           {L"GetImageLogo", S_OK, 42001},
                           {L"GetImageIcon", S_OK, 42002},
                           {L"buttonclicked", S_OK, kButtonClicked},
                           {L"OnConnection", DISP_E_UNKNOWNNAME, DISPID_UNKNOWN}};
    for (const CName& each : names)
    {
        std::wstring copy = each.name;
        LPOLESTR name = copy.data();
        DISPID found = 0;
        EXPECT_EQ(Dispatch()->GetIDsOfNames(IID_NULL, &name, 1, LOCALE_USER_DEFAULT, &found), each.result);
        EXPECT_EQ(found, each.id);
    }
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

    const std::pair<MEMBERID, const wchar_t*> helpTexts[] = {{MEMBERID_NIL, L"IRibbonCallback Interface"},
                                                             {42000, L"Button Callback"},
                                                             {42001, L"GetImageLogo Callback"},
                                                             {42002, L"GetImageIcon Callback"}};
    for (const auto& [member, text] : helpTexts)
    {
        _bstr_t help;
        EXPECT_EQ(information->GetDocumentation(member, nullptr, help.GetAddress(), nullptr, nullptr), S_OK);
        EXPECT_STREQ(help, text);
    }
}

// The callbacks' dispatcher refuses the missing argument; any other would not know the id.
TEST_F(InvokeTest, EveryDispatchInterfaceLeadsToTheSameInvoke)
{
    for (const IID& iid : {IID_IDispatch, kConnectInterface, IID__IDTExtensibility2, IID_IRibbonExtensibility,
                           __uuidof(IRibbonCallback)})
    {
        EXPECT_EQ(Invoke(Query<IDispatch>(iid).Get(), kButtonClicked), DISP_E_BADPARAMCOUNT);
        EXPECT_THAT(NewLogLines(), ElementsAre(kInvoke));
    }
}

TEST_F(InvokeTest, AButtonClickedByItsIdRunsTheExplicitCheck)
{
    std::vector<VARIANT> nullControl(1);
    nullControl[0].vt = VT_DISPATCH;
    Publish(kSameVersion);
    m_user.AnswerBox(kLatest).Start();
    EXPECT_EQ(Invoke(kButtonClicked, nullControl), S_OK);
    m_user.Finish();
    const std::vector<std::string> lines = NewLogLines();
    ASSERT_GE(lines.size(), 3u);
    EXPECT_THAT(std::vector(lines.begin(), lines.begin() + 3),
                ElementsAre(kInvoke, "CConnect::ButtonClicked", "CheckForUpdateExplicit"));
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

// A call without arguments: its result, and those without the type library of one of the dispatchers, which
// show who was asked.
struct CIdCase
{
    DISPID id;
    HRESULT result;
    HRESULT withoutTheAddInsLibrary;
    HRESULT withoutTheHostsLibrary;
};

void PrintTo(const CIdCase& value, std::ostream* out)
{
    *out << value.id;
}

class InvokeIdTest : public InvokeTest, public testing::WithParamInterface<CIdCase>
{
protected:
    // In a freshly loaded DLL, because it keeps a library that it has found.
    HRESULT InvokeAfresh()
    {
        LoadInstead(BuiltFile(kAddInModule));
        Create();
        return Invoke(GetParam().id);
    }
};

TEST_P(InvokeIdTest, OnlyIdsOfTheCallbackRangeAskTheCallbacksDispatcherAndUnknownOnesTheExtensibilityOne)
{
    EXPECT_EQ(InvokeAfresh(), GetParam().result);
    {
        const CNoLibrary missing(kLibraryKey);
        EXPECT_EQ(InvokeAfresh(), GetParam().withoutTheAddInsLibrary);
    }
    const CNoLibrary missing(kHostsLibraryKey);
    EXPECT_EQ(InvokeAfresh(), GetParam().withoutTheHostsLibrary);
}

constexpr HRESULT kUnknown = DISP_E_MEMBERNOTFOUND;
constexpr HRESULT kNoLibrary = TYPE_E_LIBNOTREGISTERED;

INSTANTIATE_TEST_SUITE_P(
    Ids, InvokeIdTest,
    testing::Values(CIdCase{41999, kUnknown, kUnknown, kNoLibrary},
                    CIdCase{kButtonClicked, DISP_E_BADPARAMCOUNT, kNoLibrary, DISP_E_BADPARAMCOUNT},
                    CIdCase{42003, kUnknown, kNoLibrary, kNoLibrary},
                    CIdCase{42009, kUnknown, kNoLibrary, kNoLibrary},
                    CIdCase{42010, kUnknown, kUnknown, kNoLibrary},
                    CIdCase{kStartupComplete, DISP_E_BADPARAMCOUNT, DISP_E_BADPARAMCOUNT, kNoLibrary},
                    CIdCase{6, kUnknown, kUnknown, kNoLibrary}, CIdCase{0, kUnknown, kUnknown, kNoLibrary},
                    CIdCase{-1, kUnknown, kUnknown, kNoLibrary},
                    CIdCase{-4, kUnknown, kUnknown, kNoLibrary}));

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

    NewLogLines();
    EXPECT_EQ(Click(), expected);
    const std::vector<std::string> lines = NewLogLines();
    ASSERT_GE(lines.size(), 2u);
    EXPECT_THAT(std::vector(lines.begin(), lines.begin() + 2), ElementsAre(kInvoke, "ShowAboutDialog"));
    EXPECT_THAT(lines, testing::Not(testing::Contains("CConnect::OnConnection")));
}

TEST_F(InvokeTest, AClickShowsAboutInTheAddInsActivationContext)
{
    const HANDLE before = ActiveContext();
    m_user.Then("another activation context is active", [&] { return WaitForContextOtherThan(before); });
    ExpectAboutClosedByUser();
    m_user.Start();
    Invoke(kClick, ClickArguments());
    EXPECT_EQ(m_user.Finish().size(), 1u);
    EXPECT_EQ(ActiveContext(), before);
}

TEST_F(InvokeTest, AClickShowsAboutEvenWithoutTheHostsLibrary)
{
    const CNoLibrary missing(kHostsLibraryKey);
    EXPECT_EQ(Click(), TYPE_E_LIBNOTREGISTERED);
}

TEST_F(InvokeTest, AClickAfterDisconnectionStillShowsAbout)
{
    EXPECT_EQ(AddIn()->OnDisconnection(ext_dm_UserClosed, nullptr), S_OK);
    EXPECT_EQ(Click(), DISP_E_BADPARAMCOUNT);
}

TEST_F(InvokeTest, AClickWithoutAVisibleHostWindowShowsAboutWithoutOwner)
{
    ShowWindow(m_host.Handle(), SW_HIDE);
    EXPECT_EQ(Click(), DISP_E_BADPARAMCOUNT);
    ASSERT_EQ(m_seen.size(), 1u);
    EXPECT_EQ(m_seen[0].owner, nullptr);
}

} // namespace
} // namespace orva::test
