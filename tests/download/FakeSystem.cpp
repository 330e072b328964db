#include "download/FakeSystem.h"

#include "fixture/UserTexts.h"
#include "ui/UpdateDownloadDlg.h"

#include <process.h>
#include <shellapi.h>

#include <algorithm>
#include <atomic>

namespace orva::test
{
namespace
{

CFakeSystem* g_system = nullptr;

// The function of Windows that `fake` stands for. Looked up once: a look-up waits for threads that end, and
// those call some of these functions.
template <auto fake> auto Real(const wchar_t* module, const char* name)
{
    using Function = decltype(fake);
    static constinit std::atomic<Function> s_function = nullptr;
    if (s_function == nullptr)
    {
        s_function = reinterpret_cast<Function>(
            reinterpret_cast<void (*)()>(GetProcAddress(GetModuleHandleW(module), name)));
    }
    return s_function.load();
}

} // namespace

struct CFakeSystem::Functions
{
    static bool IsWorker()
    {
        return g_system != nullptr && GetCurrentThreadId() == g_system->m_winInet.Caller();
    }

    static std::string Name(HWND window)
    {
        return window == nullptr                             ? "null"
               : window == g_system->m_owner                 ? "owner"
               : GetDlgItem(window, kProgressBar) != nullptr ? "dialog"
                                                             : "another window";
    }

    // A call through its gates. `work` does it, without the gates' lock, and says whether it succeeded.
    static bool Run(const char* function, const std::string& arguments, const std::function<bool()>& work)
    {
        CGatedCall call(g_system->m_gates, function);
        call.Record(arguments);
        call.Pass(CallStage::Before);
        DWORD error = call.Failure();
        call.Unlocked([&] {
            if (!work() && error == 0)
            {
                error = GetLastError();
            }
        });
        if (error != 0)
        {
            call.RecordResult("error " + std::to_string(error));
        }
        call.Pass(CallStage::After);
        SetLastError(error);
        return error == 0;
    }

    static BOOL WINAPI Write(HANDLE file, LPCVOID data, DWORD size, LPDWORD written, LPOVERLAPPED overlapped)
    {
        const auto write = [&] {
            return Real<&Write>(L"kernel32.dll", "WriteFile")(file, data, size, written, overlapped) != FALSE;
        };
        return IsWorker() ? Run("WriteFile", std::to_string(size), write) : write();
    }

    static BOOL WINAPI Close(HANDLE handle)
    {
        const auto close = [&] { return Real<&Close>(L"kernel32.dll", "CloseHandle")(handle) != FALSE; };
        return IsWorker() && GetFileType(handle) == FILE_TYPE_DISK ? Run("CloseHandle", "file", close)
                                                                   : close();
    }

    static BOOL WINAPI Post(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
    {
        const auto post = [&] {
            return Real<&Post>(L"user32.dll", "PostMessageW")(window, message, wParam, lParam) != FALSE;
        };
        return IsWorker() ? Run("PostMessageW",
                                Name(window) + ", WM_APP + " + std::to_string(message - WM_APP) + ", " +
                                    std::to_string(wParam) + ", " + std::to_string(lParam),
                                post)
                          : post();
    }

    static uintptr_t __cdecl BeginThread(void* security, unsigned stack, unsigned(__stdcall* start)(void*),
                                         void* argument, unsigned flags, unsigned* id)
    {
        uintptr_t thread = 0;
        const auto begin = [&] {
            thread = Real<&BeginThread>(L"msvcrt.dll", "_beginthreadex")(security, stack, start, argument,
                                                                         flags, id);
            return true;
        };
        if (g_system == nullptr || !g_system->countsThreads)
        {
            begin();
            return thread;
        }
        CGatedCall call(g_system->m_gates, "_beginthreadex");
        call.Record("");
        const DWORD error = call.Failure();
        if (error != 0)
        {
            call.RecordResult("error " + std::to_string(error));
            return 0;
        }
        begin();
        return thread;
    }

    static DWORD WINAPI TickCount()
    {
        if (!IsWorker())
        {
            return Real<&TickCount>(L"kernel32.dll", "GetTickCount")();
        }
        Run("GetTickCount", "", [] { return true; });
        return g_system->ticks.at(std::min(g_system->m_tick++, g_system->ticks.size() - 1));
    }

    static void WINAPI Wait(DWORD milliseconds)
    {
        // Sleep(0) is the thread library's.
        if (g_system == nullptr || GetCurrentThreadId() != g_system->m_thread || milliseconds == 0)
        {
            Real<&Wait>(L"kernel32.dll", "Sleep")(milliseconds);
            return;
        }
        Run("Sleep", std::to_string(milliseconds), [] {
            if (g_system->onSleep)
            {
                g_system->onSleep();
            }
            return true;
        });
    }

    static int WINAPI Box(HWND owner, LPCWSTR text, LPCWSTR caption, UINT type)
    {
        int button = IDOK;
        const auto show = [&] {
            button = Real<&Box>(L"user32.dll", "MessageBoxW")(owner, text, caption, type);
            return true;
        };
        if (g_system == nullptr)
        {
            show();
            return button;
        }
        Run("MessageBoxW",
            Name(owner) + ", " + ShowText(text) + ", " + ShowText(caption) + ", " + ShowHex(type),
            [&] { return !g_system->showsBoxes || show(); });
        return button;
    }

    static BOOL WINAPI Execute(SHELLEXECUTEINFOW* info)
    {
        if (g_system == nullptr)
        {
            return Real<&Execute>(L"shell32.dll", "ShellExecuteExW")(info);
        }
        return Run("ShellExecuteExW",
                   std::to_string(info->cbSize) + ", " + ShowHex(info->fMask) + ", " + Name(info->hwnd) +
                       ", " + ShowText(info->lpVerb) + ", " + ShowText(info->lpFile) + ", " +
                       ShowText(info->lpParameters) + ", " + ShowText(info->lpDirectory) + ", " +
                       std::to_string(info->nShow),
                   [] { return true; });
    }
};

CFakeSystem::CFakeSystem(CCallGates& gates, CFakeWinInet& winInet, HWND owner)
    : m_gates(gates), m_winInet(winInet), m_owner(owner), m_thread(GetCurrentThreadId())
{
    g_system = this;
}

CFakeSystem::~CFakeSystem()
{
    g_system = nullptr;
}

// What the linker looks for on behalf of every object that calls these functions.
extern "C"
{
    decltype(&_beginthreadex) g_beginThread asm("__imp__beginthreadex") =
        &CFakeSystem::Functions::BeginThread;
    decltype(&WriteFile) g_writeFile asm("__imp_WriteFile") = &CFakeSystem::Functions::Write;
    decltype(&CloseHandle) g_closeHandle asm("__imp_CloseHandle") = &CFakeSystem::Functions::Close;
    decltype(&PostMessageW) g_postMessage asm("__imp_PostMessageW") = &CFakeSystem::Functions::Post;
    decltype(&GetTickCount) g_getTickCount asm("__imp_GetTickCount") = &CFakeSystem::Functions::TickCount;
    decltype(&Sleep) g_sleep asm("__imp_Sleep") = &CFakeSystem::Functions::Wait;
    decltype(&MessageBoxW) g_messageBox asm("__imp_MessageBoxW") = &CFakeSystem::Functions::Box;
    decltype(&ShellExecuteExW) g_shellExecute asm("__imp_ShellExecuteExW") = &CFakeSystem::Functions::Execute;
}

} // namespace orva::test
