// The stand-in Outlook as a whole: start, message loop and end, in the order in which Outlook calls its
// add-ins.
#pragma once

#include "host/HostOptions.h"
#include "host/LoadedAddIn.h"
#include "host/MainWindow.h"
#include "host/MenuModel.h"
#include "host/OutlookObjects.h"
#include "host/Trace.h"

#include <memory>
#include <string>
#include <vector>

namespace orva::host
{

class COutlookHost
{
public:
    COutlookHost(const HostOptions& options, CTrace& trace, CMenuModel& model);
    ~COutlookHost();
    COutlookHost(const COutlookHost&) = delete;
    COutlookHost& operator=(const COutlookHost&) = delete;

    /// Shows the main window and runs the message loop until the window is destroyed. OLE must be
    /// initialized. Returns the exit status.
    int Run();

private:
    void BuildMenuBar();
    void Start();
    void LoadAddIns();
    void ReadCustomUi(CLoadedAddIn& addIn);
    bool HasFileView() const;
    void Close();

    HostOptions m_options;
    CTrace& m_trace;
    CMenuModel& m_model;
    int m_version;
    Microsoft::WRL::ComPtr<CExplorer> m_explorer;
    Microsoft::WRL::ComPtr<CApplication> m_application;
    std::unique_ptr<CMainWindow> m_window;
    std::vector<std::unique_ptr<CLoadedAddIn>> m_addIns;
    std::vector<FileViewTab> m_tabs;
    std::vector<std::wstring> m_notes;
};

} // namespace orva::host
