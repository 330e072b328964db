#include "harness/WindowDriver.h"

#include "harness/Text.h"

#include <cstdio>

namespace orva::test
{

namespace
{

constexpr wchar_t kMenuClass[] = L"#32768";

// How long a window may take to answer a message, in milliseconds.
constexpr UINT kAnswerTime = 2'000;

// The result of a message; absent if the window hangs or does not answer in time.
std::optional<DWORD_PTR> Ask(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    DWORD_PTR result = 0;
    if (!SendMessageTimeoutW(window, message, wParam, lParam, SMTO_ABORTIFHUNG, kAnswerTime, &result))
    {
        return std::nullopt;
    }
    return result;
}

// The text that the system keeps for a window, read without a message to its thread.
std::wstring KeptText(HWND window)
{
    std::wstring text(256, L'\0');
    for (;;)
    {
        const auto length =
            static_cast<size_t>(InternalGetWindowText(window, text.data(), static_cast<int>(text.size())));
        if (length + 1 < text.size())
        {
            text.resize(length);
            return text;
        }
        text.resize(text.size() * 2);
    }
}

BOOL CALLBACK AddWindow(HWND window, LPARAM list)
{
    reinterpret_cast<std::vector<HWND>*>(list)->push_back(window);
    return TRUE;
}

bool Matches(HWND window, const CWindowQuery& query)
{
    return (query.process == 0 || WindowProcess(window) == query.process) && IsWindowVisible(window) &&
           (!query.className || WindowClassName(window) == *query.className) &&
           (!query.childId || ChildById(window, *query.childId) != nullptr) &&
           (!query.caption || WindowText(window) == *query.caption);
}

INPUT KeyInput(WORD virtualKey, bool up)
{
    INPUT input = {};
    input.type = INPUT_KEYBOARD;
    input.ki.wVk = virtualKey;
    input.ki.wScan = static_cast<WORD>(MapVirtualKeyW(virtualKey, MAPVK_VK_TO_VSC));
    input.ki.dwFlags = up ? KEYEVENTF_KEYUP : 0;
    return input;
}

} // namespace

std::vector<HWND> FindWindows(const CWindowQuery& query)
{
    std::vector<HWND> windows;
    EnumWindows(AddWindow, reinterpret_cast<LPARAM>(&windows));
    std::erase_if(windows, [&](HWND window) { return !Matches(window, query); });
    return windows;
}

HWND FindTopLevelWindow(const CWindowQuery& query)
{
    const std::vector<HWND> windows = FindWindows(query);
    return windows.empty() ? nullptr : windows.front();
}

HWND WaitForWindow(const CWindowQuery& query, DWORD timeout)
{
    HWND window = nullptr;
    WaitUntil([&] { return (window = FindTopLevelWindow(query)) != nullptr; }, timeout);
    return window;
}

bool WaitUntilGone(HWND window, DWORD timeout)
{
    return WaitUntil([&] { return !IsWindow(window) || !IsWindowVisible(window); }, timeout);
}

bool WaitUntilEnabled(HWND window, bool enabled, DWORD timeout)
{
    return WaitUntil([&] { return (IsWindowEnabled(window) != FALSE) == enabled; }, timeout);
}

std::wstring WindowText(HWND window)
{
    const std::wstring className = WindowClassName(window);
    for (const wchar_t* const systems : {L"Static", L"Button", kDialogClass})
    {
        if (className == systems)
        {
            return KeptText(window);
        }
    }
    const auto length = Ask(window, WM_GETTEXTLENGTH, 0, 0);
    if (!length || *length == 0)
    {
        return {};
    }
    std::wstring text(*length + 1, L'\0');
    const auto copied = Ask(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()));
    text.resize(copied ? *copied : 0);
    return text;
}

std::wstring WindowClassName(HWND window)
{
    wchar_t name[257];
    return std::wstring(name, static_cast<size_t>(GetClassNameW(window, name, 257)));
}

DWORD WindowProcess(HWND window)
{
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    return process;
}

std::vector<HWND> ChildWindows(HWND window)
{
    std::vector<HWND> windows;
    EnumChildWindows(window, AddWindow, reinterpret_cast<LPARAM>(&windows));
    return windows;
}

HWND ChildById(HWND window, int id)
{
    // GetDlgItem does not find the controls of nested windows.
    for (const HWND child : ChildWindows(window))
    {
        if (GetDlgCtrlID(child) == id)
        {
            return child;
        }
    }
    return nullptr;
}

std::wstring ChildText(HWND window, int id)
{
    const HWND child = ChildById(window, id);
    return child ? WindowText(child) : std::wstring();
}

std::wstring WaitForChildText(HWND window, int id, const std::wstring& text, DWORD timeout)
{
    std::wstring current;
    WaitUntil([&] { return (current = ChildText(window, id)) == text || !IsWindow(window); }, timeout);
    return current;
}

bool ClickButton(HWND window, int id)
{
    const HWND button = ChildById(window, id);
    return button && IsWindowEnabled(button) && IsWindowVisible(button) &&
           PostMessageW(button, BM_CLICK, 0, 0);
}

bool TypeKey(HWND window, WORD virtualKey, bool shift)
{
    if (!WaitUntil([&] { return GetForegroundWindow() == window || (SetForegroundWindow(window), false); }))
    {
        return false;
    }
    std::vector<INPUT> inputs;
    if (shift)
    {
        inputs.push_back(KeyInput(VK_SHIFT, false));
    }
    inputs.push_back(KeyInput(virtualKey, false));
    inputs.push_back(KeyInput(virtualKey, true));
    if (shift)
    {
        inputs.push_back(KeyInput(VK_SHIFT, true));
    }
    return SendInput(static_cast<UINT>(inputs.size()), inputs.data(), sizeof(INPUT)) == inputs.size();
}

bool PostKey(HWND window, WORD virtualKey)
{
    const HWND focus = FocusOf(window);
    const HWND target = focus ? focus : window;
    const LPARAM scan = static_cast<LPARAM>(MapVirtualKeyW(virtualKey, MAPVK_VK_TO_VSC)) << 16;
    // Repeat count 1. WM_KEYUP also has the bits for the previous and the transition state.
    const LPARAM down = scan | 1;
    const LPARAM up = down | (LPARAM{3} << 30);
    if (!PostMessageW(target, WM_KEYDOWN, virtualKey, down))
    {
        return false;
    }
    // The window may be gone already: the press alone can end a dialog.
    PostMessageW(target, WM_KEYUP, virtualKey, up);
    return true;
}

bool OpenMenuAtLastItem(HWND window, wchar_t letter)
{
    PostMessageW(window, WM_SYSCOMMAND, SC_KEYMENU, letter);
    if (WaitForWindow({.process = WindowProcess(window), .className = kMenuClass}) == nullptr)
    {
        return false;
    }
    // From the first item, VK_UP goes to the last.
    return PostKey(window, VK_UP);
}

bool ChooseLastMenuItem(HWND window, wchar_t letter)
{
    return OpenMenuAtLastItem(window, letter) && PostKey(window, VK_RETURN);
}

HWND FocusOf(HWND window)
{
    GUITHREADINFO info = {};
    info.cbSize = sizeof info;
    return GetGUIThreadInfo(GetWindowThreadProcessId(window, nullptr), &info) ? info.hwndFocus : nullptr;
}

std::string DescribeWindows(DWORD process)
{
    std::string text;
    for (const HWND window : FindWindows({.process = process ? process : GetCurrentProcessId()}))
    {
        text += "  \"" + Utf8(WindowText(window)) + "\" (" + Utf8(WindowClassName(window)) +
                (IsWindowEnabled(window) ? "" : ", disabled") +
                (Ask(window, WM_NULL, 0, 0) ? ")\n" : ", does not answer)\n");
        for (const HWND child : ChildWindows(window))
        {
            text += "    " + std::to_string(GetDlgCtrlID(child)) + " " + Utf8(WindowClassName(child)) +
                    " \"" + Utf8(WindowText(child)) + (IsWindowEnabled(child) ? "\"\n" : "\" (disabled)\n");
        }
    }
    return text.empty() ? "  (none)\n" : text;
}

} // namespace orva::test
