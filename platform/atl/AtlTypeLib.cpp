// Loading and registering the module's type library, and the switch of per-user registration.
#include "platform/atl/atlbase.h"

#include <new>

namespace ATL
{

namespace
{

constinit bool g_perUserRegistration = false;

typedef HRESULT(WINAPI* RegisterTypeLibFunction)(ITypeLib* ptlib, OLECHAR* szFullPath, OLECHAR* szHelpDir);
typedef HRESULT(WINAPI* UnRegisterTypeLibFunction)(REFGUID libID, WORD wVerMajor, WORD wVerMinor, LCID lcid,
                                                   SYSKIND syskind);

// A function of oleaut32.dll that Windows before Vista SP1 does not have; null there. Looked up by name,
// because an import that is missing would keep the whole module from loading.
template <class TFunction> TFunction FindOleautFunction(const char* name) noexcept
{
    HMODULE module = GetModuleHandleW(L"OLEAUT32.DLL");
    if (module == nullptr)
    {
        return nullptr;
    }
    return reinterpret_cast<TFunction>(reinterpret_cast<INT_PTR>(GetProcAddress(module, name)));
}

// The folder of a file, closed by its separator.
std::wstring FolderOf(std::wstring_view path)
{
    const std::size_t end = path.find_last_of(L"\\/:");
    return std::wstring(path.substr(0, end == std::wstring_view::npos ? 0 : end + 1));
}

// Replaces or appends the extension of a file name.
std::wstring WithExtension(const std::wstring& path, const wchar_t* extension)
{
    const std::size_t folder = FolderOf(path).size();
    const std::size_t dot = path.find_last_of(L'.');
    return path.substr(0, dot == std::wstring::npos || dot < folder ? path.size() : dot) + extension;
}

} // namespace

std::wstring AtlGetModulePath(HINSTANCE hInst)
{
    std::wstring path(MAX_PATH, L'\0');
    for (;;)
    {
        const DWORD length = GetModuleFileNameW(hInst, path.data(), static_cast<DWORD>(path.size()));
        if (length == 0)
        {
            AtlThrow(AtlHresultFromLastError());
        }
        if (length < path.size())
        {
            path.resize(length);
            return path;
        }
        path.resize(path.size() * 2);
    }
}

HRESULT AtlLoadTypeLib(HINSTANCE hInstTypeLib, LPCOLESTR lpszIndex, BSTR* pbstrPath,
                       ITypeLib** ppTypeLib) noexcept
{
    if (pbstrPath == nullptr || ppTypeLib == nullptr)
    {
        return E_POINTER;
    }
    *pbstrPath = nullptr;
    *ppTypeLib = nullptr;
    try
    {
        const std::wstring modulePath = AtlGetModulePath(hInstTypeLib);
        std::wstring path = modulePath;
        if (lpszIndex)
        {
            path += lpszIndex;
        }
        CComPtr<ITypeLib> library;
        HRESULT hr = LoadTypeLibEx(path.c_str(), REGKIND_NONE, &library.p);
        if (FAILED(hr))
        {
            path = WithExtension(modulePath, L".tlb");
            hr = LoadTypeLibEx(path.c_str(), REGKIND_NONE, &library.p);
        }
        if (FAILED(hr))
        {
            return hr;
        }
        *pbstrPath = CComBSTR(path.c_str()).Detach();
        *ppTypeLib = library.Detach();
        return S_OK;
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

HRESULT AtlRegisterTypeLib(HINSTANCE hInstTypeLib, LPCOLESTR lpszIndex) noexcept
{
    CComBSTR path;
    CComPtr<ITypeLib> library;
    const HRESULT hr = AtlLoadTypeLib(hInstTypeLib, lpszIndex, &path.m_str, &library.p);
    if (FAILED(hr))
    {
        return hr;
    }
    try
    {
        std::wstring folder = FolderOf(path.m_str);
        RegisterTypeLibFunction registerTypeLib = nullptr;
        if (g_perUserRegistration)
        {
            registerTypeLib = FindOleautFunction<RegisterTypeLibFunction>("RegisterTypeLibForUser");
        }
        if (registerTypeLib == nullptr)
        {
            registerTypeLib = &::RegisterTypeLib;
        }
        return registerTypeLib(library, path, folder.data());
    }
    catch (const std::bad_alloc&)
    {
        return E_OUTOFMEMORY;
    }
}

HRESULT AtlUnRegisterTypeLib(HINSTANCE hInstTypeLib, LPCOLESTR lpszIndex) noexcept
{
    CComBSTR path;
    CComPtr<ITypeLib> library;
    HRESULT hr = AtlLoadTypeLib(hInstTypeLib, lpszIndex, &path.m_str, &library.p);
    if (FAILED(hr))
    {
        return hr;
    }
    TLIBATTR* attributes = nullptr;
    hr = library->GetLibAttr(&attributes);
    if (FAILED(hr))
    {
        return hr;
    }
    const TLIBATTR copy = *attributes;
    library->ReleaseTLibAttr(attributes);

    UnRegisterTypeLibFunction unRegisterTypeLib = nullptr;
    if (g_perUserRegistration)
    {
        unRegisterTypeLib = FindOleautFunction<UnRegisterTypeLibFunction>("UnRegisterTypeLibForUser");
    }
    if (unRegisterTypeLib == nullptr)
    {
        unRegisterTypeLib = &::UnRegisterTypeLib;
    }
    return unRegisterTypeLib(copy.guid, copy.wMajorVerNum, copy.wMinorVerNum, copy.lcid, copy.syskind);
}

HRESULT AtlSetPerUserRegistration(bool bEnable) noexcept
{
    g_perUserRegistration = bEnable;
    return S_OK;
}

HRESULT AtlGetPerUserRegistration(bool* pbEnabled) noexcept
{
    if (pbEnabled == nullptr)
    {
        return E_POINTER;
    }
    *pbEnabled = g_perUserRegistration;
    return S_OK;
}

} // namespace ATL
