#include "setup/EndedProcess.h"

#include "harness/CommandLine.h"
#include "harness/ProcessRunner.h"
#include "harness/Text.h"
#include "harness/Waiting.h"

#include <bit>
#include <map>
#include <stdexcept>

namespace orva::test
{
namespace
{

constexpr BYTE kBreakpoint = 0xCC;
constexpr DWORD kTrapFlag = 0x100;
constexpr UINT kEndedCode = 0xE0D1;

// A debugger with one breakpoint.
class CDebugger
{
public:
    CDebugger(const std::wstring& program, const std::vector<std::wstring>& arguments,
              const std::string& function, const std::function<bool()>& isTime)
        : m_isTime(isTime)
    {
        // The system's libraries have the same addresses in every process.
        m_address = std::bit_cast<BYTE*>(GetProcAddress(GetModuleHandleW(L"kernel32.dll"), function.c_str()));
        STARTUPINFOW startup = {};
        startup.cb = sizeof startup;
        PROCESS_INFORMATION information = {};
        if (m_address == nullptr ||
            StartProcess(JoinCommandLine(program, arguments), FALSE, DEBUG_ONLY_THIS_PROCESS, nullptr,
                         nullptr, startup, information) != ERROR_SUCCESS)
        {
            throw std::runtime_error("cannot start " + Utf8(program) + " until " + function);
        }
        CloseHandle(information.hThread);
        m_process.reset(information.hProcess);
    }

    // Whether the program was ended at the call.
    bool Run()
    {
        for (DEBUG_EVENT event = {}; WaitForDebugEvent(&event, kPatience);)
        {
            const DWORD answer = Handle(event);
            ContinueDebugEvent(event.dwProcessId, event.dwThreadId, answer);
            if (event.dwDebugEventCode == EXIT_PROCESS_DEBUG_EVENT)
            {
                return m_isEnded;
            }
        }
        TerminateProcess(m_process.get(), kEndedCode);
        throw std::runtime_error("the program neither ended nor did anything");
    }

private:
    DWORD Handle(const DEBUG_EVENT& event)
    {
        switch (event.dwDebugEventCode)
        {
        case CREATE_PROCESS_DEBUG_EVENT:
            CloseHandle(event.u.CreateProcessInfo.hFile);
            m_threads[event.dwThreadId] = event.u.CreateProcessInfo.hThread;
            return DBG_CONTINUE;
        case CREATE_THREAD_DEBUG_EVENT:
            m_threads[event.dwThreadId] = event.u.CreateThread.hThread;
            return DBG_CONTINUE;
        case LOAD_DLL_DEBUG_EVENT:
            CloseHandle(event.u.LoadDll.hFile);
            return DBG_CONTINUE;
        case EXCEPTION_DEBUG_EVENT:
            return HandleException(event.u.Exception.ExceptionRecord, m_threads[event.dwThreadId]);
        default:
            return DBG_CONTINUE;
        }
    }

    DWORD HandleException(const EXCEPTION_RECORD& exception, HANDLE thread)
    {
        if (exception.ExceptionCode == EXCEPTION_SINGLE_STEP)
        {
            // Behind the call's first instruction.
            Write(kBreakpoint);
            return DBG_CONTINUE;
        }
        if (exception.ExceptionCode != EXCEPTION_BREAKPOINT)
        {
            return DBG_EXCEPTION_NOT_HANDLED;
        }
        if (exception.ExceptionAddress != m_address)
        {
            // The system's own, when the program's libraries are loaded.
            ReadProcessMemory(m_process.get(), m_address, &m_original, 1, nullptr);
            Write(kBreakpoint);
            return DBG_CONTINUE;
        }
        if (m_isTime())
        {
            m_isEnded = true;
            TerminateProcess(m_process.get(), kEndedCode);
            return DBG_CONTINUE;
        }
        Write(m_original);
        CONTEXT context = {};
        context.ContextFlags = CONTEXT_CONTROL;
        GetThreadContext(thread, &context);
        context.Rip = reinterpret_cast<DWORD64>(m_address);
        context.EFlags |= kTrapFlag;
        SetThreadContext(thread, &context);
        return DBG_CONTINUE;
    }

    void Write(BYTE byte)
    {
        WriteProcessMemory(m_process.get(), m_address, &byte, 1, nullptr);
        FlushInstructionCache(m_process.get(), m_address, 1);
    }

    const std::function<bool()>& m_isTime;
    bool m_isEnded = false;
    BYTE* m_address = nullptr;
    BYTE m_original = 0;
    UniqueHandle m_process;
    // The system closes these.
    std::map<DWORD, HANDLE> m_threads;
};

} // namespace

bool EndAtCall(const std::wstring& program, const std::vector<std::wstring>& arguments,
               const std::string& function, const std::function<bool()>& isTime)
{
    return CDebugger(program, arguments, function, isTime).Run();
}

} // namespace orva::test
