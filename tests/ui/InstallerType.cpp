#include "ui/InstallerType.h"

#include "harness/Files.h"

#include <algorithm>

namespace orva::test
{
namespace
{

constexpr wchar_t kExtensionKey[] = L"Software\\Classes\\.orvatest";
constexpr wchar_t kTypeKey[] = L"Software\\Classes\\OrvaTest.Installer";
constexpr wchar_t kCommandKey[] = L"Software\\Classes\\OrvaTest.Installer\\shell\\runas\\command";

} // namespace

CInstallerType::CInstallerType()
    : m_keptExtension(HKEY_LOCAL_MACHINE, kExtensionKey), m_keptType(HKEY_LOCAL_MACHINE, kTypeKey),
      m_type(HKEY_LOCAL_MACHINE, kExtensionKey, L""), m_command(HKEY_LOCAL_MACHINE, kCommandKey, L"")
{
    m_type.SetString(L"OrvaTest.Installer");
    m_command.SetString(std::wstring(L"cmd.exe /c copy /y nul \"%1") + kStartedMark + L"\"");
}

bool CInstallerType::WaitForStart(const std::wstring& folder, DWORD timeout)
{
    const auto isStarted = [](const std::wstring& path) { return path.ends_with(kStartedMark); };
    return WaitUntil([&] { return std::ranges::any_of(ListFolder(folder), isStarted); }, timeout);
}

} // namespace orva::test
