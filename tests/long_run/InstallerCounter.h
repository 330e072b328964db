// Counts a module's starts of programs instead of letting them happen.
#pragma once

#include "harness/ImportHook.h"

#include <shellapi.h>

#include <atomic>

namespace orva::test
{

/// Counts the installers instead of starting them: a few hundred processes are not what is measured here. For
/// its lifetime, one at a time.
class CInstallerCounter
{
public:
    explicit CInstallerCounter(HMODULE module);
    /// How many the last of these has counted.
    static int Count() { return s_count; }

private:
    static BOOL WINAPI OnShellExecuteEx(SHELLEXECUTEINFOW* execute);

    static std::atomic<int> s_count;

    CImportHook m_execute;
};

} // namespace orva::test
