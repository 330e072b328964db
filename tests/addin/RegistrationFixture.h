// A registry without the add-in, to register it in, and ways to tell what a registration has written.
#pragma once

#include "addin/AddInFixture.h"

#include <memory>
#include <set>
#include <string>
#include <vector>

namespace orva::test
{

/// Keys and values, each as one line with its whole path: "[KEY]" and "[KEY] NAME=DATA".
using CRegistryLines = std::set<std::string>;

/// Both hives' software as reg.exe exports it, which takes so long that the test's deadline is put off.
/// Without the 32-bit view, which the system maintains. Throws std::runtime_error if reg.exe fails.
CRegistryLines ExportRegistry();

/// The lines that are in `in` and not in `from`.
std::vector<std::string> Missing(const CRegistryLines& from, const CRegistryLines& in);

/// The lines of Outlook's list of add-ins, on a machine without Office.
std::vector<std::string> ListLines();
/// Those and the lines of the add-in's entry.
std::vector<std::string> EntryLines();
/// The lines of the class and its names in a hive, "HKEY_LOCAL_MACHINE" or "HKEY_CURRENT_USER".
std::vector<std::string> ClassLines(const std::string& hive);
/// The lines by which the type library and its interface are found; the system writes others too.
std::vector<std::string> LibraryLines(const std::string& hive);
/// Whether the system itself wrote this line when it registered the type library.
bool IsOfLibrary(const std::string& line);

/// Everything under the keys that a registration may touch, in both hives, as text.
std::string RegisteredKeys();
/// The parts of a registration that are there: "entry", "name", "name with version", "class" and "type
/// library", and the user's own "name of the user" and so on.
std::vector<std::string> RegisteredParts();

/// Runs regsvr32 on the built DLL, without its message boxes, and returns its exit code.
DWORD RegSvr32(std::vector<std::wstring> options);

/// Starts from a registry without the add-in and without any add-in of Outlook's.
class CRegistrationTest : public testing::Test
{
protected:
    CRegistrationTest();

    /// Loads the DLL afresh: the switch to per-user registration lasts as long as the DLL is loaded.
    void Load(const std::wstring& path);
    void Load();

    CRegistrationGuard m_guard;
    std::unique_ptr<CAddInModule> m_module;
    CLogMark m_log;
};

} // namespace orva::test
