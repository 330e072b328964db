// Event sinks: objects that receive the events of a dispatch interface (part of <atlcom.h>).
#pragma once

#include "platform/atl/AtlComObject.h"

namespace ATL
{

/// The start of every event sink's virtual table, and its subscription. The sink is no IDispatch for C++, so
/// that a class can have IDispatch interfaces of its own beside it, but its table is laid out as one.
class ATL_NO_VTABLE _IDispEvent
{
public:
    STDMETHOD(_LocDEQueryInterface)(REFIID riid, void** ppvObject) = 0;
    STDMETHOD_(ULONG, AddRef)() = 0;
    STDMETHOD_(ULONG, Release)() = 0;

    /// Subscribes to the events piid of pUnk. Throws CAtlException(E_FAIL) when there is a subscription
    /// already.
    HRESULT DispEventAdvise(IUnknown* pUnk, const IID* piid);
    /// Ends the subscription. CONNECT_E_NOCONNECTION when there is none.
    HRESULT DispEventUnadvise(IUnknown* pUnk, const IID* piid);

    /// The subscription, or kNoEventCookie.
    DWORD m_dwEventCookie = kNoEventCookie;

    static constexpr DWORD kNoEventCookie = 0xFEFEFEFE;
};

/// Tells the sinks of one class apart.
template <UINT nID, const IID* piid> class ATL_NO_VTABLE _IDispEventLocator : public _IDispEvent
{
};

/// The sink for the events of the dispatch interface *pdiid. T takes them in its own Invoke.
template <UINT nID, class T, const IID* pdiid>
class ATL_NO_VTABLE IDispEventSimpleImpl : public _IDispEventLocator<nID, pdiid>
{
public:
    STDMETHOD(_LocDEQueryInterface)(REFIID riid, void** ppvObject) override
    {
        if (ppvObject == nullptr)
        {
            return E_POINTER;
        }
        *ppvObject = nullptr;
        if (!IsEqualIID(riid, *pdiid) && !IsEqualIID(riid, IID_IDispatch) && !IsEqualIID(riid, IID_IUnknown))
        {
            return E_NOINTERFACE;
        }
        *ppvObject = this;
        AddRef();
        return S_OK;
    }
    /// A class that is no COM object is not counted; CComObject overrides both.
    STDMETHOD_(ULONG, AddRef)() override { return 1; }
    STDMETHOD_(ULONG, Release)() override { return 1; }

    STDMETHOD(GetTypeInfoCount)(UINT* /*pctinfo*/) { return E_NOTIMPL; }
    STDMETHOD(GetTypeInfo)(UINT /*itinfo*/, LCID /*lcid*/, ITypeInfo** /*pptinfo*/) { return E_NOTIMPL; }
    STDMETHOD(GetIDsOfNames)
    (REFIID /*riid*/, LPOLESTR* /*rgszNames*/, UINT /*cNames*/, LCID /*lcid*/, DISPID* /*rgdispid*/)
    {
        return E_NOTIMPL;
    }
    STDMETHOD(Invoke)
    (DISPID dispidMember, REFIID riid, LCID lcid, WORD wFlags, DISPPARAMS* pdispparams, VARIANT* pvarResult,
     EXCEPINFO* pexcepinfo, UINT* puArgErr) = 0;

    HRESULT DispEventAdvise(IUnknown* pUnk, const IID* piid = pdiid)
    {
        return _IDispEvent::DispEventAdvise(pUnk, piid);
    }
    HRESULT DispEventUnadvise(IUnknown* pUnk, const IID* piid = pdiid)
    {
        return _IDispEvent::DispEventUnadvise(pUnk, piid);
    }
};

} // namespace ATL

// A sink map has no entries here.
#define BEGIN_SINK_MAP(_class)
#define END_SINK_MAP()
