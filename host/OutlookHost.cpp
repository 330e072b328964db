#include "host/OutlookHost.h"

#include "host/AddInRegistry.h"
#include "host/MenuView.h"
#include "host/StoredControls.h"

namespace orva::host
{
namespace
{

// Custom UI and the File view came with version 14. The stand-in has no File view for version 15.
constexpr int kFirstWithCustomUi = 14;
constexpr int kWithFileView = 14;

} // namespace

COutlookHost::COutlookHost(const HostOptions& options, CTrace& trace, CMenuModel& model)
    : m_options(options), m_trace(trace), m_model(model), m_version(MajorVersion(options.version)),
      m_explorer(new CExplorer(model)),
      m_application(
          new CApplication(trace, options.version, options.noExplorer ? nullptr : m_explorer.Get())),
      m_window(std::make_unique<CMainWindow>(trace, m_explorer->MenuBar(),
                                             MainWindowActions{[this] { Start(); }, [this] { Close(); }}))
{
    BuildMenuBar();
}

COutlookHost::~COutlookHost()
{
    m_model.SetObserver(nullptr);
}

void COutlookHost::BuildMenuBar()
{
    if (m_options.emptyMenuBar)
    {
        return;
    }
    CCommandBarControls& controls = m_explorer->MenuBar().Controls();
    AddStandardMenus(controls, [this] { m_window->RequestClose(); });
    RestoreControls(controls);
    if (m_options.lastControlNotPopup)
    {
        controls.AddButton(L"Type a question for help");
    }
}

int COutlookHost::Run()
{
    m_trace.Event(L"started as version " + m_options.version);
    if (!m_window->Create())
    {
        m_trace.Event(L"the main window could not be made");
        return 1;
    }
    m_model.SetObserver(m_window.get());
    m_trace.Event(L"main window shown");
    m_window->PostStart();

    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0)
    {
        if (m_window->TakeKey(message))
        {
            continue;
        }
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    m_trace.Event(L"ended");
    return static_cast<int>(message.wParam);
}

void COutlookHost::Start()
{
    const bool isAtStartup =
        m_options.mode == ConnectMode::Startup || m_options.mode == ConnectMode::CommandLine;
    if (!isAtStartup)
    {
        m_trace.Event(L"start-up complete; add-ins are connected now");
    }
    LoadAddIns();
    for (const auto& addIn : m_addIns)
    {
        addIn->OnAddInsUpdate();
    }
    if (isAtStartup)
    {
        // Add-ins that are connected later are not notified.
        for (const auto& addIn : m_addIns)
        {
            addIn->OnStartupComplete();
        }
        m_trace.Event(L"start-up complete");
    }
    for (const std::wstring& line : DescribeMenu(GetMenu(m_window->Window())))
    {
        m_trace.Event(L"menu " + line);
    }
    if (HasFileView())
    {
        m_window->AllowFileView(m_tabs, m_notes, m_options.noExplorer ? nullptr : m_explorer.Get());
    }
    else
    {
        m_trace.Event(L"version " + std::to_wstring(m_version) + L" shows no File tab");
    }
    m_window->AllowClose();
    if (m_options.backstage)
    {
        m_window->OpenFileView();
    }
    if (m_options.quitAfterStartup)
    {
        m_window->RequestClose();
    }
}

bool COutlookHost::HasFileView() const
{
    return m_version == kWithFileView;
}

void COutlookHost::LoadAddIns()
{
    for (const AddInEntry& entry : ReadAddIns())
    {
        const bool isWanted = entry.loadBehavior == kLoadAtStartup;
        m_trace.Event(L"add-in " + entry.progId + L" has LoadBehavior " +
                      std::to_wstring(entry.loadBehavior) + (isWanted ? L"" : L", not loaded"));
        if (!isWanted)
        {
            continue;
        }
        auto addIn = std::make_unique<CLoadedAddIn>(m_trace, entry);
        if (!addIn->Load())
        {
            continue;
        }
        if (!addIn->Connect(m_application.Get(), m_options.mode))
        {
            addIn->Release();
            continue;
        }
        if (m_version >= kFirstWithCustomUi)
        {
            ReadCustomUi(*addIn);
        }
        m_addIns.push_back(std::move(addIn));
    }
}

void COutlookHost::ReadCustomUi(CLoadedAddIn& addIn)
{
    const std::wstring text = addIn.GetCustomUi();
    if (text.empty())
    {
        return;
    }
    RibbonMarkup markup;
    MarkupError error;
    if (!ParseRibbonMarkup(text, markup, error))
    {
        m_trace.Event(L"custom UI of " + addIn.ProgId() + L" refused: " + error.Text());
        m_notes.push_back(L"The custom UI of " + addIn.ProgId() + L" cannot be shown: " + error.Text());
        return;
    }
    for (const std::wstring& element : markup.ignored)
    {
        m_trace.Event(L"custom UI of " + addIn.ProgId() + L": element " + element + L" is not shown");
    }
    for (const RibbonTab& tab : markup.tabs)
    {
        m_trace.Event(L"custom UI of " + addIn.ProgId() + L": File tab " + tab.id + L" \"" + tab.label +
                      L"\"");
        m_tabs.push_back({tab, &addIn});
    }
}

void COutlookHost::Close()
{
    m_tabs.clear();
    if (m_options.fastShutdown)
    {
        m_trace.Event(L"fast shutdown");
        m_window->Destroy();
        for (const auto& addIn : m_addIns)
        {
            addIn->Abandon();
        }
        return;
    }
    m_trace.Event(L"shutting down");
    StoreControls(m_explorer->MenuBar().Controls());
    for (const auto& addIn : m_addIns)
    {
        addIn->OnBeginShutdown();
    }
    for (const auto& addIn : m_addIns)
    {
        addIn->Disconnect();
    }
    m_window->Destroy();
    m_model.SetObserver(nullptr);
    for (const auto& addIn : m_addIns)
    {
        addIn->Release();
    }
    m_addIns.clear();
}

} // namespace orva::host
