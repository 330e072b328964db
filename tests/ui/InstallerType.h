// A type of file that can be started, in the place of an installer.
#pragma once

#include "harness/Registry.h"
#include "harness/Waiting.h"

#include <string>

namespace orva::test
{

/// Appended to the name of a file that has been started.
inline constexpr wchar_t kStartedMark[] = L".started";

/// Registers a file type with the verb that the installer is started with. Its command ends at once and
/// leaves the file's name with kStartedMark beside it, which shows that it ran.
class CInstallerType
{
public:
    CInstallerType();

    /// Waits until a file in this folder or below has been started and its command has ended.
    static bool WaitForStart(const std::wstring& folder, DWORD timeout = kPatience);

private:
    CRegistryTreeGuard m_keptExtension;
    CRegistryTreeGuard m_keptType;
    CRegistryValue m_type;
    CRegistryValue m_command;
};

} // namespace orva::test
