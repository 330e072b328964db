#include "demo/Desktop.h"

#include "harness/WindowDriver.h"
#include "host/MainWindow.h"
#include "res/resource.h"

#include <algorithm>

namespace orva::demo
{

using namespace test;

namespace
{

std::wstring ProgramOf(HWND window)
{
    const UniqueHandle process(OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, WindowProcess(window)));
    wchar_t path[MAX_PATH] = L"";
    DWORD length = MAX_PATH;
    QueryFullProcessImageNameW(process.get(), 0, path, &length);
    return path;
}

bool IsNamed(const std::wstring& program, const wchar_t* beginning)
{
    return program.substr(program.rfind(L'\\') + 1).starts_with(beginning);
}

// Not tiny, no menu, and neither ours nor the desktop's own.
bool IsForUser(HWND window)
{
    constexpr LONG kSmallest = 20;
    constexpr wchar_t kMenuClass[] = L"#32768";
    RECT area = {};
    return GetWindowRect(window, &area) && area.right - area.left >= kSmallest &&
           area.bottom - area.top >= kSmallest && WindowClassName(window) != kMenuClass &&
           WindowProcess(window) != GetCurrentProcessId() && !IsNamed(ProgramOf(window), L"explorer.exe");
}

WindowKind KindOf(const CMetWindow& met)
{
    const auto has = [&](int first, int second) {
        return ChildById(met.window, first) != nullptr && ChildById(met.window, second) != nullptr;
    };
    return IsNamed(met.program, L"OrvaSetup")                ? WindowKind::Installer
           : met.className == host::kMainWindowClass         ? WindowKind::Main
           : has(IDC_UPDATE_INSTALL, IDC_UPDATE_LATER)       ? WindowKind::Offer
           : has(IDC_DOWNLOAD_STATUS, IDC_DOWNLOAD_PROGRESS) ? WindowKind::Download
           : has(IDC_ABOUT_UPDATE, IDC_ABOUT_CLOSE)          ? WindowKind::About
           : met.className == kDialogClass                   ? WindowKind::Message
                                                             : WindowKind::Other;
}

} // namespace

std::optional<CMetWindow> CDesktop::Next(DWORD timeout)
{
    CMetWindow met;
    const auto look = [&] {
        const std::vector<HWND> windows = FindWindows({.process = 0});
        // The system may reuse a handle for another window.
        std::erase_if(m_known, [&](HWND known) {
            return std::find(windows.begin(), windows.end(), known) == windows.end();
        });
        // From the bottom of the Z order, where the older of two windows is.
        const auto next = std::find_if(windows.rbegin(), windows.rend(), [&](HWND window) {
            return !m_known.contains(window) && IsForUser(window);
        });
        met.window = next != windows.rend() ? *next : nullptr;
        return met.window != nullptr;
    };
    if (!WaitUntil(look, timeout))
    {
        return std::nullopt;
    }
    m_known.insert(met.window);
    static_cast<CSeenWindow&>(met) = LookAt(met.window);
    met.program = ProgramOf(met.window);
    met.className = WindowClassName(met.window);
    met.kind = KindOf(met);
    // What has gone by now, nobody has seen.
    return IsWindow(met.window) ? std::optional(met) : std::nullopt;
}

const char* NameOf(WindowKind kind)
{
    constexpr const char* kNames[] = {"main", "offer", "download", "about", "installer", "message", "other"};
    return kNames[static_cast<size_t>(kind)];
}

void PressOnlyButton(HWND window)
{
    for (const HWND child : ChildWindows(window))
    {
        if (WindowClassName(child) == L"Button" && ClickButton(window, GetDlgCtrlID(child)))
        {
            return;
        }
    }
}

std::wstring WaitForSetupPage(HWND window, const std::wstring& lastText, DWORD timeout)
{
    std::wstring text;
    const auto look = [&] {
        const HWND page = ChildById(window, kSetupPageText);
        text = page != nullptr && IsWindowVisible(page) ? WindowText(page) : L"";
        const bool isNext = !text.empty() && text != lastText && IsWindowEnabled(ChildById(window, IDOK));
        return isNext || !IsWindow(window);
    };
    return WaitUntil(look, timeout) && IsWindow(window) ? text : L"";
}

HWND ControlWithText(HWND window, const wchar_t* className, const std::wstring& text)
{
    for (const HWND child : ChildWindows(window))
    {
        if (IsWindowVisible(child) && WindowClassName(child) == className && WindowText(child) == text)
        {
            return child;
        }
    }
    return nullptr;
}

} // namespace orva::demo
