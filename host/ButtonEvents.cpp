#include "host/ButtonEvents.h"

#include <Office.h>

#include <wrl/client.h>

#include <olectl.h>

#include <vector>

namespace orva::host
{
namespace
{

constexpr DISPID kClick = 1;

} // namespace

CButtonEvents::~CButtonEvents()
{
    for (const auto& [cookie, sink] : m_sinks)
    {
        sink->Release();
    }
}

HRESULT CButtonEvents::Find(REFIID iid, IConnectionPoint** point)
{
    if (point == nullptr)
    {
        return E_POINTER;
    }
    *point = nullptr;
    if (!IsEqualIID(iid, DIID__CommandBarButtonEvents))
    {
        return CONNECT_E_NOCONNECTION;
    }
    *point = this;
    AddRef();
    return S_OK;
}

void CButtonEvents::Raise(IDispatch* button)
{
    // A subscriber may end its subscription, or another's, while it is called.
    std::vector<Microsoft::WRL::ComPtr<IDispatch>> sinks;
    for (const auto& [cookie, sink] : m_sinks)
    {
        sinks.emplace_back(sink);
    }

    // CancelDefault. It has no effect: a button's own action comes first.
    VARIANT_BOOL cancel = VARIANT_FALSE;
    for (const auto& sink : sinks)
    {
        VARIANT arguments[2];
        arguments[1].vt = VT_DISPATCH;
        arguments[1].pdispVal = button;
        arguments[0].vt = VT_BYREF | VT_BOOL;
        arguments[0].pboolVal = &cancel;
        DISPPARAMS parameters{arguments, nullptr, 2, 0};
        m_trace.Run(kOutlook, kAddIn, L"CommandBarButton.Click", [&] {
            EXCEPINFO exception{};
            UINT argumentError = 0;
            return sink->Invoke(kClick, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &parameters, nullptr,
                                &exception, &argumentError);
        });
    }
}

STDMETHODIMP CButtonEvents::QueryInterface(REFIID iid, void** object)
{
    if (object == nullptr)
    {
        return E_POINTER;
    }
    *object = nullptr;
    if (!IsEqualIID(iid, IID_IUnknown) && !IsEqualIID(iid, IID_IConnectionPoint))
    {
        return E_NOINTERFACE;
    }
    *object = static_cast<IConnectionPoint*>(this);
    AddRef();
    return S_OK;
}

STDMETHODIMP_(ULONG) CButtonEvents::AddRef()
{
    return m_container.AddRef();
}

STDMETHODIMP_(ULONG) CButtonEvents::Release()
{
    return m_container.Release();
}

STDMETHODIMP CButtonEvents::GetConnectionInterface(IID* iid)
{
    if (iid == nullptr)
    {
        return E_POINTER;
    }
    *iid = DIID__CommandBarButtonEvents;
    return S_OK;
}

STDMETHODIMP CButtonEvents::GetConnectionPointContainer(IConnectionPointContainer** container)
{
    if (container == nullptr)
    {
        return E_POINTER;
    }
    *container = &m_container;
    m_container.AddRef();
    return S_OK;
}

STDMETHODIMP CButtonEvents::Advise(IUnknown* sink, DWORD* cookie)
{
    if (sink == nullptr || cookie == nullptr)
    {
        return E_POINTER;
    }
    *cookie = 0;
    IDispatch* events = nullptr;
    // Office asks for the event interface itself; a sink that has only IDispatch is refused.
    const HRESULT found =
        sink->QueryInterface(DIID__CommandBarButtonEvents, reinterpret_cast<void**>(&events));
    const HRESULT result = SUCCEEDED(found) ? S_OK : CONNECT_E_CANNOTCONNECT;
    if (SUCCEEDED(result))
    {
        *cookie = m_nextCookie++;
        m_sinks.emplace(*cookie, events);
    }
    m_trace.Call(kAddIn, kOutlook, L"CommandBarButton.Advise(_CommandBarButtonEvents)", result, 0);
    return result;
}

STDMETHODIMP CButtonEvents::Unadvise(DWORD cookie)
{
    const auto found = m_sinks.find(cookie);
    const HRESULT result = found != m_sinks.end() ? S_OK : CONNECT_E_NOCONNECTION;
    m_trace.Call(kAddIn, kOutlook, L"CommandBarButton.Unadvise(_CommandBarButtonEvents)", result, 0);
    if (found != m_sinks.end())
    {
        IDispatch* sink = found->second;
        m_sinks.erase(found);
        sink->Release();
    }
    return result;
}

STDMETHODIMP CButtonEvents::EnumConnections(IEnumConnections** connections)
{
    if (connections != nullptr)
    {
        *connections = nullptr;
    }
    return E_NOTIMPL;
}

} // namespace orva::host
