// Counts the programs that a module starts, and does not start them.
#pragma once

#include "harness/ImportHook.h"

#include <shellapi.h>

#include <atomic>

namespace orva::test
{

/// Counts the module's calls of ShellExecuteExW during its lifetime, and starts no installer. One object at a
/// time.
class CInstallerCounter
{
public:
    explicit CInstallerCounter(HMODULE module);
    /// The count of the latest object.
    static int Count() { return s_count; }

private:
    static BOOL WINAPI OnShellExecuteEx(SHELLEXECUTEINFOW* execute);

    static std::atomic<int> s_count;

    CImportHook m_execute;
};

} // namespace orva::test
