// Interface pointers that count their references (part of <atlcomcli.h>, which says what differs).
#pragma once

#include "platform/atl/atlexcept.h"

#include <ocidl.h>
#include <oleauto.h>

namespace ATL
{

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

} // namespace ATL
