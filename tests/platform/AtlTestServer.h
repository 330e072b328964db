// The tests' COM server as its clients see it: loaded from beside the test program, its exports called by
// name.
#pragma once

#include "harness/Registry.h"

#include <atlcomcli.h>

#include <gtest/gtest.h>

#include <string>

namespace orva::test
{

/// The server's DLL for the length of a scope. Failing to load it or to find an export fails the test.
class CAtlTestServer
{
public:
    CAtlTestServer() : m_module(LoadLibraryW(Path().c_str()))
    {
        EXPECT_NE(m_module, nullptr) << GetLastError();
    }
    ~CAtlTestServer()
    {
        if (m_module)
        {
            FreeLibrary(m_module);
        }
    }
    CAtlTestServer(const CAtlTestServer&) = delete;
    CAtlTestServer& operator=(const CAtlTestServer&) = delete;

    static std::wstring Folder()
    {
        std::wstring path(MAX_PATH, L'\0');
        path.resize(GetModuleFileNameW(nullptr, path.data(), MAX_PATH));
        return path.substr(0, path.find_last_of(L'\\') + 1);
    }
    static std::wstring Path() { return Folder() + L"AtlTestServer.dll"; }

    HRESULT CanUnloadNow() const { return Call<>("DllCanUnloadNow"); }
    HRESULT Register() const { return Call<>("DllRegisterServer"); }
    HRESULT Unregister() const { return Call<>("DllUnregisterServer"); }
    HRESULT Install(BOOL install, LPCWSTR commandLine) const
    {
        return Call<BOOL, LPCWSTR>("DllInstall", install, commandLine);
    }
    HRESULT GetClassObject(REFCLSID clsid, REFIID iid, void** object) const
    {
        return Call<REFCLSID, REFIID, LPVOID*>("DllGetClassObject", clsid, iid, object);
    }
    /// Creates an object through the class object; nothing is looked up in the registry.
    HRESULT Create(REFCLSID clsid, IUnknown* outer, REFIID iid, void** object) const
    {
        CComPtr<IClassFactory> factory;
        const HRESULT hr = GetClassObject(clsid, IID_IClassFactory, reinterpret_cast<void**>(&factory.p));
        return FAILED(hr) ? hr : factory->CreateInstance(outer, iid, object);
    }

private:
    template <class... TArguments> HRESULT Call(const char* name, TArguments... arguments) const
    {
        FARPROC address = GetProcAddress(m_module, name);
        if (address == nullptr)
        {
            ADD_FAILURE() << "the server does not export " << name;
            return E_NOTIMPL;
        }
        using Function = HRESULT(WINAPI*)(TArguments...);
        return reinterpret_cast<Function>(reinterpret_cast<INT_PTR>(address))(arguments...);
    }

    HMODULE m_module;
};

/// Restores every place that the server's registration touches, and starts with none of it there.
class CAtlServerRegistryGuard
{
public:
    CAtlServerRegistryGuard()
    {
        for (CRegistryTreeGuard* guard :
             {&m_machineClass, &m_machineProgId, &m_machineLibrary, &m_machineInterface1,
              &m_machineInterface2, &m_userClass, &m_userProgId, &m_userLibrary, &m_script})
        {
            guard->Remove();
        }
    }

private:
    CRegistryTreeGuard m_machineClass{HKEY_LOCAL_MACHINE,
                                      L"Software\\Classes\\CLSID\\{5B0E6D11-7C0B-4E0C-9E43-52F9A1E0C010}"};
    CRegistryTreeGuard m_machineProgId{HKEY_LOCAL_MACHINE, L"Software\\Classes\\OrvaAtlTest.Counter.1"};
    CRegistryTreeGuard m_machineLibrary{
        HKEY_LOCAL_MACHINE, L"Software\\Classes\\TypeLib\\{5B0E6D11-7C0B-4E0C-9E43-52F9A1E0C0FF}"};
    CRegistryTreeGuard m_machineInterface1{
        HKEY_LOCAL_MACHINE, L"Software\\Classes\\Interface\\{5B0E6D11-7C0B-4E0C-9E43-52F9A1E0C002}"};
    CRegistryTreeGuard m_machineInterface2{
        HKEY_LOCAL_MACHINE, L"Software\\Classes\\Interface\\{5B0E6D11-7C0B-4E0C-9E43-52F9A1E0C003}"};
    CRegistryTreeGuard m_userClass{HKEY_CURRENT_USER,
                                   L"Software\\Classes\\CLSID\\{5B0E6D11-7C0B-4E0C-9E43-52F9A1E0C010}"};
    CRegistryTreeGuard m_userProgId{HKEY_CURRENT_USER, L"Software\\Classes\\OrvaAtlTest.Counter.1"};
    CRegistryTreeGuard m_userLibrary{HKEY_CURRENT_USER,
                                     L"Software\\Classes\\TypeLib\\{5B0E6D11-7C0B-4E0C-9E43-52F9A1E0C0FF}"};
    CRegistryTreeGuard m_script{HKEY_CURRENT_USER, L"Software\\OrvaAtlTestServer"};
};

} // namespace orva::test
