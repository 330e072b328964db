// Event sinks: objects that receive the events of a dispatch interface (part of <atlcom.h>).
#pragma once

#include "platform/atl/AtlComObject.h"

#include <bit>

namespace ATL
{

// The most parameters an event handler can have.
#define _ATL_MAX_VARTYPES 8

/// The signature of an event handler.
struct _ATL_FUNC_INFO
{
    CALLCONV cc;      // CC_STDCALL
    VARTYPE vtReturn; // VT_EMPTY for a handler without a result
    SHORT nParams;
    VARTYPE pVarTypes[_ATL_MAX_VARTYPES];
};

/// One line of a sink map.
template <class T> struct _ATL_EVENT_ENTRY
{
    UINT nControlID;
    const IID* piid; // null ends the map
    DISPID dispid;
    void (STDMETHODCALLTYPE T::*pfn)();
    _ATL_FUNC_INFO* pInfo;
};

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

/// Calls the handler pfn of the object pThis as info says, with the arguments of pdispparams.
HRESULT AtlInvokeFromFuncInfo(void* pThis, void* pfn, const _ATL_FUNC_INFO& info, DISPPARAMS* pdispparams,
                              VARIANT* pvarResult) noexcept;

/// The code address behind a member pointer of the object pThis; *ppThis receives the object to call it on.
void* AtlResolveMemberPointer(void* pThis, const void* pMemberPointer, void** ppThis) noexcept;

/// The sink for the events of the dispatch interface *pdiid. Handlers are found in the sink map of T, which
/// describes their signatures, so no type library is needed.
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
    /// Calls the handler of the event; S_OK for an event without one.
    STDMETHOD(Invoke)
    (DISPID dispidMember, REFIID /*riid*/, LCID /*lcid*/, WORD /*wFlags*/, DISPPARAMS* pdispparams,
     VARIANT* pvarResult, EXCEPINFO* /*pexcepinfo*/, UINT* /*puArgErr*/)
    {
        for (const _ATL_EVENT_ENTRY<T>* entry = T::_GetSinkMap(); entry->piid != nullptr; ++entry)
        {
            if (entry->nControlID != nID || entry->dispid != dispidMember ||
                !IsEqualIID(*entry->piid, *pdiid))
            {
                continue;
            }
            void* pObject = nullptr;
            void* pfn = AtlResolveMemberPointer(static_cast<T*>(this), &entry->pfn, &pObject);
            return AtlInvokeFromFuncInfo(pObject, pfn, *entry->pInfo, pdispparams, pvarResult);
        }
        return S_OK;
    }

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

#define BEGIN_SINK_MAP(_class)                                                                               \
public:                                                                                                      \
    typedef _class _GetSinkMapFinder;                                                                        \
    static const ATL::_ATL_EVENT_ENTRY<_class>* _GetSinkMap() noexcept                                       \
    {                                                                                                        \
        using _atl_event_classtype [[maybe_unused]] = _class;                                                \
        static const ATL::_ATL_EVENT_ENTRY<_class> map[] = {

// Event dispid of interface iid, raised by the source of the sink id, is handled by func as info says.
#define SINK_ENTRY_INFO(id, iid, dispid, func, info)                                                         \
    {id, &(iid), dispid, std::bit_cast<void (STDMETHODCALLTYPE _atl_event_classtype::*)()>(func), info},

#define END_SINK_MAP()                                                                                       \
    {                                                                                                        \
        0, nullptr, 0, nullptr, nullptr                                                                      \
    }                                                                                                        \
    }                                                                                                        \
    ;                                                                                                        \
    return map;                                                                                              \
    }
