// Class objects and what a creatable class declares about itself (part of <atlcom.h>).
#pragma once

#include "platform/atl/AtlComObject.h"

namespace ATL
{

/// The class object that the module keeps: only references beyond the module's own are locks on the module.
template <class Base> class CComObjectCached : public Base
{
public:
    typedef Base _BaseClass;

    CComObjectCached(void* = nullptr) {}
    virtual ~CComObjectCached()
    {
        this->m_dwRef = kReferencesOfDestroyedObject;
        this->FinalRelease();
    }

    STDMETHOD_(ULONG, AddRef)() override
    {
        const ULONG references = this->InternalAddRef();
        if (references == 2)
        {
            _pAtlModule->Lock();
        }
        return references;
    }
    STDMETHOD_(ULONG, Release)() override
    {
        const ULONG references = this->InternalRelease();
        if (references == 0)
        {
            delete this;
        }
        else if (references == 1)
        {
            _pAtlModule->Unlock();
        }
        return references;
    }
    STDMETHOD(QueryInterface)(REFIID iid, void** ppvObject) override
    {
        return this->_InternalQueryInterface(iid, ppvObject);
    }
};

/// The class object of every class: IClassFactory over the class's creator function.
class CComClassFactory : public IClassFactory, public CComObjectRootEx<CComGlobalsThreadModel>
{
public:
    BEGIN_COM_MAP(CComClassFactory)
        COM_INTERFACE_ENTRY(IClassFactory)
    END_COM_MAP()

    /// Takes the creator function that the object map hands to the class object's own creator.
    void SetVoid(void* pv) noexcept
    {
        m_pfnCreateInstance = reinterpret_cast<_ATL_CREATORFUNC*>(reinterpret_cast<INT_PTR>(pv));
    }

    /// E_POINTER when ppvObj is null; CLASS_E_NOAGGREGATION when an outer object asks for anything but
    /// IUnknown.
    STDMETHOD(CreateInstance)(LPUNKNOWN pUnkOuter, REFIID riid, void** ppvObj) override;

    /// Each TRUE is a lock on the module that one FALSE takes back.
    STDMETHOD(LockServer)(BOOL fLock) override;

private:
    _ATL_CREATORFUNC* m_pfnCreateInstance = nullptr;
};

/// How the objects of a class are made: alone or aggregated.
template <class T>
using CComAggregatableCreator = CComCreator2<CComCreator<CComObject<T>>, CComCreator<CComAggObject<T>>>;
template <class Factory> using CComClassFactoryCreator = CComCreator<CComObjectCached<Factory>>;

/// The base of every creatable class: class object and class id.
template <class T, const CLSID* pclsid = &CLSID_NULL> class CComCoClass
{
public:
    typedef CComClassFactoryCreator<CComClassFactory> _ClassFactoryCreatorClass;
    typedef CComAggregatableCreator<T> _CreatorClass;

    static const CLSID& WINAPI GetObjectCLSID() { return *pclsid; }
};

} // namespace ATL

// The registration script of the class: resource x of type "REGISTRY".
#define DECLARE_REGISTRY_RESOURCEID(x)                                                                       \
    static HRESULT WINAPI UpdateRegistry(BOOL bRegister) noexcept                                            \
    {                                                                                                        \
        return ATL::_pAtlModule->UpdateRegistryFromResource((x), bRegister);                                 \
    }

// At namespace scope, without a semicolon: makes className creatable under clsid.
#define OBJECT_ENTRY_AUTO(clsid, className)                                                                  \
    static ATL::_ATL_OBJMAP_ENTRY_EX __objMap_##className = {                                                \
        &(clsid),                                                                                            \
        className::UpdateRegistry,                                                                           \
        className::_ClassFactoryCreatorClass::CreateInstance,                                                \
        className::_CreatorClass::CreateInstance,                                                            \
        nullptr,                                                                                             \
        nullptr};                                                                                            \
    static const ATL::CAtlObjectEntryLink __objMapLink_##className(__objMap_##className);
