#include "long_run/InstallerCounter.h"

namespace orva::test
{

std::atomic<int> CInstallerCounter::s_count = 0;

CInstallerCounter::CInstallerCounter(HMODULE module)
    : m_execute(module, "shell32.dll", "ShellExecuteExW", &OnShellExecuteEx)
{
    s_count = 0;
}

BOOL WINAPI CInstallerCounter::OnShellExecuteEx(SHELLEXECUTEINFOW*)
{
    ++s_count;
    return TRUE;
}

} // namespace orva::test
