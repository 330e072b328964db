// IDispatch over a type library (part of <atlcom.h>).
#pragma once

#include "platform/atl/AtlComObject.h"

namespace ATL
{

/// Finds the type information of one interface when it is first needed and keeps it until the module ends. A
/// constant initialiser fills the first four members.
class CComTypeInfoHolder
{
public:
    const GUID* m_pguid;
    /// The library is loaded from the module itself when this is CAtlModule::m_libid's value and both version
    /// numbers are 0xFFFF, else from where it is registered.
    const GUID* m_plibid;
    WORD m_wMajor;
    WORD m_wMinor;
    ITypeInfo* m_pInfo;

    /// The type information with a reference of its own, or why there is none (TYPE_E_LIBNOTREGISTERED, ...).
    /// A failure is not kept: the next call tries again. E_POINTER when ppInfo is null.
    HRESULT GetTI(LCID lcid, ITypeInfo** ppInfo) noexcept;
    HRESULT GetTI(LCID lcid) noexcept;
    HRESULT EnsureTI(LCID lcid) noexcept { return m_pInfo == nullptr ? GetTI(lcid) : S_OK; }

    HRESULT GetTypeInfo(UINT itinfo, LCID lcid, ITypeInfo** pptinfo) noexcept;
    HRESULT GetIDsOfNames(REFIID riid, LPOLESTR* rgszNames, UINT cNames, LCID lcid,
                          DISPID* rgdispid) noexcept;
    HRESULT Invoke(IDispatch* p, DISPID dispidMember, REFIID riid, LCID lcid, WORD wFlags,
                   DISPPARAMS* pdispparams, VARIANT* pvarResult, EXCEPINFO* pexcepinfo,
                   UINT* puArgErr) noexcept;

private:
    static void WINAPI Cleanup(DWORD_PTR dw) noexcept;
};

/// Implements the four methods of IDispatch for the dual interface T by its type information.
template <class T, const IID* piid = &__uuidof(T), const GUID* plibid = &CAtlModule::m_libid, WORD wMajor = 1,
          WORD wMinor = 0, class tihclass = CComTypeInfoHolder>
class ATL_NO_VTABLE IDispatchImpl : public T
{
public:
    typedef tihclass _tihclass;

    STDMETHOD(GetTypeInfoCount)(UINT* pctinfo) override
    {
        if (pctinfo == nullptr)
        {
            return E_POINTER;
        }
        *pctinfo = 1;
        return S_OK;
    }
    STDMETHOD(GetTypeInfo)(UINT itinfo, LCID lcid, ITypeInfo** pptinfo) override
    {
        return _tih.GetTypeInfo(itinfo, lcid, pptinfo);
    }
    STDMETHOD(GetIDsOfNames)
    (REFIID riid, LPOLESTR* rgszNames, UINT cNames, LCID lcid, DISPID* rgdispid) override
    {
        return _tih.GetIDsOfNames(riid, rgszNames, cNames, lcid, rgdispid);
    }
    STDMETHOD(Invoke)
    (DISPID dispidMember, REFIID riid, LCID lcid, WORD wFlags, DISPPARAMS* pdispparams, VARIANT* pvarResult,
     EXCEPINFO* pexcepinfo, UINT* puArgErr) override
    {
        return _tih.Invoke(static_cast<IDispatch*>(this), dispidMember, riid, lcid, wFlags, pdispparams,
                           pvarResult, pexcepinfo, puArgErr);
    }

    IDispatchImpl() = default;

protected:
    static inline constinit _tihclass _tih = {piid, plibid, wMajor, wMinor, nullptr};

    static HRESULT GetTI(LCID lcid, ITypeInfo** ppInfo) { return _tih.GetTI(lcid, ppInfo); }
};

} // namespace ATL
