#include "harness/ProcessRunner.h"

#include "harness/CommandLine.h"
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
// The pipe is read when somebody asks for the output or waits for the end. A program must not have to wait
// for that.
constexpr DWORD kPipeSize = 1 << 20;

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

// The process, the pipe with its output and, with `debug`, a thread that starts it and receives its debug
// events.
class CChildProcess::Impl
{
public:
    explicit Impl(const CProcessOptions& options) : m_options(options), m_started(MakeEvent())
    {
        SECURITY_ATTRIBUTES inherit = {sizeof inherit, nullptr, TRUE};
        HANDLE readEnd = nullptr;
        HANDLE writeEnd = nullptr;
        if (!CreatePipe(&readEnd, &writeEnd, &inherit, kPipeSize))
        {
            throw std::runtime_error("cannot make a pipe");
        }
        m_pipe.reset(readEnd);
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
    }

    ~Impl()
    {
        if (IsRunning())
        {
            End();
        }
        WaitForDebugger();
    }

    bool IsRunning() const { return WaitForSingleObject(m_process.get(), 0) == WAIT_TIMEOUT; }

    std::optional<DWORD> WaitForExit(DWORD timeout)
    {
        const auto hasEnded = [this] {
            Output();
            return !IsRunning();
        };
        if (!WaitUntil(hasEnded, timeout))
        {
            return std::nullopt;
        }
        WaitForDebugger();
        DWORD code = 0;
        GetExitCodeProcess(m_process.get(), &code);
        return code;
    }

    std::string Output()
    {
        const std::lock_guard lock(mutex);
        // Asked before each read: a child of the program may hold the pipe open.
        for (DWORD size = 0; PeekNamedPipe(m_pipe.get(), nullptr, 0, nullptr, &size, nullptr) && size > 0;)
        {
            std::string bytes(size, '\0');
            ReadFile(m_pipe.get(), bytes.data(), size, &size, nullptr);
            m_output += bytes.substr(0, size);
        }
        return m_output;
    }

    void End()
    {
        TerminateProcess(m_process.get(), kEndedCode);
        WaitForSingleObject(m_process.get(), kPatience);
    }

    DWORD id = 0;
    std::mutex mutex;
    std::vector<std::string> debugLines;

private:
    static unsigned __stdcall DebugEntry(void* self)
    {
        static_cast<Impl*>(self)->Debug();
        return 0;
    }

    void Create()
    {
        SECURITY_ATTRIBUTES inherit = {sizeof inherit, nullptr, TRUE};
        const UniqueHandle nullDevice(CreateFileW(L"NUL", GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                                  &inherit, OPEN_EXISTING, 0, nullptr));
        // Only these. Otherwise a child could inherit this process's own output, and the reader of that
        // output would wait until the child ends.
        HANDLE inherited[] = {nullDevice.get(), m_writeEnd.get()};
        SIZE_T size = 0;
        InitializeProcThreadAttributeList(nullptr, 1, 0, &size);
        std::vector<BYTE> bytes(size);
        const auto attributes = reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(bytes.data());
        InitializeProcThreadAttributeList(attributes, 1, 0, &size);
        UpdateProcThreadAttribute(attributes, 0, PROC_THREAD_ATTRIBUTE_HANDLE_LIST, inherited,
                                  sizeof inherited, nullptr, nullptr);
        STARTUPINFOEXW startup = {};
        startup.StartupInfo.cb = sizeof startup;
        startup.StartupInfo.dwFlags = STARTF_USESTDHANDLES;
        startup.StartupInfo.hStdInput = nullDevice.get();
        startup.StartupInfo.hStdOutput = m_writeEnd.get();
        startup.StartupInfo.hStdError = m_writeEnd.get();
        startup.lpAttributeList = attributes;
        std::wstring environment = EnvironmentBlock(m_options.environment);
        PROCESS_INFORMATION information = {};
        DWORD flags = CREATE_UNICODE_ENVIRONMENT | EXTENDED_STARTUPINFO_PRESENT | CREATE_SUSPENDED;
        if (m_options.debug)
        {
            flags |= DEBUG_ONLY_THIS_PROCESS;
        }
        m_error = StartProcess(
            JoinCommandLine(m_options.program, m_options.arguments), TRUE, flags, environment.data(),
            m_options.folder.empty() ? nullptr : m_options.folder.c_str(), startup.StartupInfo, information);
        DeleteProcThreadAttributeList(attributes);
        if (m_error == ERROR_SUCCESS)
        {
            m_process.reset(information.hProcess);
            AssignProcessToJobObject(ChildrensJob(), information.hProcess);
            ResumeThread(information.hThread);
            CloseHandle(information.hThread);
            id = information.dwProcessId;
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

    void WaitForDebugger()
    {
        if (m_debugger)
        {
            WaitForSingleObject(m_debugger.get(), kPatience);
        }
    }

    const CProcessOptions m_options;
    UniqueHandle m_started;
    UniqueHandle m_pipe;
    UniqueHandle m_writeEnd;
    UniqueHandle m_process;
    UniqueHandle m_debugger;
    std::string m_output;
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
    return m_impl->Output();
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

DWORD StartProcess(std::wstring commandLine, BOOL inheritsHandles, DWORD flags, void* environment,
                   const wchar_t* folder, STARTUPINFOW& startup, PROCESS_INFORMATION& information)
{
    DWORD error = ERROR_INTERNAL_ERROR;
    for (int attempt = 0; attempt < kStartAttempts && error == ERROR_INTERNAL_ERROR; ++attempt)
    {
        const BOOL isStarted = CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, inheritsHandles,
                                              flags, environment, folder, &startup, &information);
        error = isStarted ? ERROR_SUCCESS : GetLastError();
    }
    return error;
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
