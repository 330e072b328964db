#include "platform/atl/AtlComPtr.h"

namespace ATL
{

IUnknown* AtlComPtrAssign(IUnknown** pp, IUnknown* lp)
{
    if (pp == nullptr)
    {
        return nullptr;
    }
    if (lp)
    {
        lp->AddRef();
    }
    if (*pp)
    {
        (*pp)->Release();
    }
    *pp = lp;
    return lp;
}

IUnknown* AtlComQIPtrAssign(IUnknown** pp, IUnknown* lp, REFIID riid)
{
    if (pp == nullptr)
    {
        return nullptr;
    }
    IUnknown* pFormer = *pp;
    *pp = nullptr;
    if (lp && FAILED(lp->QueryInterface(riid, reinterpret_cast<void**>(pp))))
    {
        *pp = nullptr;
    }
    if (pFormer)
    {
        pFormer->Release();
    }
    return *pp;
}

HRESULT AtlAdvise(IUnknown* pUnkCP, IUnknown* pUnk, const IID& iid, LPDWORD pdw)
{
    if (pUnkCP == nullptr)
    {
        return E_INVALIDARG;
    }
    CComPtr<IConnectionPointContainer> container;
    CComPtr<IConnectionPoint> point;
    HRESULT hr =
        pUnkCP->QueryInterface(IID_IConnectionPointContainer, reinterpret_cast<void**>(&container.p));
    if (SUCCEEDED(hr))
    {
        hr = container->FindConnectionPoint(iid, &point.p);
    }
    if (SUCCEEDED(hr))
    {
        hr = point->Advise(pUnk, pdw);
    }
    return hr;
}

HRESULT AtlUnadvise(IUnknown* pUnkCP, const IID& iid, DWORD dw)
{
    if (pUnkCP == nullptr)
    {
        return E_INVALIDARG;
    }
    CComPtr<IConnectionPointContainer> container;
    CComPtr<IConnectionPoint> point;
    HRESULT hr =
        pUnkCP->QueryInterface(IID_IConnectionPointContainer, reinterpret_cast<void**>(&container.p));
    if (SUCCEEDED(hr))
    {
        hr = container->FindConnectionPoint(iid, &point.p);
    }
    if (SUCCEEDED(hr))
    {
        hr = point->Unadvise(dw);
    }
    return hr;
}

HRESULT CComPtr<IDispatch>::GetIDOfName(LPCOLESTR lpsz, DISPID* pdispid)
{
    if (p == nullptr || pdispid == nullptr)
    {
        return E_POINTER;
    }
    LPOLESTR name = const_cast<LPOLESTR>(lpsz);
    return p->GetIDsOfNames(IID_NULL, &name, 1, LOCALE_USER_DEFAULT, pdispid);
}

HRESULT CComPtr<IDispatch>::GetProperty(IDispatch* pDisp, DISPID dwDispID, VARIANT* pVar)
{
    if (pDisp == nullptr || pVar == nullptr)
    {
        return E_POINTER;
    }
    DISPPARAMS noArguments = {nullptr, nullptr, 0, 0};
    return pDisp->Invoke(dwDispID, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET, &noArguments, pVar,
                         nullptr, nullptr);
}

HRESULT CComPtr<IDispatch>::GetProperty(DISPID dwDispID, VARIANT* pVar)
{
    return GetProperty(p, dwDispID, pVar);
}

HRESULT CComPtr<IDispatch>::GetPropertyByName(LPCOLESTR lpsz, VARIANT* pVar)
{
    DISPID dispid;
    const HRESULT hr = GetIDOfName(lpsz, &dispid);
    return FAILED(hr) ? hr : GetProperty(dispid, pVar);
}

HRESULT CComPtr<IDispatch>::PutProperty(IDispatch* pDisp, DISPID dwDispID, VARIANT* pVar)
{
    if (pDisp == nullptr || pVar == nullptr)
    {
        return E_POINTER;
    }
    DISPID named = DISPID_PROPERTYPUT;
    DISPPARAMS argument = {pVar, &named, 1, 1};
    if (pVar->vt == VT_UNKNOWN || pVar->vt == VT_DISPATCH || (pVar->vt & VT_ARRAY) || (pVar->vt & VT_BYREF))
    {
        const HRESULT hr = pDisp->Invoke(dwDispID, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYPUTREF,
                                         &argument, nullptr, nullptr, nullptr);
        if (SUCCEEDED(hr))
        {
            return hr;
        }
    }
    return pDisp->Invoke(dwDispID, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYPUT, &argument, nullptr,
                         nullptr, nullptr);
}

HRESULT CComPtr<IDispatch>::PutProperty(DISPID dwDispID, VARIANT* pVar)
{
    return PutProperty(p, dwDispID, pVar);
}

HRESULT CComPtr<IDispatch>::PutPropertyByName(LPCOLESTR lpsz, VARIANT* pVar)
{
    DISPID dispid;
    const HRESULT hr = GetIDOfName(lpsz, &dispid);
    return FAILED(hr) ? hr : PutProperty(dispid, pVar);
}

HRESULT CComPtr<IDispatch>::InvokeN(DISPID dispid, VARIANT* pvarParams, int nParams, VARIANT* pvarRet)
{
    if (p == nullptr)
    {
        return E_POINTER;
    }
    DISPPARAMS arguments = {pvarParams, nullptr, static_cast<UINT>(nParams), 0};
    return p->Invoke(dispid, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &arguments, pvarRet, nullptr,
                     nullptr);
}

HRESULT CComPtr<IDispatch>::InvokeN(LPCOLESTR lpszName, VARIANT* pvarParams, int nParams, VARIANT* pvarRet)
{
    DISPID dispid;
    const HRESULT hr = GetIDOfName(lpszName, &dispid);
    return FAILED(hr) ? hr : InvokeN(dispid, pvarParams, nParams, pvarRet);
}

HRESULT CComPtr<IDispatch>::Invoke0(DISPID dispid, VARIANT* pvarRet)
{
    return InvokeN(dispid, nullptr, 0, pvarRet);
}

HRESULT CComPtr<IDispatch>::Invoke0(LPCOLESTR lpszName, VARIANT* pvarRet)
{
    return InvokeN(lpszName, nullptr, 0, pvarRet);
}

HRESULT CComPtr<IDispatch>::Invoke1(DISPID dispid, VARIANT* pvarParam1, VARIANT* pvarRet)
{
    return InvokeN(dispid, pvarParam1, 1, pvarRet);
}

HRESULT CComPtr<IDispatch>::Invoke1(LPCOLESTR lpszName, VARIANT* pvarParam1, VARIANT* pvarRet)
{
    return InvokeN(lpszName, pvarParam1, 1, pvarRet);
}

HRESULT CComPtr<IDispatch>::Invoke2(DISPID dispid, VARIANT* pvarParam1, VARIANT* pvarParam2, VARIANT* pvarRet)
{
    if (pvarParam1 == nullptr || pvarParam2 == nullptr)
    {
        return E_INVALIDARG;
    }
    // Bitwise copies: the caller keeps what they point to.
    VARIANT reversed[] = {*pvarParam2, *pvarParam1};
    return InvokeN(dispid, reversed, 2, pvarRet);
}

HRESULT CComPtr<IDispatch>::Invoke2(LPCOLESTR lpszName, VARIANT* pvarParam1, VARIANT* pvarParam2,
                                    VARIANT* pvarRet)
{
    DISPID dispid;
    const HRESULT hr = GetIDOfName(lpszName, &dispid);
    return FAILED(hr) ? hr : Invoke2(dispid, pvarParam1, pvarParam2, pvarRet);
}

} // namespace ATL
