// Eyes and hands of a user at the Windows desktop: finds, reads and works other programs' windows, on
// commands that a script writes to its standard input.
//
// One command a line, answered by lines whose fields are separated by tabs, the last of them a full stop:
//   next MS          the next visible top-level window that was not named before, waited for MS milliseconds:
//                    "window", handle, process id, program, class, caption; nothing if none came
//   read WINDOW      "caption" and its text, then for each control "control", id, class, "enabled" or
//                    "disabled", "shown" or "hidden", text
//   press WINDOW ID  clicks the button with this control id, "button" for the first one shown: "done" or
//   "failed" close WINDOW     asks the window to close, as its close box does: "done" state WINDOW "enabled",
//   "disabled" or "gone" x WINDOW         "x" and the id of the X11 window that shows it, 0 if unknown
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

// GetWindowText does not reach into another process's controls; WM_GETTEXT does.
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

// From the bottom of the Z order, so that of two new windows the one that came first is named first.
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

// Whether a person would call it a window: on the screen, of some size, and not the desktop's own furniture.
bool IsForPeople(HWND window)
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
    // Obeys one command; what comes before the closing full stop.
    void Obey(std::istringstream& command)
    {
        std::string verb;
        command >> verb;
        if (verb == "next")
        {
            DWORD patience = 0;
            command >> patience;
            Next(patience);
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
            DWORD patience = 0;
            std::string text;
            command >> id >> patience >> std::ws;
            std::getline(command, text);
            std::cout << (Await(window, id, text, patience) ? "done\n" : "failed\n");
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
            // Wine's X11 driver keeps it there.
            const auto id = reinterpret_cast<UINT_PTR>(GetPropW(window, L"__wine_x11_whole_window"));
            std::cout << "x\t" << id << '\n';
        }
        else
        {
            std::cout << "failed\tunknown command " << verb << '\n';
        }
    }

private:
    void Next(DWORD patience)
    {
        const ULONGLONG deadline = GetTickCount64() + patience;
        for (;;)
        {
            for (const HWND window : TopLevelWindows())
            {
                if (IsForPeople(window) && m_named.insert(window).second)
                {
                    DWORD process = 0;
                    GetWindowThreadProcessId(window, &process);
                    std::cout << "window\t" << Number(window) << '\t' << process << '\t'
                              << Field(ProgramOf(process)) << '\t' << Field(ClassOf(window)) << '\t'
                              << Field(TextOf(window)) << '\n';
                    return;
                }
            }
            // A handle may be used again for another window.
            std::erase_if(m_named, [](HWND window) { return !IsWindow(window) || !IsWindowVisible(window); });
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
                // Posted: the click may open a modal window, and this program has to go on meanwhile.
                return IsWindowEnabled(control) && PostMessageW(control, BM_CLICK, 0, 0);
            }
        }
        return false;
    }

    static bool Await(HWND window, int id, const std::string& text, DWORD patience)
    {
        const ULONGLONG deadline = GetTickCount64() + patience;
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

    std::set<HWND> m_named;
};

} // namespace

int wmain()
{
    CDesktopUser user;
    for (std::string line; std::getline(std::cin, line);)
    {
        std::istringstream command(line);
        user.Obey(command);
        std::cout << ".\n" << std::flush;
    }
    return 0;
}
