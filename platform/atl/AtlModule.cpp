// The module object, the object map and the module's own instance.
#include "platform/atl/atlbase.h"
#include "platform/atl/statreg.h"

#include <new>

// The linker gives this name to the first byte of the module that it makes.
extern "C" IMAGE_DOS_HEADER __ImageBase;

namespace ATL
{

constinit CAtlBaseModule _AtlBaseModule;
constinit CAtlComModule _AtlComModule;
constinit CAtlModule* _pAtlModule = nullptr;
constinit GUID CAtlModule::m_libid = {};

HINSTANCE CAtlBaseModule::GetModuleInstance() const noexcept
{
    return reinterpret_cast<HINSTANCE>(&__ImageBase);
}

void CAtlComModule::AddObjectEntry(_ATL_OBJMAP_ENTRY_EX& entry) noexcept
{
    // At the end, so that classes are registered in the order of their files' initialisation.
    _ATL_OBJMAP_ENTRY_EX** end = &m_pFirst;
    while (*end)
    {
        end = &(*end)->pNext;
    }
    *end = &entry;
}

HRESULT CAtlComModule::GetClassObject(REFCLSID rclsid, REFIID riid, LPVOID* ppv) noexcept
{
    if (ppv == nullptr)
    {
        return E_POINTER;
    }
    *ppv = nullptr;
    for (_ATL_OBJMAP_ENTRY_EX* entry = m_pFirst; entry; entry = entry->pNext)
    {
        if (!IsEqualCLSID(rclsid, *entry->pclsid))
        {
            continue;
        }
        if (_pAtlModule == nullptr)
        {
            return E_UNEXPECTED;
        }
        {
            const CComCritSecLock lock(_pAtlModule->m_csStaticDataInitAndTypeInfo);
            if (entry->pCF == nullptr)
            {
                void* pCreator = reinterpret_cast<void*>(reinterpret_cast<INT_PTR>(entry->pfnCreateInstance));
                const HRESULT hr =
                    entry->pfnGetClassObject(pCreator, IID_IUnknown, reinterpret_cast<void**>(&entry->pCF));
                if (FAILED(hr))
                {
                    return hr;
                }
            }
        }
        return entry->pCF->QueryInterface(riid, ppv);
    }
    return CLASS_E_CLASSNOTAVAILABLE;
}

HRESULT CAtlComModule::RegisterServer(BOOL bRegTypeLib, const CLSID* pCLSID) noexcept
{
    for (const _ATL_OBJMAP_ENTRY_EX* entry = m_pFirst; entry; entry = entry->pNext)
    {
        if (pCLSID && !IsEqualCLSID(*pCLSID, *entry->pclsid))
        {
            continue;
        }
        const HRESULT hr = entry->pfnUpdateRegistry(TRUE);
        if (FAILED(hr))
        {
            return hr;
        }
    }
    return bRegTypeLib ? AtlRegisterTypeLib(_AtlBaseModule.GetModuleInstance(), nullptr) : S_OK;
}

HRESULT CAtlComModule::UnregisterServer(BOOL bUnRegTypeLib, const CLSID* pCLSID) noexcept
{
    for (const _ATL_OBJMAP_ENTRY_EX* entry = m_pFirst; entry; entry = entry->pNext)
    {
        if (pCLSID && !IsEqualCLSID(*pCLSID, *entry->pclsid))
        {
            continue;
        }
        const HRESULT hr = entry->pfnUpdateRegistry(FALSE);
        if (FAILED(hr))
        {
            return hr;
        }
    }
    return bUnRegTypeLib ? AtlUnRegisterTypeLib(_AtlBaseModule.GetModuleInstance(), nullptr) : S_OK;
}

void CAtlComModule::Term() noexcept
{
    for (_ATL_OBJMAP_ENTRY_EX* entry = m_pFirst; entry; entry = entry->pNext)
    {
        IUnknown* pCF = entry->pCF;
        entry->pCF = nullptr;
        if (pCF)
        {
            pCF->Release();
        }
    }
}

struct CAtlModule::TermFunc
{
    _ATL_TERMFUNC* pFunc;
    DWORD_PTR dw;
    TermFunc* pNext;
};

CAtlModule::CAtlModule() noexcept
{
    m_csStaticDataInitAndTypeInfo.Init();
    _pAtlModule = this;
}

CAtlModule::~CAtlModule()
{
    Term();
    m_csStaticDataInitAndTypeInfo.Term();
    if (_pAtlModule == this)
    {
        _pAtlModule = nullptr;
    }
}

void CAtlModule::Term() noexcept
{
    // The class objects go while the module object still counts for them.
    _AtlComModule.Term();
    while (m_pTermFuncs)
    {
        TermFunc* first = m_pTermFuncs;
        m_pTermFuncs = first->pNext;
        first->pFunc(first->dw);
        delete first;
    }
}

LONG CAtlModule::Lock() noexcept
{
    return static_cast<LONG>(InterlockedIncrement(&m_nLockCount));
}

LONG CAtlModule::Unlock() noexcept
{
    return static_cast<LONG>(InterlockedDecrement(&m_nLockCount));
}

LONG CAtlModule::GetLockCount() noexcept
{
    return m_nLockCount;
}

HRESULT CAtlModule::AddTermFunc(_ATL_TERMFUNC* pFunc, DWORD_PTR dw) noexcept
{
    TermFunc* added = new (std::nothrow) TermFunc{pFunc, dw, nullptr};
    if (added == nullptr)
    {
        return E_OUTOFMEMORY;
    }
    const CComCritSecLock lock(m_csStaticDataInitAndTypeInfo);
    added->pNext = m_pTermFuncs;
    m_pTermFuncs = added;
    return S_OK;
}

HRESULT CAtlModule::UpdateRegistryFromResourceS(LPCTSTR lpszRes, BOOL bRegister,
                                                _ATL_REGMAP_ENTRY* pMapEntries) noexcept
{
    try
    {
        HINSTANCE hInst = _AtlBaseModule.GetModuleInstance();
        const std::wstring path = AtlGetModulePath(hInst);
        const bool isProgram = hInst == GetModuleHandleW(nullptr);

        CRegObject registrar;
        HRESULT hr = AddCommonRGSReplacements(&registrar);
        if (SUCCEEDED(hr))
        {
            hr = registrar.AddReplacement(L"MODULE", (isProgram ? L'"' + path + L'"' : path).c_str());
        }
        if (SUCCEEDED(hr))
        {
            hr = registrar.AddReplacement(L"MODULE_RAW", path.c_str());
        }
        // Last, because the caller's own texts go before those of the same name that every script gets.
        for (; SUCCEEDED(hr) && pMapEntries && pMapEntries->szKey; ++pMapEntries)
        {
            hr = registrar.AddReplacement(pMapEntries->szKey, pMapEntries->szData);
        }
        if (FAILED(hr))
        {
            return hr;
        }
        return bRegister ? registrar.ResourceRegisterSz(path.c_str(), lpszRes, L"REGISTRY")
                         : registrar.ResourceUnregisterSz(path.c_str(), lpszRes, L"REGISTRY");
    }
    catch (const CAtlException& e)
    {
        return e.m_hr;
    }
    catch (const std::bad_alloc&)
    {
        return E_OUTOFMEMORY;
    }
}

HRESULT CAtlModule::UpdateRegistryFromResourceS(UINT nResID, BOOL bRegister,
                                                _ATL_REGMAP_ENTRY* pMapEntries) noexcept
{
    return UpdateRegistryFromResourceS(MAKEINTRESOURCEW(nResID), bRegister, pMapEntries);
}

} // namespace ATL
