// The connection point through which a button raises Click.
#pragma once

#include "host/Trace.h"

#include <windows.h>
#include <ocidl.h>

#include <map>

namespace orva::host
{

/// Connection point of _CommandBarButtonEvents. Its reference count is its container's.
class CButtonEvents : public IConnectionPoint
{
public:
    CButtonEvents(CTrace& trace, IConnectionPointContainer& container)
        : m_trace(trace), m_container(container)
    {
    }
    virtual ~CButtonEvents();
    CButtonEvents(const CButtonEvents&) = delete;
    CButtonEvents& operator=(const CButtonEvents&) = delete;

    /// FindConnectionPoint of the container: CONNECT_E_NOCONNECTION for any other event interface.
    HRESULT Find(REFIID iid, IConnectionPoint** point);
    /// Calls Click(button, CancelDefault) of each subscriber.
    void Raise(IDispatch* button);

    STDMETHODIMP QueryInterface(REFIID iid, void** object) override;
    STDMETHODIMP_(ULONG) AddRef() override;
    STDMETHODIMP_(ULONG) Release() override;
    STDMETHODIMP GetConnectionInterface(IID* iid) override;
    STDMETHODIMP GetConnectionPointContainer(IConnectionPointContainer** container) override;
    STDMETHODIMP Advise(IUnknown* sink, DWORD* cookie) override;
    STDMETHODIMP Unadvise(DWORD cookie) override;
    STDMETHODIMP EnumConnections(IEnumConnections** connections) override;

private:
    CTrace& m_trace;
    IConnectionPointContainer& m_container;
    std::map<DWORD, IDispatch*> m_sinks;
    DWORD m_nextCookie = 1;
};

} // namespace orva::host
