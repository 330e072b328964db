#include "harness/ProcessRunner.h"

#include "harness/CommandLine.h"
#include "harness/InheritedHandles.h"
#include "harness/Text.h"

#include <process.h>

#include <mutex>
#include <stdexcept>

namespace orva::test
{

namespace
{

// Exit code of a program that End has terminated.
constexpr UINT kEndedCode = 0xE0D0;
// How often the debugger checks whether its program still runs, in milliseconds.
constexpr DWORD kDebugInterval = 50;

constexpr int kStartAttempts = 3;

// The job of every program started here and of their children. The system ends them all when this process
// ends, for whatever reason.
HANDLE ChildrensJob()
{
    static const HANDLE job = [] {
        const HANDLE created = CreateJobObjectW(nullptr, nullptr);
        JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits = {};
        limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
        SetInformationJobObject(created, JobObjectExtendedLimitInformation, &limits, sizeof limits);
        return created;
    }();
    return job;
}

} // namespace

// The process, a thread that reads its output and, with `debug`, a thread that starts it and receives its
// debug events.
class CChildProcess::Impl
{
public:
    explicit Impl(const CProcessOptions& options) : m_options(options), m_started(MakeEvent())
    {
        SECURITY_ATTRIBUTES inherit = {sizeof inherit, nullptr, TRUE};
        HANDLE readEnd = nullptr;
        HANDLE writeEnd = nullptr;
        if (!CreatePipe(&readEnd, &writeEnd, &inherit, 0))
        {
            throw std::runtime_error("cannot make a pipe");
        }
        m_output.reset(readEnd);
        m_writeEnd.reset(writeEnd);
        SetHandleInformation(readEnd, HANDLE_FLAG_INHERIT, 0);
        if (options.debug)
        {
            // Only the thread that starts the program receives its debug events.
            m_debugger.reset(
                reinterpret_cast<HANDLE>(_beginthreadex(nullptr, 0, DebugEntry, this, 0, nullptr)));
            WaitForSingleObject(m_started.get(), INFINITE);
        }
        else
        {
            Create();
        }
        m_writeEnd.reset();
        if (!m_process)
        {
            WaitForDebugger();
            throw std::runtime_error("cannot start " + Utf8(options.program) + ": " +
                                     std::to_string(m_error));
        }
        m_reader.reset(reinterpret_cast<HANDLE>(_beginthreadex(nullptr, 0, ReadEntry, this, 0, nullptr)));
    }

    ~Impl()
    {
        if (IsRunning())
        {
            End();
        }
        WaitForDebugger();
        CancelReader();
        WaitForSingleObject(m_reader.get(), INFINITE);
    }

    bool IsRunning() const { return WaitForSingleObject(m_process.get(), 0) == WAIT_TIMEOUT; }

    std::optional<DWORD> WaitForExit(DWORD timeout)
    {
        if (WaitForSingleObject(m_process.get(), timeout) != WAIT_OBJECT_0)
        {
            return std::nullopt;
        }
        WaitForDebugger();
        // A grandchild may hold the pipe open, so the reader may never end; by then it has read what the
        // program itself wrote.
        constexpr DWORD kDrainTime = 1'000;
        WaitForSingleObject(m_reader.get(), kDrainTime);
        DWORD code = 0;
        GetExitCodeProcess(m_process.get(), &code);
        return code;
    }

    void End()
    {
        TerminateProcess(m_process.get(), kEndedCode);
        WaitForSingleObject(m_process.get(), kPatience);
    }

    DWORD id = 0;
    mutable std::mutex mutex;
    std::string output;
    std::vector<std::string> debugLines;

private:
    static unsigned __stdcall DebugEntry(void* self)
    {
        static_cast<Impl*>(self)->Debug();
        return 0;
    }

    static unsigned __stdcall ReadEntry(void* self)
    {
        static_cast<Impl*>(self)->Read();
        return 0;
    }

    void Create()
    {
        SECURITY_ATTRIBUTES inherit = {sizeof inherit, nullptr, TRUE};
        const UniqueHandle nullDevice(CreateFileW(L"NUL", GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                                  &inherit, OPEN_EXISTING, 0, nullptr));
        CInheritedHandles inherited({nullDevice.get(), m_writeEnd.get()});
        STARTUPINFOEXW startup = {};
        startup.StartupInfo.cb = sizeof startup;
        startup.StartupInfo.dwFlags = STARTF_USESTDHANDLES;
        startup.StartupInfo.hStdInput = nullDevice.get();
        startup.StartupInfo.hStdOutput = m_writeEnd.get();
        startup.StartupInfo.hStdError = m_writeEnd.get();
        startup.lpAttributeList = inherited.Get();
        std::wstring commandLine = JoinCommandLine(m_options.program, m_options.arguments);
        std::wstring environment = EnvironmentBlock(m_options.environment);
        PROCESS_INFORMATION information = {};
        DWORD flags = CREATE_UNICODE_ENVIRONMENT | EXTENDED_STARTUPINFO_PRESENT | CREATE_SUSPENDED;
        if (m_options.debug)
        {
            flags |= DEBUG_ONLY_THIS_PROCESS;
        }
        // Wine 8 sometimes fails with ERROR_INTERNAL_ERROR and succeeds at the next attempt.
        BOOL isStarted = FALSE;
        for (int attempt = 0; attempt < kStartAttempts && !isStarted; ++attempt)
        {
            isStarted =
                CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, TRUE, flags, environment.data(),
                               m_options.folder.empty() ? nullptr : m_options.folder.c_str(),
                               &startup.StartupInfo, &information);
            if (!isStarted && GetLastError() != ERROR_INTERNAL_ERROR)
            {
                break;
            }
        }
        if (isStarted)
        {
            m_process.reset(information.hProcess);
            AssignProcessToJobObject(ChildrensJob(), information.hProcess);
            ResumeThread(information.hThread);
            CloseHandle(information.hThread);
            id = information.dwProcessId;
        }
        else
        {
            m_error = GetLastError();
        }
    }

    void Debug()
    {
        Create();
        const bool created = static_cast<bool>(m_process);
        SetEvent(m_started.get());
        while (created)
        {
            DEBUG_EVENT event = {};
            if (!WaitForDebugEvent(&event, kDebugInterval))
            {
                if (!IsRunning())
                {
                    return;
                }
                continue;
            }
            DWORD answer = DBG_CONTINUE;
            switch (event.dwDebugEventCode)
            {
            case OUTPUT_DEBUG_STRING_EVENT:
                AddDebugLine(event.u.DebugString);
                break;
            case EXCEPTION_DEBUG_EVENT:
                // The breakpoint at the start is for the debugger; every other exception is the program's
                // own.
                if (event.u.Exception.ExceptionRecord.ExceptionCode != EXCEPTION_BREAKPOINT)
                {
                    answer = DBG_EXCEPTION_NOT_HANDLED;
                }
                break;
            case CREATE_PROCESS_DEBUG_EVENT:
                CloseHandle(event.u.CreateProcessInfo.hFile);
                break;
            case LOAD_DLL_DEBUG_EVENT:
                CloseHandle(event.u.LoadDll.hFile);
                break;
            default:
                break;
            }
            ContinueDebugEvent(event.dwProcessId, event.dwThreadId, answer);
            if (event.dwDebugEventCode == EXIT_PROCESS_DEBUG_EVENT)
            {
                return;
            }
        }
    }

    void AddDebugLine(const OUTPUT_DEBUG_STRING_INFO& info)
    {
        const size_t unit = info.fUnicode ? sizeof(wchar_t) : sizeof(char);
        std::vector<char> bytes(info.nDebugStringLength * unit + unit, '\0');
        SIZE_T count = 0;
        ReadProcessMemory(m_process.get(), info.lpDebugStringData, bytes.data(),
                          info.nDebugStringLength * unit, &count);
        std::string line =
            info.fUnicode ? Utf8(reinterpret_cast<const wchar_t*>(bytes.data())) : bytes.data();
        const std::lock_guard lock(mutex);
        debugLines.push_back(std::move(line));
    }

    void Read()
    {
        char buffer[4'096];
        DWORD count = 0;
        while (ReadFile(m_output.get(), buffer, sizeof buffer, &count, nullptr) && count > 0)
        {
            const std::lock_guard lock(mutex);
            output.append(buffer, count);
        }
    }

    void CancelReader()
    {
        // A grandchild that outlives the program keeps the pipe open and the reader waiting.
        while (WaitForSingleObject(m_reader.get(), kDebugInterval) == WAIT_TIMEOUT)
        {
            CancelSynchronousIo(m_reader.get());
        }
    }

    void WaitForDebugger()
    {
        if (m_debugger)
        {
            WaitForSingleObject(m_debugger.get(), kPatience);
        }
    }

    const CProcessOptions m_options;
    UniqueHandle m_started;
    UniqueHandle m_output;
    UniqueHandle m_writeEnd;
    UniqueHandle m_process;
    UniqueHandle m_debugger;
    UniqueHandle m_reader;
    DWORD m_error = 0;
};

CChildProcess::CChildProcess(const CProcessOptions& options) : m_impl(std::make_unique<Impl>(options)) {}

CChildProcess::~CChildProcess() = default;

DWORD CChildProcess::Id() const
{
    return m_impl->id;
}

bool CChildProcess::IsRunning() const
{
    return m_impl->IsRunning();
}

std::optional<DWORD> CChildProcess::WaitForExit(DWORD timeout)
{
    return m_impl->WaitForExit(timeout);
}

std::string CChildProcess::Output() const
{
    const std::lock_guard lock(m_impl->mutex);
    return m_impl->output;
}

std::vector<std::string> CChildProcess::DebugLines() const
{
    const std::lock_guard lock(m_impl->mutex);
    return m_impl->debugLines;
}

void CChildProcess::End()
{
    m_impl->End();
}

CProcessResult RunProcess(const std::wstring& program, const std::vector<std::wstring>& arguments,
                          DWORD timeout)
{
    CChildProcess process({.program = program, .arguments = arguments});
    const std::optional<DWORD> code = process.WaitForExit(timeout);
    if (!code)
    {
        throw std::runtime_error(Utf8(program) + " did not end in time; its output: " + process.Output());
    }
    return {*code, process.Output()};
}

} // namespace orva::test
