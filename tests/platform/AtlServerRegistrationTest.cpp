// Tests of registering a real server DLL: scripts, type library, per user, and what runs against the
// registration.
#include "AtlServer.h"
#include "harness/Waiting.h"
#include "harness/Wine.h"
#include "platform/AtlTestServer.h"

#include <algorithm>
#include <cwctype>

namespace
{

using orva::test::CAtlServerRegistryGuard;
using orva::test::CAtlTestServer;
using orva::test::IsWine;
using orva::test::PumpUntil;
using orva::test::RegistryDword;
using orva::test::RegistryKeyExists;
using orva::test::RegistryString;

const std::wstring kClass = L"Software\\Classes\\CLSID\\{5B0E6D11-7C0B-4E0C-9E43-52F9A1E0C010}";
const std::wstring kLibrary = L"Software\\Classes\\TypeLib\\{5B0E6D11-7C0B-4E0C-9E43-52F9A1E0C0FF}";
const std::wstring kScript = L"Software\\OrvaAtlTestServer";

std::wstring Lower(std::wstring text)
{
    std::ranges::transform(text, text.begin(),
                           [](wchar_t c) { return static_cast<wchar_t>(std::towlower(c)); });
    return text;
}

class AtlServerRegistration : public testing::Test
{
protected:
    CAtlServerRegistryGuard m_guard;
    CAtlTestServer m_server;
};

TEST_F(AtlServerRegistration, RunsTheModulesScriptTheClassesScriptsAndTheTypeLibrary)
{
    ASSERT_EQ(m_server.Register(), S_OK);
    EXPECT_TRUE(RegistryKeyExists(HKEY_CURRENT_USER, kScript));
    EXPECT_EQ(RegistryString(HKEY_LOCAL_MACHINE, kClass, L""), L"Counter Class");
    EXPECT_EQ(RegistryString(HKEY_LOCAL_MACHINE, kClass + L"\\InprocServer32", L"ThreadingModel"),
              L"Apartment");
    EXPECT_TRUE(RegistryKeyExists(HKEY_LOCAL_MACHINE, kLibrary + L"\\1.0\\0\\win64"));
}

TEST_F(AtlServerRegistration, ScriptsKnowTheModulesPathWithoutQuotesForADll)
{
    ASSERT_EQ(m_server.Register(), S_OK);
    const std::wstring path = Lower(CAtlTestServer::Path());
    EXPECT_EQ(Lower(RegistryString(HKEY_CURRENT_USER, kScript, L"Module").value_or(L"")), path);
    EXPECT_EQ(Lower(RegistryString(HKEY_CURRENT_USER, kScript, L"Raw").value_or(L"")), path);
    EXPECT_EQ(Lower(RegistryString(HKEY_LOCAL_MACHINE, kClass + L"\\InprocServer32", L"").value_or(L"")),
              path);
}

TEST_F(AtlServerRegistration, ScriptsKnowTheApplicationId)
{
    ASSERT_EQ(m_server.Register(), S_OK);
    EXPECT_EQ(RegistryString(HKEY_CURRENT_USER, kScript, L"AppId"),
              L"{5B0E6D11-7C0B-4E0C-9E43-52F9A1E0C0AA}");
}

TEST_F(AtlServerRegistration, RunsUnderTheSystemsLocaleAndRestoresTheThreads)
{
    const LCID before = GetThreadLocale();
    const LCID german = MAKELCID(MAKELANGID(LANG_GERMAN, SUBLANG_GERMAN), SORT_DEFAULT);
    ASSERT_TRUE(SetThreadLocale(german));
    EXPECT_EQ(m_server.Register(), S_OK);
    EXPECT_EQ(GetThreadLocale(), german);
    ASSERT_TRUE(SetThreadLocale(before));
    // Whether the thread is asked or the script: it is the default that the system resolves.
    ASSERT_TRUE(SetThreadLocale(LOCALE_SYSTEM_DEFAULT));
    const LCID expected = GetThreadLocale();
    ASSERT_TRUE(SetThreadLocale(before));
    EXPECT_EQ(RegistryDword(HKEY_CURRENT_USER, kScript, L"Locale"), expected);
}

TEST_F(AtlServerRegistration, TheTypeLibraryKnowsItsFileAndFolder)
{
    ASSERT_EQ(m_server.Register(), S_OK);
    EXPECT_EQ(RegistryString(HKEY_LOCAL_MACHINE, kLibrary + L"\\1.0", L""), L"COM layer test server");
    EXPECT_EQ(Lower(RegistryString(HKEY_LOCAL_MACHINE, kLibrary + L"\\1.0\\0\\win64", L"").value_or(L"")),
              Lower(CAtlTestServer::Path()));
    EXPECT_EQ(Lower(RegistryString(HKEY_LOCAL_MACHINE, kLibrary + L"\\1.0\\HELPDIR", L"").value_or(L"")),
              Lower(CAtlTestServer::Folder()));
}

TEST_F(AtlServerRegistration, UnregisteringLeavesNothing)
{
    ASSERT_EQ(m_server.Register(), S_OK);
    ASSERT_EQ(m_server.Register(), S_OK);
    ASSERT_EQ(m_server.Unregister(), S_OK);
    EXPECT_FALSE(RegistryKeyExists(HKEY_CURRENT_USER, kScript));
    EXPECT_FALSE(RegistryKeyExists(HKEY_LOCAL_MACHINE, kClass));
    EXPECT_FALSE(RegistryKeyExists(HKEY_LOCAL_MACHINE, L"Software\\Classes\\OrvaAtlTest.Counter.1"));
    EXPECT_FALSE(RegistryKeyExists(HKEY_LOCAL_MACHINE, kLibrary));
    EXPECT_TRUE(RegistryKeyExists(HKEY_LOCAL_MACHINE, L"Software\\Classes\\CLSID"));
}

TEST_F(AtlServerRegistration, PerUserClassesGoToTheUserOnly)
{
    ASSERT_EQ(m_server.Install(TRUE, L"user"), S_OK);
    EXPECT_EQ(RegistryString(HKEY_CURRENT_USER, kClass, L""), L"Counter Class");
    EXPECT_FALSE(RegistryKeyExists(HKEY_LOCAL_MACHINE, kClass));
    ASSERT_EQ(m_server.Install(FALSE, L"user"), S_OK);
    EXPECT_FALSE(RegistryKeyExists(HKEY_CURRENT_USER, kClass));
}

TEST_F(AtlServerRegistration, PerUserTypeLibrariesGoThroughThePerUserFunctions)
{
    // Wine's RegisterTypeLibForUser registers for the whole machine; on Windows the user's classes get the
    // library.
    ASSERT_EQ(m_server.Install(TRUE, L"user"), S_OK);
    EXPECT_EQ(RegistryKeyExists(HKEY_CURRENT_USER, kLibrary), !IsWine());
    EXPECT_EQ(RegistryKeyExists(HKEY_LOCAL_MACHINE, kLibrary), IsWine());
    ASSERT_EQ(m_server.Install(FALSE, L"user"), S_OK);
    EXPECT_FALSE(RegistryKeyExists(HKEY_CURRENT_USER, kLibrary));
    EXPECT_FALSE(RegistryKeyExists(HKEY_LOCAL_MACHINE, kLibrary));
}

HRESULT CreateCounter(CComPtr<ICounter>& counter)
{
    CLSID id = {};
    const HRESULT hr = CLSIDFromProgID(L"OrvaAtlTest.Counter.1", &id);
    return FAILED(hr) ? hr
                      : CoCreateInstance(id, nullptr, CLSCTX_ALL, IID_ICounter,
                                         reinterpret_cast<void**>(&counter.p));
}

TEST_F(AtlServerRegistration, ComCreatesTheRegisteredClass)
{
    ASSERT_EQ(m_server.Register(), S_OK);
    CComPtr<ICounter> counter;
    ASSERT_EQ(CreateCounter(counter), S_OK);
    long sum = 0;
    EXPECT_EQ(counter->Add(2, 3, &sum), S_OK);
    EXPECT_EQ(sum, 5);
    counter.Release();
    EXPECT_EQ(m_server.Unregister(), S_OK);
    EXPECT_EQ(CreateCounter(counter), CO_E_CLASSSTRING);
}

HRESULT IdOfName(IDispatch* object, const wchar_t* name, DISPID& id)
{
    auto* names = const_cast<LPOLESTR>(name);
    return object->GetIDsOfNames(IID_NULL, &names, 1, LOCALE_USER_DEFAULT, &id);
}

// Calls member `id` with numbers, which stand in the order of the member's parameters.
HRESULT Call(IDispatch* object, DISPID id, WORD flags, std::vector<long> numbers, VARIANT* result = nullptr)
{
    std::vector<VARIANT> reversed;
    for (auto number = numbers.rbegin(); number != numbers.rend(); ++number)
    {
        VARIANT& argument = reversed.emplace_back();
        argument.vt = VT_I4;
        argument.lVal = *number;
    }
    const bool isPut = flags == DISPATCH_PROPERTYPUT;
    DISPID named = DISPID_PROPERTYPUT;
    DISPPARAMS arguments = {reversed.data(), isPut ? &named : nullptr, static_cast<UINT>(reversed.size()),
                            isPut ? 1u : 0u};
    return object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &arguments, result, nullptr, nullptr);
}

// The members' ids in the type library.
constexpr DISPID kCount = 10;
constexpr DISPID kAdd = 11;
constexpr DISPID kFail = 12;

// Calls by name find their type information in the registered library.
class AtlServerDispatch : public AtlServerRegistration
{
protected:
    AtlServerDispatch()
    {
        EXPECT_EQ(m_server.Register(), S_OK);
        EXPECT_EQ(
            m_server.Create(CLSID_Counter, nullptr, IID_ICounter, reinterpret_cast<void**>(&m_counter.p)),
            S_OK);
        m_dispatch = static_cast<IDispatch*>(m_counter.p);
    }

    CComPtr<ICounter> m_counter;
    CComPtr<IDispatch> m_dispatch;
};

TEST_F(AtlServerDispatch, FindsNames)
{
    DISPID dispid = 0;
    EXPECT_EQ(IdOfName(m_dispatch, L"Add", dispid), S_OK);
    EXPECT_EQ(dispid, 11);
    EXPECT_EQ(IdOfName(m_dispatch, L"ADD", dispid), S_OK);
    EXPECT_EQ(IdOfName(m_dispatch, L"Subtract", dispid), DISP_E_UNKNOWNNAME);
    EXPECT_EQ(dispid, DISPID_UNKNOWN);
}

TEST_F(AtlServerDispatch, PropertiesAreWrittenAndRead)
{
    EXPECT_EQ(Call(m_dispatch, kCount, DISPATCH_PROPERTYPUT, {42}), S_OK);
    CComVariant read;
    EXPECT_EQ(Call(m_dispatch, kCount, DISPATCH_PROPERTYGET, {}, &read), S_OK);
    EXPECT_EQ(read.vt, VT_I4);
    EXPECT_EQ(read.lVal, 42);
}

TEST_F(AtlServerDispatch, MethodsAreCalledWithArgumentsInOrder)
{
    CComVariant result;
    EXPECT_EQ(Call(m_dispatch, kAdd, DISPATCH_METHOD, {40, 2}, &result), S_OK);
    EXPECT_EQ(result.vt, VT_I4);
    EXPECT_EQ(result.lVal, 42);
}

TEST_F(AtlServerDispatch, AFailureOfTheMethodComesBack)
{
    // Whether as the result itself or as an exception that carries it is the type library's affair.
    const HRESULT hr = Call(m_dispatch, kFail, DISPATCH_METHOD, {E_ACCESSDENIED});
    EXPECT_TRUE(hr == E_ACCESSDENIED || hr == DISP_E_EXCEPTION) << std::hex << hr;
}

TEST_F(AtlServerDispatch, AWrongCountOfArgumentsIsRefused)
{
    EXPECT_EQ(Call(m_dispatch, kAdd, DISPATCH_METHOD, {}), DISP_E_BADPARAMCOUNT);
}

TEST_F(AtlServerDispatch, AnUnknownMemberIsNotFound)
{
    EXPECT_EQ(Call(m_dispatch, 99, DISPATCH_METHOD, {}), DISP_E_MEMBERNOTFOUND);
}

TEST_F(AtlServerDispatch, ThereIsOneTypeInformation)
{
    UINT count = 0;
    EXPECT_EQ(m_dispatch->GetTypeInfoCount(&count), S_OK);
    EXPECT_EQ(count, 1u);
    EXPECT_EQ(m_dispatch->GetTypeInfoCount(nullptr), E_POINTER);
    CComPtr<ITypeInfo> info;
    EXPECT_EQ(m_dispatch->GetTypeInfo(1, LOCALE_USER_DEFAULT, &info.p), DISP_E_BADINDEX);
    EXPECT_EQ(m_dispatch->GetTypeInfo(0, LOCALE_USER_DEFAULT, nullptr), E_POINTER);
    ASSERT_EQ(m_dispatch->GetTypeInfo(0, LOCALE_USER_DEFAULT, &info.p), S_OK);
    CComBSTR name;
    ASSERT_EQ(info->GetDocumentation(MEMBERID_NIL, &name.m_str, nullptr, nullptr, nullptr), S_OK);
    EXPECT_STREQ(name, L"ICounter");
}

TEST_F(AtlServerDispatch, AnInterfaceThatTheLibraryLacksCannotBeCalledByName)
{
    CComPtr<IDispatch> hidden;
    ASSERT_EQ(m_counter->QueryInterface(IID_IHidden, reinterpret_cast<void**>(&hidden.p)), S_OK);
    DISPID dispid = 0;
    EXPECT_EQ(IdOfName(hidden, L"Nothing", dispid), TYPE_E_ELEMENTNOTFOUND);
    EXPECT_EQ(Call(hidden, 1, DISPATCH_METHOD, {}), TYPE_E_ELEMENTNOTFOUND);
}

TEST_F(AtlServerRegistration, AnInterfaceOfAnUnregisteredLibraryCannotBeCalledByName)
{
    CComPtr<IDispatch> dispatch;
    ASSERT_EQ(m_server.Create(CLSID_Counter, nullptr, IID_ICounter, reinterpret_cast<void**>(&dispatch.p)),
              S_OK);
    DISPID dispid = 0;
    EXPECT_EQ(IdOfName(dispatch, L"Add", dispid), TYPE_E_LIBNOTREGISTERED);
    // That is not for good: the library is looked for again.
    ASSERT_EQ(m_server.Register(), S_OK);
    EXPECT_EQ(IdOfName(dispatch, L"Add", dispid), S_OK);
}

TEST_F(AtlServerRegistration, TheModulesOwnLibraryNeedsNoRegistration)
{
    CComPtr<IDispatch> dispatch;
    ASSERT_EQ(m_server.Create(CLSID_Counter, nullptr, IID_INamed, reinterpret_cast<void**>(&dispatch.p)),
              S_OK);
    CComVariant name;
    DISPID dispid = 0;
    ASSERT_EQ(IdOfName(dispatch, L"Name", dispid), S_OK);
    DISPPARAMS none = {};
    ASSERT_EQ(dispatch->Invoke(dispid, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET, &none, &name,
                               nullptr, nullptr),
              S_OK);
    ASSERT_EQ(name.vt, VT_BSTR);
    EXPECT_STREQ(name.bstrVal, L"counter");
}

TEST_F(AtlServerRegistration, AnObjectIsUsedAndLastReleasedFromAnotherApartmentThroughAProxy)
{
    ASSERT_EQ(m_server.Register(), S_OK);
    struct CWork
    {
        IStream* marshaled = nullptr;
        IUnknown* original = nullptr;
        HRESULT unmarshaled = E_FAIL;
        HRESULT called = E_FAIL;
        long count = 0;
        bool isProxy = false;
        static DWORD WINAPI Run(void* context)
        {
            auto* work = static_cast<CWork*>(context);
            CoInitializeEx(nullptr, COINIT_MULTITHREADED);
            {
                CComPtr<ICounter> counter;
                work->unmarshaled = CoGetInterfaceAndReleaseStream(work->marshaled, IID_ICounter,
                                                                   reinterpret_cast<void**>(&counter.p));
                if (SUCCEEDED(work->unmarshaled))
                {
                    work->isProxy = counter.p != work->original;
                    work->called = counter->put_Count(3);
                    counter->get_Count(&work->count);
                }
            }
            CoUninitialize();
            return 0;
        }
    } work;
    {
        CComPtr<ICounter> counter;
        ASSERT_EQ(m_server.Create(CLSID_Counter, nullptr, IID_ICounter, reinterpret_cast<void**>(&counter.p)),
                  S_OK);
        work.original = counter;
        ASSERT_EQ(CoMarshalInterThreadInterfaceInStream(IID_ICounter, counter, &work.marshaled), S_OK);
    }
    EXPECT_EQ(m_server.CanUnloadNow(), S_FALSE);
    HANDLE thread = CreateThread(nullptr, 0, CWork::Run, &work, 0, nullptr);
    ASSERT_NE(thread, nullptr);
    ASSERT_TRUE(PumpUntil([thread] { return WaitForSingleObject(thread, 0) == WAIT_OBJECT_0; }));
    CloseHandle(thread);
    EXPECT_EQ(work.unmarshaled, S_OK);
    EXPECT_TRUE(work.isProxy);
    EXPECT_EQ(work.called, S_OK);
    EXPECT_EQ(work.count, 3);
    EXPECT_TRUE(PumpUntil([this] { return m_server.CanUnloadNow() == S_OK; }));
}

} // namespace
