// A registry without the add-in, to register it in, and the registry's contents as lines to compare.
#pragma once

#include "addin/AddInFixture.h"
#include "harness/Text.h"

#include <memory>
#include <set>
#include <string>
#include <vector>

namespace orva::test
{

/// Keys and values, each as one line with its whole path.
using CRegistryLines = std::set<std::string>;

/// Which part of the registry is compared.
enum class Extent
{
    /// The keys that registration touches: quick.
    Known,
    /// Both hives, to find unexpected changes. Without the 32-bit view, which the system maintains.
    Everything,
};

CRegistryLines ReadRegistry(Extent extent);

/// The lines that are in `in` and not in `from`.
std::vector<std::string> Missing(const CRegistryLines& from, const CRegistryLines& in);

/// The lines of Outlook's list and the add-in's entry, on a machine without Office.
std::vector<std::string> AddInLines();
/// The lines of the class and its names in this hive, HKLM or HKCU.
std::vector<std::string> ClassLines(const std::string& hive);

/// Runs regsvr32 on the built DLL and returns its exit code.
DWORD RegSvr32(std::vector<std::wstring> options);

/// Starts from a registry without the add-in and without any add-in of Outlook's.
class CRegistrationTest : public testing::Test
{
protected:
    CRegistrationTest();

    /// Loads the DLL afresh: the switch to per-user registration lasts as long as the DLL is loaded.
    void Load(const std::wstring& path);

    /// Remembers the registry as it is.
    void Mark(Extent extent = Extent::Known);
    /// What has been added to the registry since Mark, without the system's own lines of the type library.
    std::vector<std::string> Added(bool withLibrary = false) const;
    std::vector<std::string> Removed() const;

    static bool IsRegisteredForMachine() { return RegistryKeyExists(HKEY_LOCAL_MACHINE, kClassKey); }
    static bool IsRegisteredForUser() { return RegistryKeyExists(HKEY_CURRENT_USER, kClassKey); }
    static bool IsAddInEntered() { return RegistryKeyExists(HKEY_LOCAL_MACHINE, kAddInKey); }

    CRegistrationGuard m_guard;
    std::unique_ptr<CAddInModule> m_module;
    CLogMark m_log;

private:
    Extent m_extent = Extent::Known;
    CRegistryLines m_before;
};

} // namespace orva::test
