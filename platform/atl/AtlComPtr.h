// Interface pointers that count their references (part of <atlcomcli.h>, which says what differs).
#pragma once

#include "platform/atl/atlexcept.h"

#include <ocidl.h>
#include <oleauto.h>

namespace ATL
{

/// Copies an interface pointer into *pp with a reference of its own, releasing what stood there. Returns lp.
IUnknown* AtlComPtrAssign(IUnknown** pp, IUnknown* lp);

/// As AtlComPtrAssign, with lp's interface riid; *pp becomes null when lp has no such interface.
IUnknown* AtlComQIPtrAssign(IUnknown** pp, IUnknown* lp, REFIID riid);

/// Subscribes pUnk to the connection point iid of pUnkCP. pdw receives the cookie for AtlUnadvise.
HRESULT AtlAdvise(IUnknown* pUnkCP, IUnknown* pUnk, const IID& iid, LPDWORD pdw);

/// Ends the subscription pdw of AtlAdvise.
HRESULT AtlUnadvise(IUnknown* pUnkCP, const IID& iid, DWORD dw);

/// What CComPtr and CComQIPtr share.
template <class T> class CComPtrBase
{
public:
    typedef T _PtrClass;

    ~CComPtrBase()
    {
        if (p)
        {
            p->Release();
        }
    }

    operator T*() const noexcept { return p; }
    T& operator*() const
    {
        ATLENSURE(p != nullptr);
        return *p;
    }
    /// For out-parameters: the pointer must be empty, or what it holds would leak.
    T** operator&() noexcept
    {
        ATLASSERT(p == nullptr);
        return &p;
    }
    T* operator->() const noexcept
    {
        ATLASSERT(p != nullptr);
        return p;
    }
    bool operator!() const noexcept { return p == nullptr; }
    bool operator<(T* pT) const noexcept { return p < pT; }
    bool operator==(T* pT) const noexcept { return p == pT; }
    bool operator!=(T* pT) const noexcept { return p != pT; }

    void Release() noexcept
    {
        T* pTemp = p;
        if (pTemp)
        {
            p = nullptr;
            pTemp->Release();
        }
    }

    /// Whether both pointers lead to the same COM object.
    bool IsEqualObject(IUnknown* pOther) const noexcept
    {
        if (p == nullptr || pOther == nullptr)
        {
            return p == nullptr && pOther == nullptr;
        }
        IUnknown* own = nullptr;
        IUnknown* other = nullptr;
        p->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(&own));
        pOther->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(&other));
        const bool same = own == other;
        if (own)
        {
            own->Release();
        }
        if (other)
        {
            other->Release();
        }
        return same;
    }

    /// Takes over the caller's reference.
    void Attach(T* p2) noexcept
    {
        if (p)
        {
            p->Release();
        }
        p = p2;
    }
    /// Hands the reference to the caller.
    T* Detach() noexcept
    {
        T* pt = p;
        p = nullptr;
        return pt;
    }
    /// Gives *ppT a reference of its own. E_POINTER when ppT is null.
    HRESULT CopyTo(T** ppT) const noexcept
    {
        if (ppT == nullptr)
        {
            return E_POINTER;
        }
        *ppT = p;
        if (p)
        {
            p->AddRef();
        }
        return S_OK;
    }

    HRESULT Advise(IUnknown* pUnk, const IID& iid, LPDWORD pdw) { return AtlAdvise(p, pUnk, iid, pdw); }

    HRESULT CoCreateInstance(REFCLSID rclsid, LPUNKNOWN pUnkOuter = nullptr, DWORD dwClsContext = CLSCTX_ALL)
    {
        ATLASSERT(p == nullptr);
        return ::CoCreateInstance(rclsid, pUnkOuter, dwClsContext, __uuidof(T), reinterpret_cast<void**>(&p));
    }
    HRESULT CoCreateInstance(LPCOLESTR szProgID, LPUNKNOWN pUnkOuter = nullptr,
                             DWORD dwClsContext = CLSCTX_ALL)
    {
        CLSID clsid;
        const HRESULT hr = CLSIDFromProgID(szProgID, &clsid);
        return FAILED(hr) ? hr : CoCreateInstance(clsid, pUnkOuter, dwClsContext);
    }

    template <class Q> HRESULT QueryInterface(Q** pp) const
    {
        ATLASSERT(pp != nullptr);
        return p->QueryInterface(__uuidof(Q), reinterpret_cast<void**>(pp));
    }

    T* p;

protected:
    CComPtrBase() noexcept : p(nullptr) {}
    explicit CComPtrBase(T* lp) noexcept : p(lp)
    {
        if (p)
        {
            p->AddRef();
        }
    }

    void Swap(CComPtrBase& other) noexcept
    {
        T* pTemp = p;
        p = other.p;
        other.p = pTemp;
    }
    /// Adds the new reference before the old one goes, so that assigning an object its own part is safe.
    T* Assign(T* lp) noexcept
    {
        if (lp)
        {
            lp->AddRef();
        }
        Attach(lp);
        return lp;
    }
    T* AssignQuery(IUnknown* lp, REFIID riid) noexcept
    {
        T* pNew = nullptr;
        if (lp && FAILED(lp->QueryInterface(riid, reinterpret_cast<void**>(&pNew))))
        {
            pNew = nullptr;
        }
        Attach(pNew);
        return pNew;
    }

private:
    CComPtrBase(const CComPtrBase&) = delete;
    CComPtrBase& operator=(const CComPtrBase&) = delete;
};

/// A counted pointer to one interface.
template <class T> class CComPtr : public CComPtrBase<T>
{
public:
    CComPtr() noexcept = default;
    CComPtr(T* lp) noexcept : CComPtrBase<T>(lp) {}
    CComPtr(const CComPtr& lp) noexcept : CComPtrBase<T>(lp.p) {}
    CComPtr(CComPtr&& lp) noexcept { CComPtr::Swap(lp); }

    T* operator=(T* lp) noexcept { return CComPtr::Assign(lp); }
    T* operator=(const CComPtr& lp) noexcept { return this == &lp ? this->p : CComPtr::Assign(lp.p); }
    T* operator=(CComPtr&& lp) noexcept
    {
        CComPtr(static_cast<CComPtr&&>(lp)).Swap(*this);
        return this->p;
    }
    /// Asks another interface of an object; null when it has none of this type.
    template <class Q> T* operator=(const CComPtr<Q>& lp) noexcept
    {
        return CComPtr::AssignQuery(lp.p, __uuidof(T));
    }
};

/// A counted IDispatch with calls by name. The locale of every call is the user's default.
template <> class CComPtr<IDispatch> : public CComPtrBase<IDispatch>
{
public:
    CComPtr() noexcept = default;
    CComPtr(IDispatch* lp) noexcept : CComPtrBase<IDispatch>(lp) {}
    CComPtr(const CComPtr& lp) noexcept : CComPtrBase<IDispatch>(lp.p) {}
    CComPtr(CComPtr&& lp) noexcept { Swap(lp); }

    IDispatch* operator=(IDispatch* lp) noexcept { return Assign(lp); }
    IDispatch* operator=(const CComPtr& lp) noexcept { return this == &lp ? p : Assign(lp.p); }
    IDispatch* operator=(CComPtr&& lp) noexcept
    {
        CComPtr(static_cast<CComPtr&&>(lp)).Swap(*this);
        return p;
    }

    /// Reads a property; the caller clears *pVar. E_POINTER without an object.
    HRESULT GetPropertyByName(LPCOLESTR lpsz, VARIANT* pVar);
    HRESULT GetProperty(DISPID dwDispID, VARIANT* pVar);
    static HRESULT GetProperty(IDispatch* pDisp, DISPID dwDispID, VARIANT* pVar);

    /// Writes a property; an object is put by reference first, by value when the object refuses that.
    HRESULT PutPropertyByName(LPCOLESTR lpsz, VARIANT* pVar);
    HRESULT PutProperty(DISPID dwDispID, VARIANT* pVar);
    static HRESULT PutProperty(IDispatch* pDisp, DISPID dwDispID, VARIANT* pVar);

    HRESULT GetIDOfName(LPCOLESTR lpsz, DISPID* pdispid);

    /// Calls a method. Invoke1 and Invoke2 take their arguments in the order of the method's declaration,
    /// InvokeN in the reverse order, as DISPPARAMS wants them.
    HRESULT Invoke0(DISPID dispid, VARIANT* pvarRet = nullptr);
    HRESULT Invoke0(LPCOLESTR lpszName, VARIANT* pvarRet = nullptr);
    HRESULT Invoke1(DISPID dispid, VARIANT* pvarParam1, VARIANT* pvarRet = nullptr);
    HRESULT Invoke1(LPCOLESTR lpszName, VARIANT* pvarParam1, VARIANT* pvarRet = nullptr);
    HRESULT Invoke2(DISPID dispid, VARIANT* pvarParam1, VARIANT* pvarParam2, VARIANT* pvarRet = nullptr);
    HRESULT Invoke2(LPCOLESTR lpszName, VARIANT* pvarParam1, VARIANT* pvarParam2, VARIANT* pvarRet = nullptr);
    HRESULT InvokeN(DISPID dispid, VARIANT* pvarParams, int nParams, VARIANT* pvarRet = nullptr);
    HRESULT InvokeN(LPCOLESTR lpszName, VARIANT* pvarParams, int nParams, VARIANT* pvarRet = nullptr);
};

/// A counted pointer that asks every object assigned to it for its own interface.
template <class T, const IID* piid = &__uuidof(T)> class CComQIPtr : public CComPtr<T>
{
public:
    CComQIPtr() noexcept = default;
    CComQIPtr(T* lp) noexcept : CComPtr<T>(lp) {}
    CComQIPtr(const CComQIPtr& lp) noexcept : CComPtr<T>(lp.p) {}
    CComQIPtr(IUnknown* lp) noexcept { CComQIPtr::AssignQuery(lp, *piid); }

    T* operator=(T* lp) noexcept { return CComQIPtr::Assign(lp); }
    T* operator=(const CComQIPtr& lp) noexcept { return this == &lp ? this->p : CComQIPtr::Assign(lp.p); }
    T* operator=(IUnknown* lp) noexcept { return CComQIPtr::AssignQuery(lp, *piid); }
};

/// CComQIPtr<IUnknown> would have two constructors of one signature; this one always finds the identity.
template <> class CComQIPtr<IUnknown> : public CComPtr<IUnknown>
{
public:
    CComQIPtr() noexcept = default;
    CComQIPtr(IUnknown* lp) noexcept { AssignQuery(lp, IID_IUnknown); }
    CComQIPtr(const CComQIPtr& lp) noexcept : CComPtr<IUnknown>(lp.p) {}

    IUnknown* operator=(IUnknown* lp) noexcept { return AssignQuery(lp, IID_IUnknown); }
    IUnknown* operator=(const CComQIPtr& lp) noexcept { return this == &lp ? p : Assign(lp.p); }
};

typedef CComQIPtr<IDispatch> CComDispatchDriver;

} // namespace ATL
