#include "addin/Connect.h"

#include "addin/LateBinding.h"
#include "support/DebugLog.h"
#include "support/DisabledWindow.h"
#include "support/ExceptionGuard.h"
#include "ui/AboutDlg.h"
#include "ui/LocalizedResources.h"
#include "update/UpdateCheck.h"

const IID IID_IConnect = {0x3C3B6E0B, 0x6A0F, 0x4C0B, {0x9C, 0x0E, 0x5D, 0x2D, 0x1F, 0x0B, 0x7A, 0x41}};

OBJECT_ENTRY_AUTO(CLSID_Connect, CConnect)

namespace
{

using ExtensibilityDispatch =
    IDispatchImpl<_IDTExtensibility2, &IID__IDTExtensibility2, &LIBID_AddInDesignerObjects, 1, 0>;
using RibbonCallbackDispatch =
    IDispatchImpl<IRibbonCallback, &IID_IRibbonCallback, &LIBID_OrvaOscAddinLib, 1, 0>;

constexpr char kOnConnection[] = "CConnect::OnConnection";

// The range of the ribbon callbacks' dispatch ids; the end is not part of it.
constexpr DISPID kFirstRibbonCallback = 42000;
constexpr DISPID kRibbonCallbacksEnd = 42010;

// The Click event of _CommandBarButtonEvents.
constexpr DISPID kClick = 1;

// The first Office with a Backstage view; earlier ones get the menu command.
constexpr int kFirstBackstageOffice = 14;

void LogConnectMode(int mode)
{
    switch (mode)
    {
    case ext_cm_AfterStartup:
        LogMessage(kOnConnection, "ext_cm_AfterStartup");
        break;
    case ext_cm_Startup:
        LogMessage(kOnConnection, "ext_cm_Startup");
        break;
    case ext_cm_External:
        LogMessage(kOnConnection, "ext_cm_External");
        break;
    case ext_cm_CommandLine:
        LogMessage(kOnConnection, "ext_cm_CommandLine");
        break;
    default:
        break;
    }
}

// The leading integer of the host's version text; 0 when it does not start with a digit or there is none.
int ReadOfficeVersion(IDispatch* application)
{
    CComVariant version;
    if (FAILED(GetByName(application, L"Version", version)) || version.vt != VT_BSTR ||
        version.bstrVal == nullptr)
    {
        return 0;
    }
    // _wtoi alone would also accept leading blanks and a sign.
    const wchar_t first = version.bstrVal[0];
    return first >= L'0' && first <= L'9' ? _wtoi(version.bstrVal) : 0;
}

} // namespace

STDMETHODIMP CConnect::Invoke(DISPID dispIdMember, REFIID riid, LCID lcid, WORD wFlags,
                              DISPPARAMS* pDispParams, VARIANT* pVarResult, EXCEPINFO* pExcepInfo,
                              UINT* puArgErr)
{
    return RunGuarded<HRESULT>("CConnect::Invoke", E_UNEXPECTED, [&] {
        LogEntry("CConnect::Invoke");
        HRESULT hr = DISP_E_MEMBERNOTFOUND;
        if (dispIdMember >= kFirstRibbonCallback && dispIdMember < kRibbonCallbacksEnd)
        {
            hr = RibbonCallbackDispatch::Invoke(dispIdMember, riid, lcid, wFlags, pDispParams, pVarResult,
                                                pExcepInfo, puArgErr);
        }
        if (dispIdMember == kClick)
        {
            ShowAboutDialog(GetLocalizedResources().FindOwnProcessWindow());
        }
        if (hr == DISP_E_MEMBERNOTFOUND)
        {
            // Also for the click. The dispatcher rejects it, because this id is OnConnection, which takes
            // four arguments. Office ignores an event's result.
            hr = ExtensibilityDispatch::Invoke(dispIdMember, riid, lcid, wFlags, pDispParams, pVarResult,
                                               pExcepInfo, puArgErr);
        }
        return hr;
    });
}

STDMETHODIMP CConnect::OnConnection(IDispatch* Application, ext_ConnectMode ConnectMode, IDispatch*,
                                    SAFEARRAY**)
{
    // An int, because a host may pass a value that the enumeration does not have.
    const int connectMode = ConnectMode;
    return RunGuarded<HRESULT>(kOnConnection, S_OK, [&] {
        LogEntry(kOnConnection);
        LogConnectMode(connectMode);
        AttachToHost(Application);

        AFX_MANAGE_STATE(AfxGetStaticModuleState());
        AfxSetResourceHandle(_AtlBaseModule.GetModuleInstance());
        const int officeVersion = ReadOfficeVersion(m_spApplication);
        GetLocalizedResources().SetOfficeVersion(officeVersion);
        InsertMenuForOldOffice(officeVersion);
        if (connectMode == ext_cm_Startup)
        {
            CheckForUpdateAtStart();
        }
        return S_OK;
    });
}

// Keeps the application and its active explorer; either stays null if the host has none.
void CConnect::AttachToHost(IDispatch* application)
{
    m_spApplication = QueryDispatch(application, __uuidof(Outlook::_Application));
    // A method, although it reads like a property.
    m_spExplorer = GetObjectByName(m_spApplication, L"ActiveExplorer", __uuidof(Outlook::_Explorer));
}

// Versions after the one with the Backstage tab get neither the tab nor the menu command, on purpose.
void CConnect::InsertMenuForOldOffice(int officeVersion)
{
    if (officeVersion >= kFirstBackstageOffice)
    {
        m_spMenuButton.Release();
    }
    else if (m_spExplorer != nullptr)
    {
        LogMessage(kOnConnection, "m_spExplorer is not NULL");
        // The result is ignored: the update check runs without the menu command too.
        InsertMenuCommands();
    }
    else
    {
        LogMessage(kOnConnection, "m_spExplorer is NULL");
    }
}

void CConnect::CheckForUpdateAtStart()
{
    LogMessage(kOnConnection, "check for updates");
    const HWND host = GetLocalizedResources().FindOwnProcessWindow();
    const CDisabledWindow disabledHost(host);
    CheckForUpdate(host, true);
}

// Does not delete the button: it is temporary, so Office does. The destructor releases the host's objects.
STDMETHODIMP CConnect::OnDisconnection(ext_DisconnectMode, SAFEARRAY**)
{
    return RunGuarded<HRESULT>("CConnect::OnDisconnection", E_UNEXPECTED, [this] {
        LogEntry("CConnect::OnDisconnection");
        return m_spMenuButton != nullptr ? DispEventUnadvise(m_spMenuButton, &DIID__CommandBarButtonEvents)
                                         : S_OK;
    });
}

STDMETHODIMP CConnect::OnAddInsUpdate(SAFEARRAY**)
{
    return S_OK;
}

STDMETHODIMP CConnect::OnStartupComplete(SAFEARRAY**)
{
    return RunGuarded<HRESULT>("CConnect::OnStartupComplete", S_OK, [] {
        LogEntry("CConnect::OnStartupComplete");
        return S_OK;
    });
}

STDMETHODIMP CConnect::OnBeginShutdown(SAFEARRAY**)
{
    return S_OK;
}
