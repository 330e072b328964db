#include "platform/atl/AtlComObject.h"

#include "platform/atl/AtlClassFactory.h"

namespace ATL
{

namespace
{

template <class T> T* AtOffset(void* pThis, DWORD_PTR offset) noexcept
{
    return reinterpret_cast<T*>(static_cast<BYTE*>(pThis) + static_cast<std::ptrdiff_t>(offset));
}

} // namespace

HRESULT WINAPI AtlInternalQueryInterface(void* pThis, const _ATL_INTMAP_ENTRY* pEntries, REFIID iid,
                                         void** ppvObject)
{
    if (ppvObject == nullptr)
    {
        return E_POINTER;
    }
    *ppvObject = nullptr;
    if (IsEqualIID(iid, IID_IUnknown))
    {
        ATLASSERT(pEntries->pFunc == _ATL_SIMPLEMAPENTRY);
        IUnknown* identity = AtOffset<IUnknown>(pThis, pEntries->dw);
        identity->AddRef();
        *ppvObject = identity;
        return S_OK;
    }
    for (; pEntries->pFunc != nullptr; ++pEntries)
    {
        const bool isBlind = pEntries->piid == nullptr;
        if (!isBlind && !IsEqualIID(*pEntries->piid, iid))
        {
            continue;
        }
        if (pEntries->pFunc == _ATL_SIMPLEMAPENTRY)
        {
            IUnknown* found = AtOffset<IUnknown>(pThis, pEntries->dw);
            found->AddRef();
            *ppvObject = found;
            return S_OK;
        }
        const HRESULT hr = pEntries->pFunc(pThis, iid, ppvObject, pEntries->dw);
        if (hr == S_OK)
        {
            return S_OK;
        }
        *ppvObject = nullptr;
        if (!isBlind && FAILED(hr))
        {
            return hr;
        }
    }
    return E_NOINTERFACE;
}

HRESULT STDMETHODCALLTYPE CComClassFactory::CreateInstance(LPUNKNOWN pUnkOuter, REFIID riid, void** ppvObj)
{
    if (ppvObj == nullptr)
    {
        return E_POINTER;
    }
    *ppvObj = nullptr;
    // Of a new aggregate the outer object can only hold the inner IUnknown.
    if (pUnkOuter != nullptr && !IsEqualIID(riid, IID_IUnknown))
    {
        return CLASS_E_NOAGGREGATION;
    }
    return m_pfnCreateInstance(pUnkOuter, riid, ppvObj);
}

HRESULT STDMETHODCALLTYPE CComClassFactory::LockServer(BOOL fLock)
{
    if (fLock)
    {
        _pAtlModule->Lock();
    }
    else
    {
        _pAtlModule->Unlock();
    }
    return S_OK;
}

} // namespace ATL
