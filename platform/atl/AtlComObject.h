// Reference counting, interface maps and the classes that complete a COM class (part of <atlcom.h>).
#pragma once

#include "platform/atl/AtlThreadModel.h"
#include "platform/atl/atlbase.h"

#include <climits>
#include <memory>
#include <new>

namespace ATL
{

typedef HRESULT(WINAPI _ATL_CREATORARGFUNC)(void* pv, REFIID riid, LPVOID* ppv, DWORD_PTR dw);

/// One line of an interface map.
struct _ATL_INTMAP_ENTRY
{
    /// The interface; null for an entry that is asked for every interface.
    const IID* piid;
    /// The offset of the interface in the object, or what pFunc gets.
    DWORD_PTR dw;
    /// _ATL_SIMPLEMAPENTRY, or the function that answers. Null ends the map.
    _ATL_CREATORARGFUNC* pFunc;
};

#define _ATL_SIMPLEMAPENTRY (reinterpret_cast<ATL::_ATL_CREATORARGFUNC*>(1))

/// Answers a QueryInterface from an interface map. The first entry is the object's identity.
HRESULT WINAPI AtlInternalQueryInterface(void* pThis, const _ATL_INTMAP_ENTRY* pEntries, REFIID iid,
                                         void** ppvObject);

/// The part of a COM object that does not depend on its threading model.
class CComObjectRootBase
{
public:
    CComObjectRootBase() noexcept : m_dwRef(0) {}

    /// Override these to prepare and to clean up. A failing FinalConstruct ends the creation with its result.
    HRESULT FinalConstruct() { return S_OK; }
    void FinalRelease() {}

    void SetVoid(void* /*pv*/) {}
    /// DECLARE_PROTECT_FINAL_CONSTRUCT replaces these two, for objects that hand themselves out in
    /// FinalConstruct.
    void InternalFinalConstructAddRef() {}
    void InternalFinalConstructRelease() {}

    static HRESULT WINAPI InternalQueryInterface(void* pThis, const _ATL_INTMAP_ENTRY* pEntries, REFIID iid,
                                                 void** ppvObject)
    {
        return AtlInternalQueryInterface(pThis, pEntries, iid, ppvObject);
    }

    ULONG OuterAddRef() { return m_pOuterUnknown->AddRef(); }
    ULONG OuterRelease() { return m_pOuterUnknown->Release(); }
    HRESULT OuterQueryInterface(REFIID iid, void** ppvObject)
    {
        return m_pOuterUnknown->QueryInterface(iid, ppvObject);
    }

    union {
        LONG m_dwRef;              // an object on its own
        IUnknown* m_pOuterUnknown; // the inner part of an aggregate
    };
};

/// The base of every COM class.
template <class ThreadModel> class CComObjectRootEx : public CComObjectRootBase
{
public:
    typedef ThreadModel _ThreadModel;
    typedef typename _ThreadModel::AutoCriticalSection _CritSec;

    ULONG InternalAddRef() { return _ThreadModel::Increment(&m_dwRef); }
    ULONG InternalRelease() { return _ThreadModel::Decrement(&m_dwRef); }
    void Lock() { m_critsec.Lock(); }
    void Unlock() { m_critsec.Unlock(); }

private:
    _CritSec m_critsec;
};

typedef CComObjectRootEx<CComObjectThreadModel> CComObjectRoot;

/// The reference count of an object that is going: a reference taken and given back by its own clean-up must
/// not bring the count to zero a second time.
inline constexpr LONG kReferencesOfDestroyedObject = -(LONG_MAX / 2);

/// Completes a COM class to an object on its own. It is a lock on the module while it lives.
template <class Base> class CComObject : public Base
{
public:
    typedef Base _BaseClass;

    CComObject(void* = nullptr) { _pAtlModule->Lock(); }
    virtual ~CComObject()
    {
        this->m_dwRef = kReferencesOfDestroyedObject;
        this->FinalRelease();
        _pAtlModule->Unlock();
    }

    STDMETHOD_(ULONG, AddRef)() override { return this->InternalAddRef(); }
    STDMETHOD_(ULONG, Release)() override
    {
        const ULONG references = this->InternalRelease();
        if (references == 0)
        {
            // The module must outlive the members' destructors, which run after our own.
            _pAtlModule->Lock();
            delete this;
            _pAtlModule->Unlock();
        }
        return references;
    }
    STDMETHOD(QueryInterface)(REFIID iid, void** ppvObject) override
    {
        return this->_InternalQueryInterface(iid, ppvObject);
    }
};

/// The inner part of an aggregate: its interfaces count and ask through the outer object.
template <class Base> class CComContainedObject : public Base
{
public:
    typedef Base _BaseClass;

    CComContainedObject(void* pv) { this->m_pOuterUnknown = static_cast<IUnknown*>(pv); }
    virtual ~CComContainedObject() = default;

    STDMETHOD_(ULONG, AddRef)() override { return this->OuterAddRef(); }
    STDMETHOD_(ULONG, Release)() override { return this->OuterRelease(); }
    STDMETHOD(QueryInterface)(REFIID iid, void** ppvObject) override
    {
        return this->OuterQueryInterface(iid, ppvObject);
    }
};

/// Completes a COM class to an aggregated object; its own IUnknown is the one that the outer object holds.
template <class contained>
class CComAggObject : public IUnknown,
                      public CComObjectRootEx<typename contained::_ThreadModel::ThreadModelNoCS>
{
public:
    typedef contained _BaseClass;

    CComAggObject(void* pv) : m_contained(pv) { _pAtlModule->Lock(); }
    virtual ~CComAggObject()
    {
        this->m_dwRef = kReferencesOfDestroyedObject;
        FinalRelease();
        _pAtlModule->Unlock();
    }

    /// As DECLARE_PROTECT_FINAL_CONSTRUCT: the contained object may hand out the aggregate while it is made.
    void InternalFinalConstructAddRef() { this->InternalAddRef(); }
    void InternalFinalConstructRelease() { this->InternalRelease(); }

    HRESULT FinalConstruct() { return m_contained.FinalConstruct(); }
    void FinalRelease() { m_contained.FinalRelease(); }

    STDMETHOD_(ULONG, AddRef)() override { return this->InternalAddRef(); }
    STDMETHOD_(ULONG, Release)() override
    {
        const ULONG references = this->InternalRelease();
        if (references == 0)
        {
            _pAtlModule->Lock();
            delete this;
            _pAtlModule->Unlock();
        }
        return references;
    }
    STDMETHOD(QueryInterface)(REFIID iid, void** ppvObject) override
    {
        ATLENSURE_RETURN_HR(ppvObject != nullptr, E_POINTER);
        if (IsEqualIID(iid, IID_IUnknown))
        {
            *ppvObject = static_cast<IUnknown*>(this);
            AddRef();
            return S_OK;
        }
        return m_contained._InternalQueryInterface(iid, ppvObject);
    }

    CComContainedObject<contained> m_contained;
};

/// Makes objects of a completed class; pv is the outer object of an aggregate or null. No exception leaves
/// it.
template <class T1> class CComCreator
{
public:
    static HRESULT WINAPI CreateInstance(void* pv, REFIID riid, LPVOID* ppv) noexcept
    {
        if (ppv == nullptr)
        {
            return E_POINTER;
        }
        *ppv = nullptr;
        T1* p = nullptr;
        const HRESULT hr = CreateUnreferenced(pv, &p);
        if (FAILED(hr))
        {
            return hr;
        }
        const HRESULT hrQuery = p->QueryInterface(riid, ppv);
        if (hrQuery != S_OK)
        {
            delete p;
        }
        return hrQuery;
    }

    /// Makes an object with a reference count of zero.
    static HRESULT CreateUnreferenced(void* pv, T1** pp) noexcept
    {
        *pp = nullptr;
        T1* p = nullptr;
        HRESULT hr = E_OUTOFMEMORY;
        try
        {
            p = new T1(pv);
            p->SetVoid(pv);
            p->InternalFinalConstructAddRef();
            hr = p->FinalConstruct();
            p->InternalFinalConstructRelease();
        }
        catch (const CAtlException& e)
        {
            hr = e.m_hr;
        }
        catch (const std::bad_alloc&)
        {
            hr = E_OUTOFMEMORY;
        }
        catch (...)
        {
            hr = E_UNEXPECTED;
        }
        if (FAILED(hr))
        {
            delete p;
            return hr;
        }
        *pp = p;
        return S_OK;
    }
};

/// Chooses between an object on its own (T1) and an aggregated one (T2).
template <class T1, class T2> class CComCreator2
{
public:
    static HRESULT WINAPI CreateInstance(void* pv, REFIID riid, LPVOID* ppv) noexcept
    {
        return pv == nullptr ? T1::CreateInstance(nullptr, riid, ppv) : T2::CreateInstance(pv, riid, ppv);
    }
};

} // namespace ATL

// The interface map. Its first line must be a plain COM_INTERFACE_ENTRY: it gives the object's identity.
#define BEGIN_COM_MAP(x)                                                                                     \
public:                                                                                                      \
    typedef x _ComMapClass;                                                                                  \
    HRESULT _InternalQueryInterface(REFIID iid, void** ppvObject) noexcept                                   \
    {                                                                                                        \
        return InternalQueryInterface(this, _GetEntries(), iid, ppvObject);                                  \
    }                                                                                                        \
    static const ATL::_ATL_INTMAP_ENTRY* WINAPI _GetEntries() noexcept                                       \
    {                                                                                                        \
        static const ATL::_ATL_INTMAP_ENTRY _entries[] = {

#define COM_INTERFACE_ENTRY(x) {&_ATL_IIDOF(x), offsetofclass(x, _ComMapClass), _ATL_SIMPLEMAPENTRY},

#define COM_INTERFACE_ENTRY_IID(iid, x) {&(iid), offsetofclass(x, _ComMapClass), _ATL_SIMPLEMAPENTRY},

// For an interface x that several bases have: the one that comes with base x2.
#define COM_INTERFACE_ENTRY2(x, x2)                                                                          \
    {&_ATL_IIDOF(x),                                                                                         \
     reinterpret_cast<DWORD_PTR>(static_cast<typename std::add_pointer<x>::type>(                            \
         static_cast<typename std::add_pointer<x2>::type>(reinterpret_cast<_ComMapClass*>(_ATL_PACKING)))) - \
         _ATL_PACKING,                                                                                       \
     _ATL_SIMPLEMAPENTRY},

#define END_COM_MAP()                                                                                        \
    {                                                                                                        \
        nullptr, 0, nullptr                                                                                  \
    }                                                                                                        \
    }                                                                                                        \
    ;                                                                                                        \
    return _entries;                                                                                         \
    }                                                                                                        \
    STDMETHOD_(ULONG, AddRef)() override = 0;                                                                \
    STDMETHOD_(ULONG, Release)() override = 0;                                                               \
    STDMETHOD(QueryInterface)(REFIID, void**) override = 0;

// Keeps an object alive that hands itself out in FinalConstruct.
#define DECLARE_PROTECT_FINAL_CONSTRUCT()                                                                    \
    void InternalFinalConstructAddRef()                                                                      \
    {                                                                                                        \
        InternalAddRef();                                                                                    \
    }                                                                                                        \
    void InternalFinalConstructRelease()                                                                     \
    {                                                                                                        \
        InternalRelease();                                                                                   \
    }
