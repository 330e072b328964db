// The module object of a COM server: lock count, registration, the DLL's entry points, plus handle wrappers.
//
// Left out: CComModule and CAtlExeModuleT, the global interface table, thread pools, security and performance
// classes, category registration, string conversion macros (USES_CONVERSION), window class registration.
// Otherwise than the original:
// - classes enter the object map through static objects that link themselves into a list when the module's
//   constructors run (no linker section), so the file with OBJECT_ENTRY_AUTO has to be linked into the module
//   itself;
// - of UpdateRegistryFromResourceD and ...S there is the second: the script interpreter is always linked in;
// - CRegKey has the members that are used, and they take no transaction.
#pragma once

#include "platform/atl/AtlRegKey.h"
#include "platform/atl/atlcomcli.h"
#include "platform/atl/atlcore.h"
#include "platform/atl/atliface.h"

#include <olectl.h>

#include <string>

namespace ATL
{

/// One replacement for registration scripts: %szKey% becomes szData. A null szKey ends an array of them.
struct _ATL_REGMAP_ENTRY
{
    LPCOLESTR szKey;
    LPCOLESTR szData;
};

typedef HRESULT(WINAPI _ATL_CREATORFUNC)(void* pv, REFIID riid, LPVOID* ppv);
typedef void(WINAPI _ATL_TERMFUNC)(DWORD_PTR dw);

/// One creatable class of the module, made by OBJECT_ENTRY_AUTO.
struct _ATL_OBJMAP_ENTRY_EX
{
    const CLSID* pclsid;
    HRESULT(WINAPI* pfnUpdateRegistry)(BOOL bRegister);
    _ATL_CREATORFUNC* pfnGetClassObject;
    _ATL_CREATORFUNC* pfnCreateInstance;
    /// The class object, kept from the first request to the end of the module.
    IUnknown* pCF;
    _ATL_OBJMAP_ENTRY_EX* pNext;
};

/// The classes of this module, whatever its module object is.
class CAtlComModule
{
public:
    constexpr CAtlComModule() noexcept = default;
    CAtlComModule(const CAtlComModule&) = delete;
    CAtlComModule& operator=(const CAtlComModule&) = delete;

    /// Adds a class. For the static constructors of OBJECT_ENTRY_AUTO only.
    void AddObjectEntry(_ATL_OBJMAP_ENTRY_EX& entry) noexcept;

    /// Finds the class object of rclsid and asks it for riid. CLASS_E_CLASSNOTAVAILABLE when no class of the
    /// module has that id, E_POINTER when ppv is null.
    HRESULT GetClassObject(REFCLSID rclsid, REFIID riid, LPVOID* ppv) noexcept;

    /// Runs the registration script of every class (of pCLSID only, when given), then registers the type
    /// library of the module. Returns the first failure and stops there.
    HRESULT RegisterServer(BOOL bRegTypeLib = FALSE, const CLSID* pCLSID = nullptr) noexcept;

    /// The reverse of RegisterServer.
    HRESULT UnregisterServer(BOOL bUnRegTypeLib = FALSE, const CLSID* pCLSID = nullptr) noexcept;

    /// Releases the class objects that were kept.
    void Term() noexcept;

private:
    _ATL_OBJMAP_ENTRY_EX* m_pFirst = nullptr;
};

extern CAtlComModule _AtlComModule;

/// Puts a class into the object map when the module's constructors run.
class CAtlObjectEntryLink
{
public:
    explicit CAtlObjectEntryLink(_ATL_OBJMAP_ENTRY_EX& entry) noexcept
    {
        _AtlComModule.AddObjectEntry(entry);
    }
};

/// The one object that stands for the module. Every COM object counts as a lock on it.
class CAtlModule
{
public:
    /// The id of the module's type library, set by DECLARE_LIBID.
    static GUID m_libid;

    CAtlModule() noexcept;
    virtual ~CAtlModule();
    CAtlModule(const CAtlModule&) = delete;
    CAtlModule& operator=(const CAtlModule&) = delete;

    virtual LONG Lock() noexcept;
    virtual LONG Unlock() noexcept;
    virtual LONG GetLockCount() noexcept;

    /// Adds the replacements that all scripts of the module may use.
    virtual HRESULT AddCommonRGSReplacements(IRegistrarBase* pRegistrar) noexcept = 0;

    /// Calls pFunc(dw) when the module ends, the latest addition first. E_OUTOFMEMORY.
    HRESULT AddTermFunc(_ATL_TERMFUNC* pFunc, DWORD_PTR dw) noexcept;

    /// Runs the script in the module's resource nResID (or lpszRes) of type "REGISTRY". Besides pMapEntries
    /// it may use %MODULE% (the module's path, in double quotes for a program), %MODULE_RAW% (never quoted)
    /// and what AddCommonRGSReplacements adds. DISP_E_EXCEPTION for a script with a syntax error.
    HRESULT UpdateRegistryFromResourceS(UINT nResID, BOOL bRegister,
                                        _ATL_REGMAP_ENTRY* pMapEntries = nullptr) noexcept;
    HRESULT UpdateRegistryFromResourceS(LPCTSTR lpszRes, BOOL bRegister,
                                        _ATL_REGMAP_ENTRY* pMapEntries = nullptr) noexcept;
#define UpdateRegistryFromResource UpdateRegistryFromResourceS

    /// Guards what is made once for the whole module, such as type informations.
    CComCriticalSection m_csStaticDataInitAndTypeInfo;

protected:
    /// Runs the termination functions.
    void Term() noexcept;

private:
    struct TermFunc;

    LONG m_nLockCount = 0;
    TermFunc* m_pTermFuncs = nullptr;
};

/// The module object of this module; null before its constructor and after its destructor.
extern CAtlModule* _pAtlModule;

/// What every kind of module shares. T is the module's own class.
template <class T> class CAtlModuleT : public CAtlModule
{
public:
    CAtlModuleT() noexcept { T::InitLibId(); }

    /// Does nothing; DECLARE_LIBID gives the module's own.
    static void InitLibId() noexcept {}
    /// The application id; empty unless DECLARE_REGISTRY_APPID_RESOURCEID names one.
    static LPCOLESTR GetAppId() noexcept { return L""; }
    /// Runs the module's own script; none unless DECLARE_REGISTRY_APPID_RESOURCEID names one.
    static HRESULT WINAPI UpdateRegistryAppId(BOOL /*bRegister*/) noexcept { return S_OK; }

    HRESULT RegisterServer(BOOL bRegTypeLib = FALSE, const CLSID* pCLSID = nullptr) noexcept
    {
        return _AtlComModule.RegisterServer(bRegTypeLib, pCLSID);
    }
    HRESULT UnregisterServer(BOOL bUnRegTypeLib, const CLSID* pCLSID = nullptr) noexcept
    {
        return _AtlComModule.UnregisterServer(bUnRegTypeLib, pCLSID);
    }
    HRESULT RegisterAppId() noexcept { return T::UpdateRegistryAppId(TRUE); }
    HRESULT UnregisterAppId() noexcept { return T::UpdateRegistryAppId(FALSE); }

    HRESULT AddCommonRGSReplacements(IRegistrarBase* pRegistrar) noexcept override
    {
        return pRegistrar->AddReplacement(L"APPID", T::GetAppId());
    }
};

/// Sets the thread's locale to the system's default for the length of a scope: type libraries and scripts are
/// registered independently of who registers them.
class CAtlSystemLocaleScope
{
public:
    CAtlSystemLocaleScope() noexcept : m_lcid(GetThreadLocale()) { SetThreadLocale(LOCALE_SYSTEM_DEFAULT); }
    ~CAtlSystemLocaleScope() { SetThreadLocale(m_lcid); }
    CAtlSystemLocaleScope(const CAtlSystemLocaleScope&) = delete;
    CAtlSystemLocaleScope& operator=(const CAtlSystemLocaleScope&) = delete;

private:
    LCID m_lcid;
};

/// The module object of an in-process server; its members are what the DLL's exports call.
template <class T> class CAtlDllModuleT : public CAtlModuleT<T>
{
public:
    /// S_OK when nothing of the module is in use, else S_FALSE.
    HRESULT DllCanUnloadNow() noexcept { return static_cast<T*>(this)->GetLockCount() == 0 ? S_OK : S_FALSE; }

    HRESULT DllGetClassObject(REFCLSID rclsid, REFIID riid, LPVOID* ppv) noexcept
    {
        return static_cast<T*>(this)->GetClassObject(rclsid, riid, ppv);
    }

    /// Runs the module's own script (UpdateRegistryAppId), then registers the classes and, if bRegTypeLib,
    /// the type library. Returns the first failure. The thread's locale is the system's default meanwhile.
    HRESULT DllRegisterServer(BOOL bRegTypeLib = TRUE) noexcept
    {
        const CAtlSystemLocaleScope locale;
        T* pT = static_cast<T*>(this);
        const HRESULT hr = pT->RegisterAppId();
        return FAILED(hr) ? hr : pT->RegisterServer(bRegTypeLib);
    }

    /// Unregisters the classes and, if bUnRegTypeLib, the type library, then runs the module's own script in
    /// unregister mode. Returns the first failure. The thread's locale is the system's default meanwhile.
    HRESULT DllUnregisterServer(BOOL bUnRegTypeLib = TRUE) noexcept
    {
        const CAtlSystemLocaleScope locale;
        T* pT = static_cast<T*>(this);
        const HRESULT hr = pT->UnregisterServer(bUnRegTypeLib);
        return FAILED(hr) ? hr : pT->UnregisterAppId();
    }

    HRESULT GetClassObject(REFCLSID rclsid, REFIID riid, LPVOID* ppv) noexcept
    {
        return _AtlComModule.GetClassObject(rclsid, riid, ppv);
    }
};

/// The full path of a module's file. Throws CAtlException when the system does not give it.
std::wstring AtlGetModulePath(HINSTANCE hInst);

/// Loads the type library that is part of hInstTypeLib; lpszIndex ("\\2") names another resource than the
/// first. *pbstrPath receives the path that was loaded. When the module has none, a .tlb file of the module's
/// name beside it is tried.
HRESULT AtlLoadTypeLib(HINSTANCE hInstTypeLib, LPCOLESTR lpszIndex, BSTR* pbstrPath,
                       ITypeLib** ppTypeLib) noexcept;

/// Registers the type library of hInstTypeLib with the module's folder as its help folder: for the user alone
/// when per-user registration is switched on and the system can do that, else for the machine.
HRESULT AtlRegisterTypeLib(HINSTANCE hInstTypeLib, LPCOLESTR lpszIndex) noexcept;

/// The reverse of AtlRegisterTypeLib.
HRESULT AtlUnRegisterTypeLib(HINSTANCE hInstTypeLib, LPCOLESTR lpszIndex) noexcept;

/// Switches per-user registration on or off for this module: what scripts write under HKEY_CLASSES_ROOT then
/// goes to the current user's classes, and type libraries are registered for the current user.
HRESULT AtlSetPerUserRegistration(bool bEnable) noexcept;

/// Tells whether per-user registration is switched on. E_POINTER when pbEnabled is null.
HRESULT AtlGetPerUserRegistration(bool* pbEnabled) noexcept;

} // namespace ATL

// In a module class: the id of its type library.
#define DECLARE_LIBID(libid)                                                                                 \
    static void InitLibId() noexcept                                                                         \
    {                                                                                                        \
        ATL::CAtlModule::m_libid = libid;                                                                    \
    }

// In a module class: its own script and the application id that scripts know as %APPID%.
#define DECLARE_REGISTRY_APPID_RESOURCEID(resid, appid)                                                      \
    static LPCOLESTR GetAppId() noexcept                                                                     \
    {                                                                                                        \
        return OLESTR(appid);                                                                                \
    }                                                                                                        \
    static HRESULT WINAPI UpdateRegistryAppId(BOOL bRegister) noexcept                                       \
    {                                                                                                        \
        ATL::_ATL_REGMAP_ENTRY aMapEntries[] = {{OLESTR("APPID"), GetAppId()}, {nullptr, nullptr}};          \
        return ATL::_pAtlModule->UpdateRegistryFromResource(resid, bRegister, aMapEntries);                  \
    }

#ifndef _ATL_NO_AUTOMATIC_NAMESPACE
using namespace ATL;
#endif
