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

constexpr wchar_t kButtonClass[] = L"Button";
// What is smaller is no window to a user.
constexpr LONG kSmallest = 20;

std::wstring ProgramOf(HWND window)
{
    const UniqueHandle process(OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, WindowProcess(window)));
    wchar_t path[MAX_PATH] = L"";
    DWORD length = MAX_PATH;
    if (!process || !QueryFullProcessImageNameW(process.get(), 0, path, &length))
    {
        return {};
    }
    const std::wstring whole(path, length);
    return whole.substr(whole.rfind(L'\\') + 1);
}

// Neither ours nor the desktop's own.
bool IsForUser(HWND window)
{
    RECT area = {};
    return GetWindowRect(window, &area) && area.right - area.left >= kSmallest &&
           area.bottom - area.top >= kSmallest && WindowProcess(window) != GetCurrentProcessId() &&
           ProgramOf(window) != L"explorer.exe";
}

WindowKind KindOf(const CMetWindow& met)
{
    const auto hasAll = [&](std::initializer_list<int> ids) {
        return std::all_of(ids.begin(), ids.end(),
                           [&](int id) { return ChildById(met.window, id) != nullptr; });
    };
    if (met.program.starts_with(L"OrvaSetup"))
    {
        return WindowKind::Installer;
    }
    if (met.className == host::kMainWindowClass)
    {
        return WindowKind::Main;
    }
    if (hasAll({IDC_UPDATE_INSTALL, IDC_UPDATE_LATER, IDC_UPDATE_DESCRIPTION}))
    {
        return WindowKind::Offer;
    }
    if (hasAll({IDC_DOWNLOAD_STATUS, IDC_DOWNLOAD_PROGRESS}))
    {
        return WindowKind::Download;
    }
    if (hasAll({IDC_ABOUT_UPDATE, IDC_ABOUT_CLOSE}))
    {
        return WindowKind::About;
    }
    return met.className == kDialogClass ? WindowKind::Message : WindowKind::Other;
}

} // namespace

std::optional<CMetWindow> CDesktop::Next(DWORD timeout)
{
    HWND found = nullptr;
    WaitUntil(
        [&] {
            std::vector<HWND> windows = FindWindows({.process = 0});
            // The system may reuse a handle for another window.
            std::erase_if(m_known, [&](HWND known) {
                return std::find(windows.begin(), windows.end(), known) == windows.end();
            });
            // From the bottom of the Z order, where the older of two windows is.
            std::reverse(windows.begin(), windows.end());
            const auto isNew = [&](HWND window) { return !m_known.contains(window) && IsForUser(window); };
            const auto next = std::find_if(windows.begin(), windows.end(), isNew);
            found = next != windows.end() ? *next : nullptr;
            return found != nullptr;
        },
        timeout);
    if (found == nullptr)
    {
        return std::nullopt;
    }
    m_known.insert(found);
    CMetWindow met;
    static_cast<CSeenWindow&>(met) = LookAt(found);
    met.program = ProgramOf(found);
    met.className = WindowClassName(found);
    met.kind = KindOf(met);
    return met;
}

const char* NameOf(WindowKind kind)
{
    constexpr const char* kNames[] = {"main", "offer", "download", "installer", "message", "about", "other"};
    return kNames[static_cast<size_t>(kind)];
}

void PressOnlyButton(HWND window)
{
    for (const HWND child : ChildWindows(window))
    {
        if (WindowClassName(child) == kButtonClass && ClickButton(window, GetDlgCtrlID(child)))
        {
            return;
        }
    }
}

HWND ControlWithText(HWND window, const std::wstring& text, bool isButton)
{
    for (const HWND child : ChildWindows(window))
    {
        if (IsWindowVisible(child) && (!isButton || WindowClassName(child) == kButtonClass) &&
            WindowText(child) == text)
        {
            return child;
        }
    }
    return nullptr;
}

} // namespace orva::demo
