#include "bench/AddInCases.h"

#include "bench/LoadedAddIn.h"
#include "bench/Samples.h"
#include "bench/Turns.h"

#include <Office.h>

#include <stdexcept>

namespace orva::bench
{

namespace
{

constexpr wchar_t kLogKey[] = L"SOFTWARE\\ORVA Connector";
constexpr wchar_t kLogSwitch[] = L"EnableDebugLog";

constexpr double kMilliseconds = 1e3;

// The markup has so many placeholders; a test of the markup counts them.
constexpr int kPlaceholders = 18;

// Seconds of each step of a connection after Outlook's start.
struct Steps
{
    double load;
    double create;
    double connect;
    double unload;

    double Sum() const { return load + create + connect + unload; }
};

Steps StartAndStop(const std::wstring& path)
{
    const double start = Now();
    CLoadedAddIn addIn(path);
    const double loaded = Now();
    addIn.Create();
    const double created = Now();
    addIn.Connect(ext_cm_AfterStartup);
    const double connected = Now();
    addIn.Disconnect();
    addIn.Unload();
    return {loaded - start, created - loaded, connected - created, Now() - connected};
}

// The main window that the check at the start disables.
class CMainWindow
{
public:
    CMainWindow()
        : m_window(CreateWindowExW(0, L"STATIC", L"Outlook", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 40, 40, 400,
                                   300, nullptr, nullptr, GetModuleHandleW(nullptr), nullptr))
    {
    }
    ~CMainWindow() { DestroyWindow(m_window); }
    CMainWindow(const CMainWindow&) = delete;
    CMainWindow& operator=(const CMainWindow&) = delete;

private:
    HWND m_window;
};

void SetLogSwitch(DWORD value)
{
    if (RegSetKeyValueW(HKEY_CURRENT_USER, kLogKey, kLogSwitch, REG_DWORD, &value, sizeof value) !=
        ERROR_SUCCESS)
    {
        throw std::runtime_error("log switch");
    }
}

// Seconds of two steps with the log on or off: making the object, with which the log is opened, and
// connecting it at Outlook's start, with the check.
struct LoggedStart
{
    double create;
    double connect;
};

LoggedStart TimeStart(const std::wstring& path, DWORD logSwitch)
{
    SetLogSwitch(logSwitch);
    CLoadedAddIn addIn(path);
    const double start = Now();
    addIn.Create();
    const double created = Now();
    addIn.Connect(ext_cm_Startup);
    const double connected = Now();
    addIn.Disconnect();
    addIn.Unload();
    return {created - start, connected - created};
}

void CopyText(const std::wstring& text)
{
    SysFreeString(SysAllocStringLen(text.data(), static_cast<UINT>(text.size())));
}

} // namespace

void LoadWhatOutlookLoads()
{
    for (const wchar_t* const name : {L"ole32", L"oleaut32", L"user32", L"gdi32", L"advapi32", L"shell32",
                                      L"shlwapi", L"comctl32", L"wininet", L"gdiplus"})
    {
        // They stay loaded, as they do in Outlook.
        // cppcheck-suppress leakReturnValNotUsed
        if (LoadLibraryW(name) == nullptr)
        {
            throw std::runtime_error("a library of Outlook's");
        }
    }
}

void MeasureStart(const std::string& row, const AddInPaths& paths)
{
    TakeTurns(
        row, [&] { return StartAndStop(paths.product).Sum(); },
        [&] { return StartAndStop(paths.empty).Sum(); }, {.rounds = 75, .roundSeconds = 0.02});
}

void MeasureStartSteps(const AddInPaths& paths)
{
    const auto step = [&](const char* row, double Steps::*part) {
        TakeTurns(
            row, [&, part] { return StartAndStop(paths.product).*part; },
            [&, part] { return StartAndStop(paths.empty).*part; });
    };
    step("start-load", &Steps::load);
    step("start-create", &Steps::create);
    step("start-connect", &Steps::connect);
    step("start-unload", &Steps::unload);
    TakeTurns(
        "manifest", [&] { return StartAndStop(paths.manifestOnly).load; },
        [&] { return StartAndStop(paths.empty).load; });
}

void MeasureMemory(const std::wstring& path, const char* variant)
{
    const double before = PrivateKib();
    CLoadedAddIn addIn(path);
    addIn.Create();
    addIn.Connect(ext_cm_AfterStartup);
    AddSample("memory", variant, PrivateKib() - before);
}

void MeasureCustomUi(const AddInPaths& paths)
{
    CLoadedAddIn addIn(paths.product);
    addIn.Create();
    addIn.Connect(ext_cm_AfterStartup);
    IRibbonExtensibility* ribbon = nullptr;
    if (FAILED(addIn.Object()->QueryInterface(IID_IRibbonExtensibility, reinterpret_cast<void**>(&ribbon))))
    {
        throw std::runtime_error("IRibbonExtensibility");
    }
    const auto getMarkup = [ribbon] {
        BSTR markup = nullptr;
        if (FAILED(ribbon->GetCustomUI(nullptr, &markup)) || SysStringLen(markup) == 0)
        {
            throw std::runtime_error("GetCustomUI");
        }
        std::wstring text(markup, SysStringLen(markup));
        SysFreeString(markup);
        return text;
    };
    const std::wstring text = getMarkup();
    const auto product = [ribbon] {
        BSTR markup = nullptr;
        ribbon->GetCustomUI(nullptr, &markup);
        SysFreeString(markup);
    };
    const auto baseline = [&text] {
        for (int i = 0; i < kPlaceholders; ++i)
        {
            CopyText(text);
        }
    };
    TakeTurns("custom-ui", Timed(product), Timed(baseline));
    TakeTurns("custom-ui-line", Timed(product), Timed([&baseline] {
                  baseline();
                  OutputDebugStringA("CConnect::GetCustomUI");
              }));
    ribbon->Release();
}

void MeasureLogSwitch(const AddInPaths& paths)
{
    const CMainWindow window;
    TakeTurns(
        "check-log", [&] { return TimeStart(paths.product, 1).connect; },
        [&] { return TimeStart(paths.product, 0).connect; }, {.rounds = 75, .roundSeconds = 0.02});
    TakeTurns(
        "log-open", [&] { return TimeStart(paths.product, 1).create; },
        [&] { return TimeStart(paths.product, 0).create; });
    SetLogSwitch(0);
}

void MeasureShare(const std::string& row, const AddInPaths& paths)
{
    const CMainWindow window;
    const double start = Now();
    CLoadedAddIn addIn(paths.product);
    addIn.Create();
    addIn.Connect(ext_cm_Startup);
    AddSample(row + "-start", kProduct, (Now() - start) * kMilliseconds);
    const double stop = Now();
    addIn.Disconnect();
    addIn.Unload();
    AddSample(row + "-stop", kProduct, (Now() - stop) * kMilliseconds);
}

} // namespace orva::bench
