// Starts Windows programs with captured output, a deadline and, if asked for, their debugger output.
#pragma once

#include "harness/Waiting.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace orva::test
{

/// How to start a program.
struct CProcessOptions
{
    /// Path of the program, or a name that the search path finds.
    std::wstring program;
    std::vector<std::wstring> arguments = {};
    /// Changes to this process's environment; an empty value removes the variable.
    std::map<std::wstring, std::wstring> environment = {};
    std::wstring folder = {};
    /// Runs the program under a debugger that collects its OutputDebugString calls.
    bool debug = false;
};

/// A running program. It and its children end with this process at the latest. Standard output and standard
/// error are captured together; standard input is empty.
class CChildProcess
{
public:
    /// Starts the program. Throws std::runtime_error if that fails.
    explicit CChildProcess(const CProcessOptions& options);
    /// Terminates the program if it still runs.
    ~CChildProcess();
    CChildProcess(const CChildProcess&) = delete;
    CChildProcess& operator=(const CChildProcess&) = delete;

    DWORD Id() const;
    bool IsRunning() const;
    /// The exit code, or nothing if the program still runs after `timeout` milliseconds.
    std::optional<DWORD> WaitForExit(DWORD timeout = kPatience);
    /// What the program has written so far; all of it once WaitForExit has returned a code.
    std::string Output() const;
    /// The texts of its OutputDebugString calls.
    std::vector<std::string> DebugLines() const;
    /// Terminates the program.
    void End();

private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

/// Calls CreateProcessW and returns ERROR_SUCCESS or Windows' code. Wine 8 fails now and then with
/// ERROR_INTERNAL_ERROR, once in some ten thousand times, and succeeds at the next attempt; so this tries
/// three times.
DWORD StartProcess(std::wstring commandLine, BOOL inheritsHandles, DWORD flags, void* environment,
                   const wchar_t* folder, STARTUPINFOW& startup, PROCESS_INFORMATION& information);

struct CProcessResult
{
    DWORD exitCode = 0;
    std::string output;
};

/// Runs a program to its end. Throws std::runtime_error if it cannot be started or does not end in time.
CProcessResult RunProcess(const std::wstring& program, const std::vector<std::wstring>& arguments,
                          DWORD timeout = kPatience);

} // namespace orva::test
