// One add-in in this process: its creation, the calls of its life cycle and its callbacks by name.
#pragma once

#include "host/AddInRegistry.h"
#include "host/HostOptions.h"
#include "host/OutlookObjects.h"
#include "host/Trace.h"

#include <AddInDesignerObjects.h>

#include <wrl/client.h>

#include <windows.h>

#include <string>

namespace orva::host
{

/// To be used on the user-interface thread. Every call is traced. As in Outlook, failures of the add-in are
/// ignored where the function returns nothing.
class CLoadedAddIn
{
public:
    CLoadedAddIn(CTrace& trace, const AddInEntry& entry);
    ~CLoadedAddIn();
    CLoadedAddIn(const CLoadedAddIn&) = delete;
    CLoadedAddIn& operator=(const CLoadedAddIn&) = delete;

    const std::wstring& ProgId() const { return m_entry.progId; }

    /// Creates the add-in's object in this process and queries _IDTExtensibility2. False when either fails.
    bool Load();
    /// Calls OnConnection through the vtable. False when it failed.
    bool Connect(IDispatch* application, ConnectMode mode);
    /// The custom UI for Outlook's main window; empty when there is none.
    std::wstring GetCustomUi();
    void OnAddInsUpdate();
    void OnStartupComplete();
    void OnBeginShutdown();
    /// Calls OnDisconnection with ext_dm_HostShutdown.
    void Disconnect();
    /// Releases all references and unloads the DLL if it can be unloaded.
    void Release();
    /// Keeps every reference, for a process that ends without notifying the add-in.
    void Abandon();

    /// Calls a ribbon callback: GetIDsOfNames, then Invoke with `control` as its only argument. `result` may
    /// be null.
    HRESULT CallBack(const std::wstring& name, const std::wstring& controlId, IDispatch* control,
                     VARIANT* result);

private:
    using Method = HRESULT (STDMETHODCALLTYPE _IDTExtensibility2::*)(SAFEARRAY**);

    void Call(const wchar_t* name, Method method);
    void ReadModulePath();

    CTrace& m_trace;
    AddInEntry m_entry;
    CLSID m_classId{};
    std::wstring m_modulePath;
    Microsoft::WRL::ComPtr<IUnknown> m_object;
    Microsoft::WRL::ComPtr<_IDTExtensibility2> m_addIn;
    Microsoft::WRL::ComPtr<CComAddIn> m_instance;
};

} // namespace orva::host
