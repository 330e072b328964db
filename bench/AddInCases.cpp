#include "bench/AddInCases.h"

#include "bench/DebuggerLines.h"
#include "bench/Samples.h"
#include "bench/Turns.h"
#include "harness/LogFile.h"
#include "outlook/AddInModule.h"
#include "outlook/FakeOutlook.h"

#include <AddInDesignerObjects.h>
#include <Office.h>

#include <optional>
#include <stdexcept>

namespace orva::bench
{

namespace
{

using Microsoft::WRL::ComPtr;

constexpr double kMilliseconds = 1e3;

// Many short rounds, because disturbances last longer than a start.
constexpr Effort kStartEffort{.rounds = 75, .roundSeconds = 0.02};

// Number of placeholders in the markup; a test of the markup counts them.
constexpr int kPlaceholders = 18;

void Check(bool isGood, const char* step)
{
    if (!isGood)
    {
        throw std::runtime_error(step);
    }
}

test::CFakeOutlook& Outlook()
{
    static test::CFakeOutlook outlook(test::kOutlook2010);
    outlook.record.clear();
    return outlook;
}

// An add-in from loading to unloading its DLL, and its object.
class CRunningAddIn
{
public:
    explicit CRunningAddIn(const std::wstring& path)
        : m_module(std::in_place, path), m_object(m_module->Create())
    {
    }

    void Connect(ext_ConnectMode mode)
    {
        Check(SUCCEEDED(test::ConnectAddIn(m_object.Get(), Outlook().application.Get(), mode)),
              "OnConnection");
    }

    void ShutDownAndUnload()
    {
        ComPtr<_IDTExtensibility2> addIn;
        Check(SUCCEEDED(m_object.As(&addIn)), "_IDTExtensibility2");
        Check(SUCCEEDED(addIn->OnBeginShutdown(nullptr)), "OnBeginShutdown");
        Check(SUCCEEDED(addIn->OnDisconnection(ext_dm_HostShutdown, nullptr)), "OnDisconnection");
        addIn.Reset();
        m_object.Reset();
        Check(m_module->CanUnloadNow() == S_OK, "DllCanUnloadNow");
        m_module.reset();
        Check(!test::CAddInModule::IsLoaded(), "unloading");
    }

    IUnknown* Object() const { return m_object.Get(); }

private:
    std::optional<test::CAddInModule> m_module;
    ComPtr<IUnknown> m_object;
};

void StartAndStop(const std::wstring& path)
{
    CRunningAddIn addIn(path);
    addIn.Connect(ext_cm_AfterStartup);
    addIn.ShutDownAndUnload();
}

// The main window that the check at the start disables.
class CDesktopWindow
{
public:
    CDesktopWindow()
        : m_window(CreateWindowExW(0, L"STATIC", L"Outlook", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 40, 40, 400,
                                   300, nullptr, nullptr, GetModuleHandleW(nullptr), nullptr))
    {
    }
    ~CDesktopWindow() { DestroyWindow(m_window); }
    CDesktopWindow(const CDesktopWindow&) = delete;
    CDesktopWindow& operator=(const CDesktopWindow&) = delete;

private:
    HWND m_window;
};

void SetLogSwitch(DWORD value)
{
    Check(RegSetKeyValueW(HKEY_CURRENT_USER, test::kLogSwitchKey, test::kLogSwitchValue, REG_DWORD, &value,
                          sizeof value) == ERROR_SUCCESS,
          "log switch");
}

// Seconds that OnConnection takes at Outlook's start, with the check. The log is opened before that.
double TimeConnection(const std::wstring& path, DWORD logSwitch)
{
    SetLogSwitch(logSwitch);
    CRunningAddIn addIn(path);
    const double start = Now();
    addIn.Connect(ext_cm_Startup);
    const double connected = Now();
    addIn.ShutDownAndUnload();
    return connected - start;
}

} // namespace

void LoadWhatOutlookLoads()
{
    for (const wchar_t* const name : {L"ole32", L"oleaut32", L"user32", L"gdi32", L"advapi32", L"shell32",
                                      L"shlwapi", L"comctl32", L"wininet", L"gdiplus"})
    {
        // Not freed: they stay loaded in Outlook, too.
        // cppcheck-suppress leakReturnValNotUsed
        Check(LoadLibraryW(name) != nullptr, "a library of Outlook's");
    }
}

void DemandThatOutlooksLibrariesAreMissing()
{
    for (const wchar_t* const name : {L"shell32", L"shlwapi", L"comctl32", L"wininet", L"gdiplus"})
    {
        Check(GetModuleHandleW(name) == nullptr, "a library that should not be loaded yet");
    }
}

void MeasureStart(const std::string& row, const AddInPaths& paths)
{
    const std::vector<std::string> lines = DebuggerLinesOf([&] { StartAndStop(paths.product); });
    TakeTurns(row, Timed([&] { StartAndStop(paths.product); }), Timed([&] {
                  StartAndStop(paths.empty);
                  WriteToDebugger(lines);
              }),
              kStartEffort);
}

void MeasureMemory(const std::wstring& path, const char* variant)
{
    Outlook();
    const double before = PrivateKib();
    CRunningAddIn addIn(path);
    addIn.Connect(ext_cm_AfterStartup);
    AddSample("memory", variant, PrivateKib() - before);
}

void MeasureCustomUi(const AddInPaths& paths)
{
    CRunningAddIn addIn(paths.product);
    addIn.Connect(ext_cm_AfterStartup);
    ComPtr<IRibbonExtensibility> ribbon;
    Check(SUCCEEDED(addIn.Object()->QueryInterface(IID_IRibbonExtensibility,
                                                   reinterpret_cast<void**>(ribbon.GetAddressOf()))),
          "IRibbonExtensibility");
    BSTR markup = nullptr;
    Check(SUCCEEDED(ribbon->GetCustomUI(nullptr, &markup)) && SysStringLen(markup) != 0, "GetCustomUI");
    const std::wstring text(markup, SysStringLen(markup));
    SysFreeString(markup);
    TakeTurns("custom-ui", Timed([&ribbon] {
                  BSTR copy = nullptr;
                  ribbon->GetCustomUI(nullptr, &copy);
                  SysFreeString(copy);
              }),
              Timed([&text] {
                  for (int i = 0; i < kPlaceholders; ++i)
                  {
                      SysFreeString(SysAllocStringLen(text.data(), static_cast<UINT>(text.size())));
                  }
              }));
}

void MeasureLogSwitch(const AddInPaths& paths)
{
    const CDesktopWindow window;
    TakeTurns(
        "check-log", [&] { return TimeConnection(paths.product, 1); },
        [&] { return TimeConnection(paths.product, 0); }, kStartEffort);
    SetLogSwitch(0);
}

void MeasureShare(const std::string& row, const AddInPaths& paths)
{
    const CDesktopWindow window;
    Outlook();
    const double start = Now();
    CRunningAddIn addIn(paths.product);
    addIn.Connect(ext_cm_Startup);
    AddSample(row + "-start", kProduct, (Now() - start) * kMilliseconds);
    const double stop = Now();
    addIn.ShutDownAndUnload();
    AddSample(row + "-stop", kProduct, (Now() - stop) * kMilliseconds);
}

} // namespace orva::bench
