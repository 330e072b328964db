// A machine on which the connector is not installed, the setup programs of two versions, and what they leave.
#pragma once

#include "harness/ProcessRunner.h"
#include "harness/Registry.h"
#include "harness/TempFolder.h"
#include "outlook/AddInRegistration.h"

#include <gmock/gmock.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace orva::test
{

/// The entry in "Programs and Features", under HKEY_LOCAL_MACHINE.
inline constexpr wchar_t kEntryKey[] =
    L"Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\ORVA Connector";
/// Where a setup keeps the registration that it replaces, under HKEY_LOCAL_MACHINE.
inline constexpr wchar_t kSavedKey[] = L"Software\\ORVA Connector Setup";
/// The name that a running setup holds.
inline constexpr wchar_t kSetupMutex[] = L"Global\\OrvaConnectorSetup";

/// With which a setup registers the DLL.
inline constexpr wchar_t kRegsvr32[] = L"C:\\windows\\system32\\regsvr32.exe";

/// The setup programs' exit codes.
enum SetupExit : DWORD
{
    kSetupDone = 0,
    kSetupCancelled = 1,
    kSetupDamaged = 2,
    kSetupBusy = 3,
    kNewerInstalled = 4,
    kFileFailed = 5,
    kRegistrationFailed = 6,
    kEntryFailed = 7,
};

/// One version's setup program and the DLL that is in it.
struct CSetupVersion
{
    std::wstring version;
    std::wstring setup;
    std::wstring module;
};

/// The version that this build makes.
const CSetupVersion& OldVersion();
/// The next one.
const CSetupVersion& NewVersion();
/// A version after that.
const CSetupVersion& LatestVersion();

/// The folder into which a setup installs, and files in it.
std::wstring InstallFolder();
std::wstring InstalledModule();
std::wstring InstalledUninstaller();
/// The names of the files in it, with further ones.
std::vector<std::wstring> InstalledFiles(const std::vector<std::wstring>& others = {});
/// The path under which Outlook finds the add-in; empty if there is none.
std::wstring RegisteredModule();

/// What a setup changes: the files with their contents, and the registry's keys as text.
struct CInstalledState
{
    std::map<std::wstring, std::string> files;
    std::string registry;
    bool operator==(const CInstalledState&) const = default;
};
CInstalledState TakeState();
void PrintTo(const CInstalledState& state, std::ostream* stream);

/// A copy of the installed uninstaller, which can remove that one; so the uninstaller starts itself.
class CUninstallerCopy
{
public:
    CUninstallerCopy();
    std::wstring Path() const { return m_folder.File(L"Un.exe"); }

private:
    CTempFolder m_folder;
};

/// Starts and ends with a machine without the connector; the registry is as it was afterwards.
class SetupFixture : public testing::Test
{
protected:
    SetupFixture();
    ~SetupFixture() override;

    /// Runs a setup to its end and returns its exit code.
    static DWORD Run(const std::wstring& setup, const std::vector<std::wstring>& arguments = {L"/S"});
    /// Installs this version silently and asserts that this succeeded.
    static void Install(const CSetupVersion& version);
    /// Runs the uninstaller silently and waits until it has removed itself and ended.
    static void RunUninstaller();
    /// Does so and asserts that nothing is left.
    static void Uninstall();
    /// Runs the uninstaller in its place, where it cannot remove itself, and returns its exit code.
    static DWORD UninstallInPlace();
    /// These arguments and the one with which the uninstaller runs in its place.
    static std::vector<std::wstring> InPlace(std::vector<std::wstring> arguments);
    /// Asserts that the newer version's setup ends with this code and leaves the old version, which is looked
    /// at when `endFault` has been called.
    static void ExpectOldStays(
        DWORD code, const std::function<void()>& endFault = [] {});
    /// A file that nobody else can open or move until the result is closed.
    static UniqueHandle LockFile(const std::wstring& path);

    /// Asserts that this version is installed completely and nothing else is in the folder.
    static void ExpectInstalled(const CSetupVersion& version);
    /// What Windows will delete at its next start, of the installation's folder.
    static std::vector<std::wstring> DeletedAtNextStart();

private:
    CRegistrationGuard m_registration;
    CRegistryTreeGuard m_entry;
    CRegistryTreeGuard m_saved;
    CRegistryValue m_pending;
};

} // namespace orva::test
