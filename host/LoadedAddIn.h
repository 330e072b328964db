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

/// Everything happens on the user-interface thread. Each call is written to the trace; a failing one is
/// passed over as Outlook does, and only Load says whether the add-in is there at all.
class CLoadedAddIn
{
public:
    CLoadedAddIn(CTrace& trace, const AddInEntry& entry);
    ~CLoadedAddIn();
    CLoadedAddIn(const CLoadedAddIn&) = delete;
    CLoadedAddIn& operator=(const CLoadedAddIn&) = delete;

    const std::wstring& ProgId() const { return m_entry.progId; }

    /// Creates the add-in's object in this process and asks for _IDTExtensibility2.
    bool Load();
    /// OnConnection by the interface's own slot. False when it failed.
    bool Connect(IDispatch* application, ConnectMode mode);
    /// The custom UI for Outlook's main window; empty when there is none.
    std::wstring GetCustomUi();
    void OnAddInsUpdate();
    void OnStartupComplete();
    void OnBeginShutdown();
    /// OnDisconnection because the host ends.
    void Disconnect();
    /// Gives all references back and asks the DLL whether it can be unloaded.
    void Release();
    /// Leaves every reference as it is: the process is about to end without a word to the add-in.
    void Abandon();

    /// Calls a ribbon callback: GetIDsOfNames, then Invoke with `control` as its only argument. `result` may
    /// be null.
    HRESULT CallBack(const std::wstring& name, const std::wstring& controlId, IDispatch* control,
                     VARIANT* result);

private:
    using Method = HRESULT (STDMETHODCALLTYPE _IDTExtensibility2::*)(SAFEARRAY**);

    void Call(const wchar_t* name, Method method);
    void NoteModule();

    CTrace& m_trace;
    AddInEntry m_entry;
    CLSID m_classId{};
    std::wstring m_modulePath;
    Microsoft::WRL::ComPtr<IUnknown> m_object;
    Microsoft::WRL::ComPtr<_IDTExtensibility2> m_addIn;
    Microsoft::WRL::ComPtr<CComAddIn> m_instance;
};

} // namespace orva::host
