#include "forecast/ShownByAddIn.h"

#include "fixture/UserTexts.h"
#include "harness/WindowDriver.h"
#include "support/ExceptionGuard.h"
#include "update/UpdateCheck.h"

#include <shellapi.h>

namespace orva::test
{
namespace
{

constexpr char kUser[] = "USER32.dll";
constexpr char kKernel[] = "KERNEL32.dll";
constexpr char kShell[] = "SHELL32.dll";

using CreateDialogFunction = HWND WINAPI(HINSTANCE, LPCDLGTEMPLATEW, HWND, DLGPROC, LPARAM);
using SetTextFunction = BOOL WINAPI(HWND, LPCWSTR);
using SleepFunction = void WINAPI(DWORD);

struct State
{
    publishing::CForecast shown;
    std::wstring description;
    int answer = 0;
    DWORD thread = GetCurrentThreadId();
    CreateDialogFunction* createDialog = nullptr;
    SetTextFunction* setText = nullptr;
    SleepFunction* sleep = nullptr;
};

State g_state;

int WINAPI NoteMessage(HWND, LPCWSTR text, LPCWSTR, UINT)
{
    publishing::CForecast& shown = g_state.shown;
    (shown.offer ? shown.afterInstall : shown.messages).emplace_back(text);
    return IDOK;
}

BOOL WINAPI NoteStart(SHELLEXECUTEINFOW*)
{
    g_state.shown.isDownloaded = true;
    return TRUE;
}

// The download shows its end for a second.
void WINAPI SleepElsewhere(DWORD milliseconds)
{
    if (GetCurrentThreadId() != g_state.thread)
    {
        g_state.sleep(milliseconds);
    }
}

// Windows that are never mapped take a tenth of the time.
BOOL WINAPI DoNotShow(HWND, int)
{
    return FALSE;
}

// A line for the debugger costs several calls of the system's.
void WINAPI DoNotTrace(LPCSTR) {}

// The control would give its text back with other line ends.
BOOL WINAPI NoteText(HWND window, LPCWSTR text)
{
    if (GetDlgCtrlID(window) == kDescriptionText)
    {
        g_state.description = text;
    }
    return g_state.setText(window, text);
}

HWND WINAPI AnswerOffer(HINSTANCE module, LPCDLGTEMPLATEW dialogTemplate, HWND owner, DLGPROC procedure,
                        LPARAM parameter)
{
    const HWND dialog = g_state.createDialog(module, dialogTemplate, owner, procedure, parameter);
    if (ChildById(dialog, kAvailableText) != nullptr)
    {
        // "Available version: 1.3.0".
        const std::wstring version = ChildText(dialog, kAvailableText);
        g_state.shown.offer = {version.substr(version.rfind(L' ') + 1), g_state.description};
        PostMessageW(dialog, WM_COMMAND, static_cast<WPARAM>(g_state.answer), 0);
    }
    return dialog;
}

} // namespace

CShownByAddIn::CShownByAddIn()
    : m_message(GetModuleHandleW(nullptr), kUser, "MessageBoxW", &NoteMessage),
      m_dialog(GetModuleHandleW(nullptr), kUser, "CreateDialogIndirectParamW", &AnswerOffer),
      m_text(GetModuleHandleW(nullptr), kUser, "SetWindowTextW", &NoteText),
      m_show(GetModuleHandleW(nullptr), kUser, "ShowWindow", &DoNotShow),
      m_trace(GetModuleHandleW(nullptr), kKernel, "OutputDebugStringA", &DoNotTrace),
      m_sleep(GetModuleHandleW(nullptr), kKernel, "Sleep", &SleepElsewhere),
      m_execute(GetModuleHandleW(nullptr), kShell, "ShellExecuteExW", &NoteStart)
{
    g_state.createDialog = m_dialog.Original<CreateDialogFunction>();
    g_state.setText = m_text.Original<SetTextFunction>();
    g_state.sleep = m_sleep.Original<SleepFunction>();
}

CShownByAddIn::~CShownByAddIn() = default;

publishing::CForecast CShownByAddIn::Run(const std::string& file, publishing::Trigger trigger,
                                         bool isInstalled)
{
    CCallGates gates;
    CFakeWinInet winInet(gates);
    winInet.headers = {{HTTP_QUERY_STATUS_CODE, L"200"},
                       {HTTP_QUERY_DATE, L"Thu, 20 Jan 2011 14:03:07 GMT"},
                       {HTTP_QUERY_CONTENT_TYPE, L"text/plain"}};
    winInet.body = {file};
    g_state.shown = {};
    g_state.answer = isInstalled ? kInstallButton : kLaterButton;
    if (trigger == publishing::Trigger::Start)
    {
        RunGuarded("start", [] { CheckForUpdate(nullptr, true); });
    }
    else
    {
        CheckForUpdateOnClick("request", nullptr);
    }
    return g_state.shown;
}

} // namespace orva::test
