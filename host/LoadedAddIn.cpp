#include "host/LoadedAddIn.h"

#include "host/FindFunction.h"

#include <Office.h>

#include <comdef.h>

namespace orva::host
{
namespace
{

constexpr wchar_t kMainWindowRibbon[] = L"Microsoft.Outlook.Explorer";

// The `custom` argument of the life-cycle calls: an array without elements, as Office passes it.
class CCustomArguments
{
public:
    CCustomArguments() : m_array(SafeArrayCreateVector(VT_VARIANT, 1, 0)) {}
    ~CCustomArguments()
    {
        if (m_array != nullptr)
        {
            SafeArrayDestroy(m_array);
        }
    }
    CCustomArguments(const CCustomArguments&) = delete;
    CCustomArguments& operator=(const CCustomArguments&) = delete;

    SAFEARRAY** Get() { return &m_array; }

private:
    SAFEARRAY* m_array;
};

// The class of a ProgID. A version-independent ProgID may have only CurVer and no CLSID: Windows follows
// CurVer, Wine 8 does not.
HRESULT FindClass(const std::wstring& progId, CLSID& classId)
{
    const HRESULT result = CLSIDFromProgID(progId.c_str(), &classId);
    if (SUCCEEDED(result))
    {
        return result;
    }
    wchar_t current[MAX_PATH];
    DWORD size = sizeof(current);
    const std::wstring key = progId + L"\\CurVer";
    if (RegGetValueW(HKEY_CLASSES_ROOT, key.c_str(), nullptr, RRF_RT_REG_SZ, nullptr, current, &size) !=
        ERROR_SUCCESS)
    {
        return result;
    }
    return CLSIDFromProgID(current, &classId);
}

} // namespace

CLoadedAddIn::CLoadedAddIn(CTrace& trace, const AddInEntry& entry)
    : m_trace(trace), m_entry(entry), m_instance(new CComAddIn(trace, entry.progId, entry.description))
{
}

CLoadedAddIn::~CLoadedAddIn() = default;

bool CLoadedAddIn::Load()
{
    HRESULT result = m_trace.Run(kOutlook, L"COM", L"CLSIDFromProgID(" + ProgId() + L")",
                                 [&] { return FindClass(ProgId(), m_classId); });
    if (FAILED(result))
    {
        return false;
    }
    result = m_trace.Run(kOutlook, ProgId(), L"CoCreateInstance", [&] {
        return CoCreateInstance(m_classId, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown,
                                reinterpret_cast<void**>(m_object.ReleaseAndGetAddressOf()));
    });
    if (FAILED(result))
    {
        return false;
    }
    ReadModulePath();
    result = m_trace.Run(kOutlook, ProgId(), L"QueryInterface(_IDTExtensibility2)", [&] {
        return m_object->QueryInterface(IID__IDTExtensibility2,
                                        reinterpret_cast<void**>(m_addIn.ReleaseAndGetAddressOf()));
    });
    return SUCCEEDED(result);
}

void CLoadedAddIn::ReadModulePath()
{
    wchar_t classText[40];
    StringFromGUID2(m_classId, classText, static_cast<int>(std::size(classText)));
    const std::wstring key = L"CLSID\\" + std::wstring(classText) + L"\\InprocServer32";
    wchar_t path[MAX_PATH];
    DWORD size = sizeof(path);
    if (RegGetValueW(HKEY_CLASSES_ROOT, key.c_str(), nullptr, RRF_RT_REG_SZ, nullptr, path, &size) ==
        ERROR_SUCCESS)
    {
        m_modulePath = path;
    }
}

bool CLoadedAddIn::Connect(IDispatch* application, ConnectMode mode)
{
    m_instance->SetConnected(true);
    CCustomArguments custom;
    const int value = static_cast<int>(mode);
    const HRESULT result =
        m_trace.Run(kOutlook, ProgId(), L"OnConnection(ConnectMode " + std::to_wstring(value) + L")", [&] {
            return m_addIn->OnConnection(application, static_cast<ext_ConnectMode>(value), m_instance.Get(),
                                         custom.Get());
        });
    m_instance->SetConnected(SUCCEEDED(result));
    return SUCCEEDED(result);
}

std::wstring CLoadedAddIn::GetCustomUi()
{
    Microsoft::WRL::ComPtr<IRibbonExtensibility> ribbon;
    HRESULT result = m_trace.Run(kOutlook, ProgId(), L"QueryInterface(IRibbonExtensibility)", [&] {
        return m_object->QueryInterface(IID_IRibbonExtensibility,
                                        reinterpret_cast<void**>(ribbon.ReleaseAndGetAddressOf()));
    });
    if (FAILED(result))
    {
        return {};
    }
    _bstr_t ribbonId(kMainWindowRibbon);
    BSTR text = nullptr;
    result = m_trace.Run(kOutlook, ProgId(), std::wstring(L"GetCustomUI(") + kMainWindowRibbon + L")",
                         [&] { return ribbon->GetCustomUI(ribbonId, &text); });
    std::wstring markup = SUCCEEDED(result) ? std::wstring(text, SysStringLen(text)) : std::wstring();
    SysFreeString(text);
    m_trace.Event(L"custom UI of " + ProgId() + L": " + std::to_wstring(markup.size()) + L" characters");
    return markup;
}

void CLoadedAddIn::Call(const wchar_t* name, Method method)
{
    CCustomArguments custom;
    m_trace.Run(kOutlook, ProgId(), name, [&] { return (m_addIn.Get()->*method)(custom.Get()); });
}

void CLoadedAddIn::OnAddInsUpdate()
{
    Call(L"OnAddInsUpdate", &_IDTExtensibility2::OnAddInsUpdate);
}

void CLoadedAddIn::OnStartupComplete()
{
    Call(L"OnStartupComplete", &_IDTExtensibility2::OnStartupComplete);
}

void CLoadedAddIn::OnBeginShutdown()
{
    Call(L"OnBeginShutdown", &_IDTExtensibility2::OnBeginShutdown);
}

void CLoadedAddIn::Disconnect()
{
    CCustomArguments custom;
    m_trace.Run(kOutlook, ProgId(), L"OnDisconnection(ext_dm_HostShutdown)",
                [&] { return m_addIn->OnDisconnection(ext_dm_HostShutdown, custom.Get()); });
}

void CLoadedAddIn::Release()
{
    m_instance->Clear();
    m_instance.Reset();
    m_addIn.Reset();
    const ULONG left = m_object.Reset();
    m_trace.Event(L"references to " + ProgId() + L" left: " + std::to_wstring(left));

    const HMODULE module = m_modulePath.empty() ? nullptr : GetModuleHandleW(m_modulePath.c_str());
    if (module == nullptr)
    {
        return;
    }
    const auto canUnloadNow = FindFunction<HRESULT(STDAPICALLTYPE*)()>(module, "DllCanUnloadNow");
    if (canUnloadNow != nullptr)
    {
        m_trace.Run(kOutlook, ProgId(), L"DllCanUnloadNow", [&] { return canUnloadNow(); });
    }
    CoFreeUnusedLibrariesEx(0, 0);
    const bool unloaded = GetModuleHandleW(m_modulePath.c_str()) == nullptr;
    m_trace.Event(ProgId() + (unloaded ? L" unloaded" : L" still loaded"));
}

void CLoadedAddIn::Abandon()
{
    m_instance.Detach();
    m_addIn.Detach();
    m_object.Detach();
}

HRESULT CLoadedAddIn::CallBack(const std::wstring& name, const std::wstring& controlId, IDispatch* control,
                               VARIANT* result)
{
    Microsoft::WRL::ComPtr<IDispatch> dispatch;
    HRESULT hr = m_trace.Run(kOutlook, ProgId(), L"QueryInterface(IDispatch)", [&] {
        return m_object->QueryInterface(IID_IDispatch,
                                        reinterpret_cast<void**>(dispatch.ReleaseAndGetAddressOf()));
    });
    if (FAILED(hr))
    {
        return hr;
    }
    std::wstring text = name;
    LPOLESTR names[] = {text.data()};
    DISPID id = DISPID_UNKNOWN;
    hr = m_trace.Run(kOutlook, ProgId(), L"GetIDsOfNames(" + name + L")",
                     [&] { return dispatch->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id); });
    if (FAILED(hr))
    {
        return hr;
    }

    VARIANT argument;
    VariantInit(&argument);
    argument.vt = VT_DISPATCH;
    argument.pdispVal = control;
    DISPPARAMS parameters{&argument, nullptr, 1, 0};
    return m_trace.Run(kOutlook, ProgId(),
                       L"Invoke " + std::to_wstring(id) + L" " + name + L"(" + controlId + L")", [&] {
                           EXCEPINFO exception{};
                           UINT argumentError = 0;
                           return dispatch->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD,
                                                   &parameters, result, &exception, &argumentError);
                       });
}

} // namespace orva::host
