// Demonstration installer: what ./run publishes for download. It installs nothing; it shows a window and
// leaves a trace file beside itself, so that its start can be proved.
//
// A language behind the last hyphen of its file name (OrvaSetup-1.3.0-de.exe) sets the window's
// texts. The trace file is the program's path with ".trace.txt" appended, in UTF-8: its path, its command
// line, and "closed" once the window has gone.

#include <windows.h>

#include <cstdio>
#include <string>
#include <string_view>

namespace
{

constexpr wchar_t kClassName[] = L"OrvaDemoInstaller";
constexpr int kCloseButton = 1;
constexpr UINT_PTR kCloseTimer = 1;
// The window closes by itself, so that nothing is left over if nobody is there.
constexpr UINT kShownFor = 30'000;

struct CTexts
{
    const wchar_t* language;
    const wchar_t* caption;
    const wchar_t* text;
    const wchar_t* close;
};

constexpr CTexts kTexts[] = {
    {L"en", L"ORVA Connector Setup",
     L"The installer was downloaded and started.\n\nThis is a demonstration: nothing is installed.",
     L"Close"},
    {L"de", L"ORVA Connector Setup",
     L"Das Installationsprogramm wurde heruntergeladen und gestartet.\n\nDies ist eine Vorf\u00FChrung: Es "
     L"wird "
     L"nichts installiert.",
     L"Schlie\u00DFen"},
    {L"es", L"Instalaci\u00F3n de ORVA Connector",
     L"El instalador se ha descargado y se ha iniciado.\n\nEsto es una demostraci\u00F3n: no se instala "
     L"nada.",
     L"Cerrar"},
    {L"tr", L"ORVA Connector Kurulumu",
     L"Y\u00FCkleyici indirildi ve ba\u015Flat\u0131ld\u0131.\n\nBu bir g\u00F6sterimdir: hi\u00E7bir "
     L"\u015Fey "
     L"y\u00FCklenmez.",
     L"Kapat"},
};

std::wstring OwnPath()
{
    std::wstring path(32'768, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
    return path;
}

const CTexts& TextsFor(std::wstring_view path)
{
    const std::wstring_view stem = path.substr(0, path.rfind(L'.'));
    const std::wstring_view language = stem.substr(stem.rfind(L'-') + 1);
    for (const CTexts& texts : kTexts)
    {
        if (language == texts.language)
        {
            return texts;
        }
    }
    return kTexts[0];
}

// Adds a line to the trace file. A failure shows as the line's absence.
void Trace(const std::wstring& line)
{
    const HANDLE file = CreateFileW((OwnPath() + L".trace.txt").c_str(), FILE_APPEND_DATA, FILE_SHARE_READ,
                                    nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
    {
        return;
    }
    std::string text(line.size() * 3, '\0');
    text.resize(static_cast<size_t>(WideCharToMultiByte(CP_UTF8, 0, line.data(),
                                                        static_cast<int>(line.size()), text.data(),
                                                        static_cast<int>(text.size()), nullptr, nullptr)));
    text += "\r\n";
    DWORD written = 0;
    WriteFile(file, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
    CloseHandle(file);
}

LRESULT CALLBACK WindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message)
    {
    case WM_COMMAND:
    case WM_TIMER:
        DestroyWindow(window);
        return 0;
    case WM_CTLCOLORSTATIC:
        return reinterpret_cast<LRESULT>(GetStockObject(WHITE_BRUSH));
    case WM_DESTROY:
        PostQuitMessage(0);
        return 0;
    default:
        return DefWindowProcW(window, message, wParam, lParam);
    }
}

HWND MakeWindow(HINSTANCE instance, const CTexts& texts)
{
    WNDCLASSEXW windowClass = {};
    windowClass.cbSize = sizeof(windowClass);
    windowClass.lpfnWndProc = WindowProcedure;
    windowClass.hInstance = instance;
    windowClass.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    windowClass.hbrBackground = static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH));
    windowClass.lpszClassName = kClassName;
    RegisterClassExW(&windowClass);

    const HWND window =
        CreateWindowExW(WS_EX_DLGMODALFRAME, kClassName, texts.caption, WS_POPUP | WS_CAPTION | WS_SYSMENU,
                        360, 280, 440, 190, nullptr, nullptr, instance, nullptr);
    const HWND text = CreateWindowExW(0, L"STATIC", texts.text, WS_CHILD | WS_VISIBLE, 20, 20, 390, 80,
                                      window, nullptr, instance, nullptr);
    const HWND close = CreateWindowExW(
        0, L"BUTTON", texts.close, WS_CHILD | WS_VISIBLE | WS_TABSTOP | BS_DEFPUSHBUTTON, 310, 112, 100, 26,
        window, reinterpret_cast<HMENU>(INT_PTR{kCloseButton}), instance, nullptr);
    const auto font = reinterpret_cast<WPARAM>(GetStockObject(DEFAULT_GUI_FONT));
    SendMessageW(text, WM_SETFONT, font, FALSE);
    SendMessageW(close, WM_SETFONT, font, FALSE);
    return window;
}

} // namespace

int WINAPI wWinMain(HINSTANCE instance, HINSTANCE, PWSTR, int show)
{
    const std::wstring path = OwnPath();
    const HWND window = MakeWindow(instance, TextsFor(path));
    if (window == nullptr)
    {
        return 1;
    }
    Trace(L"path " + path);
    Trace(std::wstring(L"command line ") + GetCommandLineW());
    ShowWindow(window, show);
    SetForegroundWindow(window);
    SetTimer(window, kCloseTimer, kShownFor, nullptr);
    for (MSG message = {}; GetMessageW(&message, nullptr, 0, 0) > 0;)
    {
        if (!IsDialogMessageW(window, &message))
        {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
    }
    Trace(L"closed");
    return 0;
}
