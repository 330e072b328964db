// Plays a user at the Windows desktop: finds, reads and operates other programs' windows, on commands from
// its standard input.
//
// One command a line. The answer is lines with fields separated by tabs; its last line is a full stop.
//
// next MS: waits up to MS milliseconds for a visible top-level window that was not reported before. "window",
// handle, process id, program, class, caption; nothing if there was none.
//
// read WINDOW: "caption" and its text, then for each control "control", id, class, "enabled" or "disabled",
// "shown" or "hidden", text.
//
// press WINDOW ID: clicks the button with this control id, "button" for the first one shown. "done",
// "failed".
//
// await WINDOW ID MS TEXT: waits up to MS milliseconds until the control has this text. "done", "failed".
//
// close WINDOW: asks the window to close, as its close box does. "done", "failed".
//
// state WINDOW: "enabled", "disabled" or "gone".
//
// x WINDOW: "x" and the id of the X11 window that shows it, 0 if unknown.
//
// Texts are UTF-8; backslash, tab and line ends in them are written \\ \t \r \n.

#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace
{

constexpr DWORD kPollInterval = 40;
// How long a window may take to answer before it counts as having no text.
constexpr UINT kAnswerTime = 2000;

std::string Utf8(std::wstring_view text)
{
    const int size = WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), nullptr, 0,
                                         nullptr, nullptr);
    std::string result(static_cast<size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), result.data(), size, nullptr,
                        nullptr);
    return result;
}

std::string Field(std::wstring_view text)
{
    std::string result;
    for (const char character : Utf8(text))
    {
        switch (character)
        {
        case '\\':
            result += "\\\\";
            break;
        case '\t':
            result += "\\t";
            break;
        case '\r':
            result += "\\r";
            break;
        case '\n':
            result += "\\n";
            break;
        default:
            result += character;
        }
    }
    return result;
}

std::string Number(HWND window)
{
    return std::to_string(reinterpret_cast<UINT_PTR>(window));
}

std::wstring ClassOf(HWND window)
{
    wchar_t name[256] = {};
    const int length = GetClassNameW(window, name, static_cast<int>(std::size(name)));
    return {name, static_cast<size_t>(length)};
}

// GetWindowText does not read another process's controls; WM_GETTEXT does.
std::wstring TextOf(HWND window)
{
    DWORD_PTR length = 0;
    if (SendMessageTimeoutW(window, WM_GETTEXTLENGTH, 0, 0, SMTO_ABORTIFHUNG, kAnswerTime, &length) == 0)
    {
        return {};
    }
    std::wstring text(length + 1, L'\0');
    DWORD_PTR copied = 0;
    if (SendMessageTimeoutW(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()),
                            SMTO_ABORTIFHUNG, kAnswerTime, &copied) == 0)
    {
        return {};
    }
    text.resize(std::min<size_t>(copied, length));
    return text;
}

// The program's file name without its folder.
std::wstring ProgramOf(DWORD process)
{
    const HANDLE handle = OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, process);
    if (handle == nullptr)
    {
        return {};
    }
    wchar_t path[MAX_PATH] = {};
    DWORD length = static_cast<DWORD>(std::size(path));
    const bool known = QueryFullProcessImageNameW(handle, 0, path, &length) != FALSE;
    CloseHandle(handle);
    const std::wstring_view whole(path, known ? length : 0);
    return std::wstring(whole.substr(whole.rfind(L'\\') + 1));
}

BOOL CALLBACK Collect(HWND window, LPARAM list)
{
    reinterpret_cast<std::vector<HWND>*>(list)->push_back(window);
    return TRUE;
}

// From the bottom of the Z order, so that of two new windows the older one is reported first.
std::vector<HWND> TopLevelWindows()
{
    std::vector<HWND> windows;
    EnumWindows(Collect, reinterpret_cast<LPARAM>(&windows));
    std::reverse(windows.begin(), windows.end());
    return windows;
}

std::vector<HWND> ControlsOf(HWND window)
{
    std::vector<HWND> controls;
    EnumChildWindows(window, Collect, reinterpret_cast<LPARAM>(&controls));
    return controls;
}

// Whether a user would call it a window: visible, not tiny, and neither ours nor the desktop's own.
bool IsUserWindow(HWND window)
{
    RECT area = {};
    if (!IsWindowVisible(window) || !GetWindowRect(window, &area) || area.right - area.left < 20 ||
        area.bottom - area.top < 20)
    {
        return false;
    }
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    return process != GetCurrentProcessId() && ProgramOf(process) != L"explorer.exe";
}

class CDesktopUser
{
public:
    // Executes one command and writes its answer up to the full stop.
    void Execute(std::istringstream& command)
    {
        std::string verb;
        command >> verb;
        if (verb == "next")
        {
            DWORD timeout = 0;
            command >> timeout;
            Next(timeout);
            return;
        }
        UINT_PTR number = 0;
        command >> number;
        const HWND window = reinterpret_cast<HWND>(number);
        if (verb == "read")
        {
            Read(window);
        }
        else if (verb == "press")
        {
            std::string id;
            command >> id;
            std::cout << (Press(window, id) ? "done\n" : "failed\n");
        }
        else if (verb == "await")
        {
            int id = 0;
            DWORD timeout = 0;
            std::string text;
            command >> id >> timeout >> std::ws;
            std::getline(command, text);
            std::cout << (Await(window, id, text, timeout) ? "done\n" : "failed\n");
        }
        else if (verb == "close")
        {
            std::cout << (PostMessageW(window, WM_CLOSE, 0, 0) ? "done\n" : "failed\n");
        }
        else if (verb == "state")
        {
            const bool there = IsWindow(window) && IsWindowVisible(window);
            std::cout << (!there ? "gone\n" : IsWindowEnabled(window) ? "enabled\n" : "disabled\n");
        }
        else if (verb == "x")
        {
            // Wine's X11 driver sets this property.
            const auto id = reinterpret_cast<UINT_PTR>(GetPropW(window, L"__wine_x11_whole_window"));
            std::cout << "x\t" << id << '\n';
        }
        else
        {
            std::cout << "failed\tunknown command " << verb << '\n';
        }
    }

private:
    void Next(DWORD timeout)
    {
        const ULONGLONG deadline = GetTickCount64() + timeout;
        for (;;)
        {
            for (const HWND window : TopLevelWindows())
            {
                if (IsUserWindow(window) && m_reported.insert(window).second)
                {
                    DWORD process = 0;
                    GetWindowThreadProcessId(window, &process);
                    std::cout << "window\t" << Number(window) << '\t' << process << '\t'
                              << Field(ProgramOf(process)) << '\t' << Field(ClassOf(window)) << '\t'
                              << Field(TextOf(window)) << '\n';
                    return;
                }
            }
            // Windows may reuse a handle for another window.
            std::erase_if(m_reported,
                          [](HWND window) { return !IsWindow(window) || !IsWindowVisible(window); });
            if (GetTickCount64() >= deadline)
            {
                return;
            }
            Sleep(kPollInterval);
        }
    }

    static void Read(HWND window)
    {
        std::cout << "caption\t" << Field(TextOf(window)) << '\n';
        for (const HWND control : ControlsOf(window))
        {
            std::cout << "control\t" << (GetDlgCtrlID(control) & 0xFFFF) << '\t' << Field(ClassOf(control))
                      << '\t' << (IsWindowEnabled(control) ? "enabled" : "disabled") << '\t'
                      << (IsWindowVisible(control) ? "shown" : "hidden") << '\t' << Field(TextOf(control))
                      << '\n';
        }
    }

    static bool Press(HWND window, const std::string& id)
    {
        for (const HWND control : ControlsOf(window))
        {
            const bool meant =
                id == "button" ? ClassOf(control) == L"Button" : std::to_string(GetDlgCtrlID(control)) == id;
            if (meant && IsWindowVisible(control))
            {
                // Posted, because the click may open a modal window and this program must not wait for it.
                return IsWindowEnabled(control) && PostMessageW(control, BM_CLICK, 0, 0);
            }
        }
        return false;
    }

    static bool Await(HWND window, int id, const std::string& text, DWORD timeout)
    {
        const ULONGLONG deadline = GetTickCount64() + timeout;
        while (IsWindow(window) && GetTickCount64() < deadline)
        {
            const HWND control = GetDlgItem(window, id);
            if (control != nullptr && Field(TextOf(control)) == text)
            {
                return true;
            }
            Sleep(kPollInterval);
        }
        return false;
    }

    std::set<HWND> m_reported;
};

} // namespace

int wmain()
{
    CDesktopUser user;
    for (std::string line; std::getline(std::cin, line);)
    {
        std::istringstream command(line);
        user.Execute(command);
        std::cout << ".\n" << std::flush;
    }
    return 0;
}
