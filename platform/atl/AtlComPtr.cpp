#include "platform/atl/AtlComPtr.h"

namespace ATL
{

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

HRESULT CComPtr<IDispatch>::GetPropertyByName(LPCOLESTR lpsz, VARIANT* pVar)
{
    if (p == nullptr || pVar == nullptr)
    {
        return E_POINTER;
    }
    LPOLESTR name = const_cast<LPOLESTR>(lpsz);
    DISPID id;
    const HRESULT hr = p->GetIDsOfNames(IID_NULL, &name, 1, LOCALE_USER_DEFAULT, &id);
    if (FAILED(hr))
    {
        return hr;
    }
    DISPPARAMS noArguments = {nullptr, nullptr, 0, 0};
    return p->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET, &noArguments, pVar, nullptr,
                     nullptr);
}

} // namespace ATL
