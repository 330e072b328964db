// An add-in for the tests of the stand-in Outlook, with faults on request.
//
// It reads from the environment: ORVA_FAKE_ADDIN_MARKUP names a file whose UTF-16 text is its custom UI;
// ORVA_FAKE_ADDIN_FAULT is "fail" or "throw" or "crash" (in OnConnection), "box" (shows a message box when
// its command or button is used) or "last" (its command is not temporary). Below version 14 it adds a
// command to the last menu.
#include "host/LateBound.h"

#include <AddInDesignerObjects.h>
#include <Office.h>
#include <OfficeObjects.h>

#include <olectl.h>

#include <algorithm>
#include <cwchar>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace
{

using Microsoft::WRL::ComPtr;
using namespace orva::test;

// {5C0F3E5E-3B7B-4C64-8E4C-6A0B7C1D2E3F}
constexpr CLSID kClassId = {0x5C0F3E5E, 0x3B7B, 0x4C64, {0x8E, 0x4C, 0x6A, 0x0B, 0x7C, 0x1D, 0x2E, 0x3F}};

constexpr DISPID kClick = 1;
constexpr DISPID kGetPicture = 101;
constexpr DISPID kPress = 102;
constexpr int kPictureSize = 36;

LONG g_objects = 0;

std::wstring Environment(const wchar_t* name)
{
    wchar_t value[MAX_PATH] = L"";
    GetEnvironmentVariableW(name, value, MAX_PATH);
    return value;
}

bool HasFault(const wchar_t* fault)
{
    return Environment(L"ORVA_FAKE_ADDIN_FAULT") == fault;
}

void ShowBox()
{
    MessageBoxW(FindWindowW(L"OrvaOutlookHost", nullptr), L"Used.", L"Fake add-in", MB_OK);
}

// Half red, half transparent.
HRESULT MakePicture(IDispatch** picture)
{
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(info.bmiHeader);
    info.bmiHeader.biWidth = kPictureSize;
    info.bmiHeader.biHeight = kPictureSize;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    void* bits = nullptr;
    const HBITMAP bitmap = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    std::fill_n(static_cast<DWORD*>(bits), kPictureSize * kPictureSize / 2, 0xFFFF0000);
    PICTDESC description{};
    description.cbSizeofstruct = sizeof(description);
    description.picType = PICTYPE_BITMAP;
    description.bmp.hbitmap = bitmap;
    return OleCreatePictureIndirect(&description, IID_IDispatch, TRUE, reinterpret_cast<void**>(picture));
}

class CFakeAddIn : public _IDTExtensibility2, public IRibbonExtensibility
{
public:
    CFakeAddIn() { InterlockedIncrement(&g_objects); }
    virtual ~CFakeAddIn() { InterlockedDecrement(&g_objects); }

    STDMETHODIMP QueryInterface(REFIID iid, void** object) override
    {
        *object = nullptr;
        // The same Invoke implements the callbacks and the click.
        if (IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IDispatch) ||
            IsEqualIID(iid, IID__IDTExtensibility2) || IsEqualIID(iid, DIID__CommandBarButtonEvents))
        {
            *object = static_cast<_IDTExtensibility2*>(this);
        }
        else if (IsEqualIID(iid, IID_IRibbonExtensibility))
        {
            *object = static_cast<IRibbonExtensibility*>(this);
        }
        else
        {
            return E_NOINTERFACE;
        }
        AddRef();
        return S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return static_cast<ULONG>(InterlockedIncrement(&m_references)); }
    STDMETHODIMP_(ULONG) Release() override
    {
        const LONG left = InterlockedDecrement(&m_references);
        if (left == 0)
        {
            delete this;
        }
        return static_cast<ULONG>(left);
    }

    STDMETHODIMP GetTypeInfoCount(UINT* count) override
    {
        *count = 0;
        return S_OK;
    }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID, DISPID* ids) override
    {
        if (wcscmp(names[0], L"GetPicture") == 0)
        {
            *ids = kGetPicture;
        }
        else if (wcscmp(names[0], L"Press") == 0)
        {
            *ids = kPress;
        }
        else
        {
            return DISP_E_UNKNOWNNAME;
        }
        return S_OK;
    }
    STDMETHODIMP Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* parameters, VARIANT* result, EXCEPINFO*,
                        UINT*) override
    {
        switch (id)
        {
        case kClick:
            return OnClick(*parameters);
        case kGetPicture:
            result->vt = VT_DISPATCH;
            return MakePicture(&result->pdispVal);
        case kPress:
            return OnPress(*parameters);
        default:
            return DISP_E_MEMBERNOTFOUND;
        }
    }

    STDMETHODIMP OnConnection(IDispatch* application, ext_ConnectMode, IDispatch*, SAFEARRAY**) override
    {
        if (HasFault(L"fail"))
        {
            return E_FAIL;
        }
        if (HasFault(L"throw"))
        {
            throw std::runtime_error("as the test asked");
        }
        if (HasFault(L"crash"))
        {
            RaiseException(EXCEPTION_ACCESS_VIOLATION, EXCEPTION_NONCONTINUABLE, 0, nullptr);
        }
        _variant_t version;
        GetByName(application, L"Version", version);
        const ComPtr<IDispatch> explorer = ObjectByName(application, L"ActiveExplorer", DISPATCH_METHOD);
        if (explorer && _wtoi(version.bstrVal) < 14)
        {
            AddCommand(explorer.Get());
        }
        return S_OK;
    }
    STDMETHODIMP OnDisconnection(ext_DisconnectMode, SAFEARRAY**) override
    {
        if (m_point)
        {
            m_point->Unadvise(m_cookie);
        }
        m_point.Reset();
        return S_OK;
    }
    STDMETHODIMP OnAddInsUpdate(SAFEARRAY**) override { return S_OK; }
    STDMETHODIMP OnStartupComplete(SAFEARRAY**) override { return S_OK; }
    STDMETHODIMP OnBeginShutdown(SAFEARRAY**) override { return S_OK; }

    STDMETHODIMP GetCustomUI(BSTR, BSTR* text) override
    {
        std::ifstream file(Environment(L"ORVA_FAKE_ADDIN_MARKUP").c_str(), std::ios::binary);
        const std::string markup(std::istreambuf_iterator<char>(file), {});
        *text = SysAllocStringByteLen(markup.data(), static_cast<UINT>(markup.size()));
        return S_OK;
    }

private:
    void AddCommand(IDispatch* explorer)
    {
        const ComPtr<IDispatch> bars = ObjectByName(explorer, L"CommandBars");
        const ComPtr<IDispatch> bar = ObjectByName(bars.Get(), L"ActiveMenuBar");
        const ComPtr<IDispatch> menus = ObjectByName(bar.Get(), L"Controls");
        _variant_t count;
        _variant_t menu;
        if (!menus || FAILED(GetByName(menus.Get(), L"Count", count)) ||
            FAILED(CallByName(menus.Get(), L"Item", DISPATCH_PROPERTYGET, {count}, menu)))
        {
            return;
        }
        const ComPtr<IDispatch> controls = ObjectByName(menu.pdispVal, L"Controls");
        _variant_t button;
        if (!controls || FAILED(CallByName(controls.Get(), L"Add", DISPATCH_METHOD,
                                           {_variant_t(1L), Missing(), Missing(), Missing(),
                                            HasFault(L"last") ? Missing() : _variant_t(short{-1})},
                                           button)))
        {
            return;
        }
        PutByName(button.pdispVal, L"Caption", L"Fake command");
        ComPtr<IConnectionPointContainer> container;
        button.pdispVal->QueryInterface(IID_IConnectionPointContainer,
                                        reinterpret_cast<void**>(container.ReleaseAndGetAddressOf()));
        if (container && SUCCEEDED(container->FindConnectionPoint(DIID__CommandBarButtonEvents, &m_point)))
        {
            m_point->Advise(static_cast<_IDTExtensibility2*>(this), &m_cookie);
        }
    }

    HRESULT OnClick(const DISPPARAMS& parameters)
    {
        if (parameters.cArgs != 2 || parameters.rgvarg[1].vt != VT_DISPATCH ||
            parameters.rgvarg[0].vt != (VT_BYREF | VT_BOOL))
        {
            return DISP_E_TYPEMISMATCH;
        }
        if (HasFault(L"box"))
        {
            ShowBox();
        }
        return S_OK;
    }

    HRESULT OnPress(const DISPPARAMS& parameters)
    {
        ComPtr<IRibbonControl> control;
        if (parameters.cArgs != 1 || parameters.rgvarg[0].vt != VT_DISPATCH ||
            FAILED(parameters.rgvarg[0].pdispVal->QueryInterface(
                IID_IRibbonControl, reinterpret_cast<void**>(control.ReleaseAndGetAddressOf()))))
        {
            return DISP_E_TYPEMISMATCH;
        }
        BSTR id = nullptr;
        control->get_Id(&id);
        SysFreeString(id);
        if (HasFault(L"box"))
        {
            ShowBox();
        }
        return S_OK;
    }

    LONG m_references = 0;
    ComPtr<IConnectionPoint> m_point;
    DWORD m_cookie = 0;
};

class CFactory : public IClassFactory
{
public:
    virtual ~CFactory() = default;
    STDMETHODIMP QueryInterface(REFIID iid, void** object) override
    {
        const bool known = IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IClassFactory);
        *object = known ? this : nullptr;
        return known ? S_OK : E_NOINTERFACE;
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
        const ComPtr<_IDTExtensibility2> addIn = new CFakeAddIn;
        return addIn.CopyTo(iid, object);
    }
    STDMETHODIMP LockServer(BOOL) override { return S_OK; }
};

} // namespace

extern "C" HRESULT STDAPICALLTYPE DllGetClassObject(REFCLSID classId, REFIID iid, void** object)
{
    static CFactory factory;
    return IsEqualCLSID(classId, kClassId) ? factory.QueryInterface(iid, object) : CLASS_E_CLASSNOTAVAILABLE;
}

extern "C" HRESULT STDAPICALLTYPE DllCanUnloadNow()
{
    return g_objects == 0 ? S_OK : S_FALSE;
}
