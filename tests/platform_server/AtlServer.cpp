// A COM server made with the COM layer, as a product would make one: the tests load it, register it and call
// it.
#include "AtlServer.h"

#include <atlbase.h>
#include <atlcom.h>

#include <cwchar>
#include <string>

namespace
{

class CServerModule : public CAtlDllModuleT<CServerModule>
{
public:
    DECLARE_LIBID(LIBID_AtlServerLib)

    static LPCOLESTR GetAppId() noexcept { return L"{5B0E6D11-7C0B-4E0C-9E43-52F9A1E0C0AA}"; }
    // As DECLARE_REGISTRY_APPID_RESOURCEID, and the script also notes the locale that it is run under.
    static HRESULT WINAPI UpdateRegistryAppId(BOOL bRegister) noexcept
    {
        const std::wstring locale = std::to_wstring(GetThreadLocale());
        _ATL_REGMAP_ENTRY entries[] = {{L"LOCALE", locale.c_str()}, {nullptr, nullptr}};
        return _pAtlModule->UpdateRegistryFromResource(101, bRegister, entries);
    }
};

CServerModule g_module;

// The primary interface comes from the registered library, the second from the module's own.
class ATL_NO_VTABLE CCounter
    : public CComObjectRootEx<CComSingleThreadModel>,
      public CComCoClass<CCounter, &CLSID_Counter>,
      public IDispatchImpl<ICounter, &IID_ICounter, &LIBID_AtlServerLib, 1, 0>,
      public IDispatchImpl<INamed, &IID_INamed, &CAtlModule::m_libid, 0xFFFF, 0xFFFF>,
      public IDispatchImpl<IHidden, &IID_IHidden, &LIBID_AtlServerLib, 1, 0>
{
public:
    DECLARE_REGISTRY_RESOURCEID(102)
    DECLARE_PROTECT_FINAL_CONSTRUCT()

    BEGIN_COM_MAP(CCounter)
        COM_INTERFACE_ENTRY(ICounter)
        COM_INTERFACE_ENTRY2(IDispatch, INamed)
        COM_INTERFACE_ENTRY(INamed)
        COM_INTERFACE_ENTRY(IHidden)
    END_COM_MAP()

    // Hands the object out while it is made: without protection the release of that reference would end it.
    HRESULT FinalConstruct()
    {
        CComPtr<IDispatch> self;
        return QueryInterface(IID_IDispatch, reinterpret_cast<void**>(&self.p)) == E_POINTER ? E_UNEXPECTED
                                                                                             : S_OK;
    }

    STDMETHOD(get_Count)(long* value) override
    {
        *value = m_count;
        return S_OK;
    }
    STDMETHOD(put_Count)(long value) override
    {
        m_count = value;
        return S_OK;
    }
    STDMETHOD(Add)(long first, long second, long* sum) override
    {
        *sum = first + second;
        return S_OK;
    }
    STDMETHOD(Fail)(long result) override { return result; }

    STDMETHOD(get_Name)(BSTR* name) override
    {
        *name = CComBSTR(L"counter").Detach();
        return S_OK;
    }
    STDMETHOD(Nothing)() override { return S_OK; }

private:
    long m_count = 0;
};

// Cannot be created, and writes nothing to the registry.
class ATL_NO_VTABLE CStillborn : public CComObjectRootEx<CComSingleThreadModel>,
                                 public CComCoClass<CStillborn, &CLSID_Stillborn>,
                                 public IDispatchImpl<INamed, &IID_INamed, &LIBID_AtlServerLib, 1, 0>
{
public:
    static HRESULT WINAPI UpdateRegistry(BOOL) noexcept { return S_OK; }

    BEGIN_COM_MAP(CStillborn)
        COM_INTERFACE_ENTRY(INamed)
    END_COM_MAP()

    HRESULT FinalConstruct() { AtlThrow(E_ACCESSDENIED); }

    STDMETHOD(get_Name)(BSTR*) override { return E_NOTIMPL; }
};

OBJECT_ENTRY_AUTO(CLSID_Counter, CCounter)
OBJECT_ENTRY_AUTO(CLSID_Stillborn, CStillborn)

} // namespace

STDAPI DllCanUnloadNow()
{
    return g_module.DllCanUnloadNow();
}

STDAPI DllGetClassObject(REFCLSID rclsid, REFIID riid, LPVOID* ppv)
{
    return g_module.DllGetClassObject(rclsid, riid, ppv);
}

STDAPI DllRegisterServer()
{
    return g_module.DllRegisterServer();
}

STDAPI DllUnregisterServer()
{
    return g_module.DllUnregisterServer();
}

STDAPI DllInstall(BOOL bInstall, LPCWSTR pszCmdLine)
{
    AtlSetPerUserRegistration(pszCmdLine && std::wcscmp(pszCmdLine, L"user") == 0);
    return bInstall ? DllRegisterServer() : DllUnregisterServer();
}
