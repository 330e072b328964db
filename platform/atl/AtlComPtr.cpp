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

} // namespace ATL
