#include "harness/Watchdog.h"

#include "harness/WindowDriver.h"

#include <process.h>

#include <atomic>
#include <cstdio>
#include <cstring>
#include <mutex>

namespace orva::test
{

namespace
{

// Milliseconds between two checks of the deadline.
constexpr DWORD kLookInterval = 200;

struct State
{
    std::mutex mutex;
    std::string test = "(between two tests)";
    std::string part;
    // Tick count of the running test's deadline; 0 while none runs.
    std::atomic<ULONGLONG> end = 0;
};

State& WatchdogState()
{
    // Never destroyed: the watchdog's thread may still use it while the process ends.
    static State* const state = new State;
    return *state;
}

void ReportHang()
{
    State& state = WatchdogState();
    {
        const std::lock_guard lock(state.mutex);
        std::fprintf(stderr, "\n[   HANG   ] %s exceeded its time.\n[   HANG   ] Last part: %s\n",
                     state.test.c_str(), state.part.empty() ? "(none noted)" : state.part.c_str());
    }
    std::fflush(stderr);
    std::fflush(stdout);
    // Last, because asking a window for its text may hang too.
    std::fprintf(stderr, "Windows:\n%s", DescribeWindows().c_str());
    std::fflush(stderr);
}

unsigned __stdcall Watch(void*)
{
    const State& state = WatchdogState();
    for (;;)
    {
        Sleep(kLookInterval);
        const ULONGLONG end = state.end;
        if (end != 0 && GetTickCount64() >= end)
        {
            ReportHang();
            TerminateProcess(GetCurrentProcess(), kHangExitCode);
        }
    }
}

class CWatchdogListener : public testing::EmptyTestEventListener
{
public:
    void OnTestStart(const testing::TestInfo& info) override
    {
        State& state = WatchdogState();
        {
            const std::lock_guard lock(state.mutex);
            state.test = std::string(info.test_suite_name()) + "." + info.name();
            state.part.clear();
        }
        state.end = GetTickCount64() + kTestDeadline;
    }

    void OnTestPartResult(const testing::TestPartResult& result) override
    {
        NoteTestPart("after the failure at " + std::string(result.file_name() ? result.file_name() : "?") +
                     ":" + std::to_string(result.line_number()));
    }

    void OnTestEnd(const testing::TestInfo&) override { WatchdogState().end = 0; }
};

// An address as "module+offset".
std::string DescribeAddress(const void* address)
{
    HMODULE module = nullptr;
    char text[MAX_PATH + 32];
    if (!GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS |
                                GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                            static_cast<const wchar_t*>(address), &module))
    {
        std::snprintf(text, sizeof text, "%p", address);
        return text;
    }
    char path[MAX_PATH] = "";
    GetModuleFileNameA(module, path, MAX_PATH);
    const char* const name = std::strrchr(path, '\\');
    std::snprintf(text, sizeof text, "%s+0x%llx", name ? name + 1 : path,
                  static_cast<unsigned long long>(static_cast<const char*>(address) -
                                                  reinterpret_cast<const char*>(module)));
    return text;
}

LONG WINAPI ReportCrash(EXCEPTION_POINTERS* pointers)
{
    const EXCEPTION_RECORD& record = *pointers->ExceptionRecord;
    {
        State& state = WatchdogState();
        const std::unique_lock lock(state.mutex, std::try_to_lock);
        std::fprintf(stderr,
                     "\n[  CRASH   ] %s: exception 0x%08lx at %s (thread %lu)\n[  CRASH   ] Last part: %s\n",
                     lock ? state.test.c_str() : "?", static_cast<unsigned long>(record.ExceptionCode),
                     DescribeAddress(record.ExceptionAddress).c_str(),
                     static_cast<unsigned long>(GetCurrentThreadId()), lock ? state.part.c_str() : "?");
    }
    std::fflush(stderr);
    std::fflush(stdout);
    TerminateProcess(GetCurrentProcess(), kCrashExitCode);
    return EXCEPTION_EXECUTE_HANDLER;
}

} // namespace

void SetTestDeadline(DWORD milliseconds)
{
    WatchdogState().end = GetTickCount64() + milliseconds;
}

void NoteTestPart(const std::string& part)
{
    State& state = WatchdogState();
    const std::lock_guard lock(state.mutex);
    state.part = part;
}

testing::TestEventListener* StartWatchdog()
{
    const UniqueHandle thread(
        reinterpret_cast<HANDLE>(_beginthreadex(nullptr, 0, Watch, nullptr, 0, nullptr)));
    return new CWatchdogListener;
}

void InstallCrashReport()
{
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
    SetUnhandledExceptionFilter(ReportCrash);
}

} // namespace orva::test
