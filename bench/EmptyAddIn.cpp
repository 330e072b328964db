// An add-in that does nothing: the minimum for Outlook to connect it, with the Win32 API only.
#include <AddInDesignerObjects.h>
#include <OrvaOscAddin.h>

#include <windows.h>

#include <new>

namespace
{

LONG g_inUse = 0;

class CEmptyAddIn final : public _IDTExtensibility2
{
public:
    CEmptyAddIn() { InterlockedIncrement(&g_inUse); }
    CEmptyAddIn(const CEmptyAddIn&) = delete;
    CEmptyAddIn& operator=(const CEmptyAddIn&) = delete;

    STDMETHODIMP QueryInterface(REFIID iid, void** object) override
    {
        const bool isKnown = iid == IID_IUnknown || iid == IID_IDispatch || iid == IID__IDTExtensibility2;
        *object = isKnown ? static_cast<_IDTExtensibility2*>(this) : nullptr;
        if (!isKnown)
        {
            return E_NOINTERFACE;
        }
        AddRef();
        return S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return static_cast<ULONG>(InterlockedIncrement(&m_references)); }
    STDMETHODIMP_(ULONG) Release() override
    {
        const auto left = static_cast<ULONG>(InterlockedDecrement(&m_references));
        if (left == 0)
        {
            delete this;
        }
        return left;
    }

    STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
    STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override
    {
        return E_NOTIMPL;
    }

    STDMETHODIMP OnConnection(IDispatch*, ext_ConnectMode, IDispatch*, SAFEARRAY**) override { return S_OK; }
    STDMETHODIMP OnDisconnection(ext_DisconnectMode, SAFEARRAY**) override { return S_OK; }
    STDMETHODIMP OnAddInsUpdate(SAFEARRAY**) override { return S_OK; }
    STDMETHODIMP OnStartupComplete(SAFEARRAY**) override { return S_OK; }
    STDMETHODIMP OnBeginShutdown(SAFEARRAY**) override { return S_OK; }

private:
    ~CEmptyAddIn() { InterlockedDecrement(&g_inUse); }

    LONG m_references = 1;
};

// Lives as long as the DLL and is not counted.
class CEmptyClass final : public IClassFactory
{
public:
    STDMETHODIMP QueryInterface(REFIID iid, void** object) override
    {
        const bool isKnown = iid == IID_IUnknown || iid == IID_IClassFactory;
        *object = isKnown ? this : nullptr;
        return isKnown ? S_OK : E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return 2; }
    STDMETHODIMP_(ULONG) Release() override { return 1; }

    STDMETHODIMP CreateInstance(IUnknown* outer, REFIID iid, void** object) override
    {
        *object = nullptr;
        if (outer != nullptr)
        {
            return CLASS_E_NOAGGREGATION;
        }
        auto* const addIn = new (std::nothrow) CEmptyAddIn;
        if (addIn == nullptr)
        {
            return E_OUTOFMEMORY;
        }
        const HRESULT hr = addIn->QueryInterface(iid, object);
        addIn->Release();
        return hr;
    }
    STDMETHODIMP LockServer(BOOL lock) override
    {
        lock ? InterlockedIncrement(&g_inUse) : InterlockedDecrement(&g_inUse);
        return S_OK;
    }
};

CEmptyClass g_class;

} // namespace

// Has the product's class id, so that a host can treat both alike.
STDAPI DllGetClassObject(REFCLSID classId, REFIID iid, void** object)
{
    *object = nullptr;
    return classId == __uuidof(Connect) ? g_class.QueryInterface(iid, object) : CLASS_E_CLASSNOTAVAILABLE;
}

STDAPI DllCanUnloadNow()
{
    return g_inUse == 0 ? S_OK : S_FALSE;
}
