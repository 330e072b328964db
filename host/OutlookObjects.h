// The objects an add-in starts from: Application, its Explorer, and the add-in's own COMAddIn.
#pragma once

#include "host/CommandBars.h"
#include "host/DispatchObject.h"

#include <wrl/client.h>

#include <string>

namespace orva::host
{

/// Explorer: Outlook's main window.
class CExplorer : public CDispatchObject
{
public:
    explicit CExplorer(CMenuModel& model);

    CCommandBar& MenuBar() const { return m_commandBars->MenuBar(); }

protected:
    HRESULT OnCall(DISPID id, bool isWrite, const CArguments& arguments, VARIANT& result) override;

private:
    Microsoft::WRL::ComPtr<CCommandBars> m_commandBars;
};

/// Application. Without an explorer, ActiveExplorer succeeds with no object, as in Outlook.
class CApplication : public CDispatchObject
{
public:
    CApplication(CTrace& trace, const std::wstring& version, CExplorer* explorer);

protected:
    HRESULT OnCall(DISPID id, bool isWrite, const CArguments& arguments, VARIANT& result) override;

private:
    std::wstring m_version;
    Microsoft::WRL::ComPtr<CExplorer> m_explorer;
};

/// COMAddIn: represents the add-in in OnConnection. The add-in may store an object for other programs in
/// Object.
class CComAddIn : public CDispatchObject
{
public:
    CComAddIn(CTrace& trace, const std::wstring& progId, const std::wstring& description);

    void SetConnected(bool connected) { m_connected = connected; }
    /// Releases what the add-in has stored in Object.
    void Clear() { m_object.Reset(); }

protected:
    HRESULT OnCall(DISPID id, bool isWrite, const CArguments& arguments, VARIANT& result) override;

private:
    std::wstring m_progId;
    std::wstring m_description;
    Microsoft::WRL::ComPtr<IDispatch> m_object;
    bool m_connected = false;
};

} // namespace orva::host
