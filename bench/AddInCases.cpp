// The cases that see the add-in from outside, through its exports.
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

void StartAndStop(const std::wstring& path)
{
    CLoadedAddIn addIn(path);
    addIn.Connect(ext_cm_AfterStartup);
    addIn.Disconnect();
    addIn.Unload();
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

// Seconds from asking for the class object, which opens the log, to the end of the connection.
double ConnectAtStart(const std::wstring& path, DWORD logSwitch)
{
    SetLogSwitch(logSwitch);
    CLoadedAddIn addIn(path);
    const double start = Now();
    addIn.Connect(ext_cm_Startup);
    const double seconds = Now() - start;
    addIn.Disconnect();
    addIn.Unload();
    return seconds;
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
        if (LoadLibraryW(name) == nullptr)
        {
            throw std::runtime_error("a library of Outlook's");
        }
    }
}

void MeasureStart(const std::string& row, const AddInPaths& paths)
{
    TakeTurns(row, Timed([&] { StartAndStop(paths.product); }), Timed([&] { StartAndStop(paths.empty); }),
              {.rounds = 25, .roundSeconds = 0.1});
}

void MeasureMemory(const std::wstring& path, const char* variant)
{
    const double before = PrivateKib();
    CLoadedAddIn addIn(path);
    addIn.Connect(ext_cm_AfterStartup);
    AddSample("memory", variant, PrivateKib() - before);
}

void MeasureCustomUi(const AddInPaths& paths)
{
    CLoadedAddIn addIn(paths.product);
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
        const std::wstring text(markup, SysStringLen(markup));
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
    ribbon->Release();
}

void MeasureLogSwitch(const AddInPaths& paths)
{
    const CMainWindow window;
    TakeTurns(
        "check-log", [&] { return ConnectAtStart(paths.product, 1); },
        [&] { return ConnectAtStart(paths.product, 0); }, {.rounds = 25, .roundSeconds = 0.1});
    SetLogSwitch(0);
}

void MeasureShare(const std::string& row, const AddInPaths& paths)
{
    const CMainWindow window;
    const double start = Now();
    CLoadedAddIn addIn(paths.product);
    addIn.Connect(ext_cm_Startup);
    AddSample(row + "-start", kProduct, (Now() - start) * kMilliseconds);
    const double stop = Now();
    addIn.Disconnect();
    addIn.Unload();
    AddSample(row + "-stop", kProduct, (Now() - stop) * kMilliseconds);
}

} // namespace orva::bench
