// What registration writes to the registry and takes away again, called as a DLL's exports and by the
// system's own programs.
#include "addin/AddInFixture.h"

#include "harness/Files.h"
#include "harness/ProcessRunner.h"
#include "harness/Text.h"

#include <algorithm>
#include <regex>
#include <set>

namespace orva::test
{
namespace
{

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::UnorderedElementsAreArray;

constexpr wchar_t kAddIns[] = L"Software\\Microsoft\\Office\\Outlook\\Addins";
constexpr wchar_t kAddInKey[] = L"Software\\Microsoft\\Office\\Outlook\\Addins\\OrvaOscAddin.Connect";
constexpr wchar_t kClasses[] = L"Software\\Classes";
constexpr wchar_t kClassKey[] = L"Software\\Classes\\CLSID\\{9C7130EA-AEC4-4EA5-97B8-7D7172C9E051}";
constexpr wchar_t kLibraryKey[] = L"Software\\Classes\\TypeLib\\{ABF2CDBF-30F7-4827-9110-3BD6A8F1B786}";
constexpr wchar_t kProgIdKey[] = L"Software\\Classes\\OrvaOscAddin.Connect";
constexpr wchar_t kVersionedProgIdKey[] = L"Software\\Classes\\OrvaOscAddin.Connect.1";

/// What a key that cannot take further keys says: the cause of the failures below.
constexpr HRESULT kChildMustBeVolatile = static_cast<HRESULT>(0x800703FD);

/// Keys and values, each as one line with its whole path.
using CRegistryLines = std::set<std::string>;

/// Where to look for what registration does.
enum class Extent
{
    /// All that is known to be touched: quick.
    Known,
    /// Both hives, to find out what else would be touched. The 32-bit view is the system's own affair.
    Everything,
};

constexpr const wchar_t* kKnownKeys[] = {
    L"Software\\Microsoft\\Office",
    kProgIdKey,
    kVersionedProgIdKey,
    kClassKey,
    kLibraryKey,
    L"Software\\Classes\\Interface\\{CE895442-9981-4315-AA85-4B9A5C7739D8}",
};

void AddLines(CRegistryLines& lines, const std::string& hive, const std::string& exported)
{
    std::string key;
    for (const std::string& line : SplitLines(exported))
    {
        if (line.starts_with('['))
        {
            key = hive + "\\" + line.substr(1, line.size() - 2);
            lines.insert(key);
        }
        else
        {
            lines.insert(key + " : " + line);
        }
    }
}

CRegistryLines ReadRegistry(Extent extent)
{
    CRegistryLines lines;
    for (const auto& [root, hive] :
         {std::pair(HKEY_LOCAL_MACHINE, "HKLM"), std::pair(HKEY_CURRENT_USER, "HKCU")})
    {
        if (extent == Extent::Everything)
        {
            AddLines(lines, hive, ExportRegistryKey(root, L"Software"));
            continue;
        }
        for (const wchar_t* const key : kKnownKeys)
        {
            if (RegistryKeyExists(root, key))
            {
                AddLines(lines, hive, ExportRegistryKey(root, key));
            }
        }
    }
    std::erase_if(lines,
                  [](const std::string& line) { return line.find("Wow6432Node") != std::string::npos; });
    return lines;
}

std::vector<std::string> Missing(const CRegistryLines& from, const CRegistryLines& in)
{
    std::vector<std::string> lines;
    std::set_difference(in.begin(), in.end(), from.begin(), from.end(), std::back_inserter(lines));
    return lines;
}

/// What script 101 makes, below a machine that has no Office.
std::vector<std::string> AddInLines()
{
    const std::string office = "HKLM\\Software\\Microsoft\\Office";
    const std::string key = office + "\\Outlook\\Addins\\OrvaOscAddin.Connect";
    return {office,
            office + "\\Outlook",
            office + "\\Outlook\\Addins",
            key,
            key + " : Description = REG_SZ \"ORVA Connector\"",
            key + " : FriendlyName = REG_SZ \"ORVA Connector\"",
            key + " : LoadBehavior = REG_DWORD 0x00000003"};
}

/// What script 106 makes in this hive.
std::vector<std::string> ClassLines(const std::string& hive)
{
    const std::string classes = hive + "\\Software\\Classes\\";
    const std::string id = "{9C7130EA-AEC4-4EA5-97B8-7D7172C9E051}";
    const std::string versioned = classes + "OrvaOscAddin.Connect.1";
    const std::string progId = classes + "OrvaOscAddin.Connect";
    const std::string key = classes + "CLSID\\" + id;
    return {versioned,
            versioned + " : @ = REG_SZ \"Connect Class\"",
            versioned + "\\CLSID",
            versioned + "\\CLSID : @ = REG_SZ \"" + id + "\"",
            progId,
            progId + " : @ = REG_SZ \"Connect Class\"",
            progId + "\\CurVer",
            progId + "\\CurVer : @ = REG_SZ \"OrvaOscAddin.Connect.1\"",
            key,
            key + " : @ = REG_SZ \"Connect Class\"",
            key + "\\ProgID",
            key + "\\ProgID : @ = REG_SZ \"OrvaOscAddin.Connect.1\"",
            key + "\\VersionIndependentProgID",
            key + "\\VersionIndependentProgID : @ = REG_SZ \"OrvaOscAddin.Connect\"",
            key + "\\Programmable",
            key + "\\InprocServer32",
            key + "\\InprocServer32 : @ = REG_SZ \"" + Utf8(BuiltFile(kAddInModule)) + "\"",
            key + "\\InprocServer32 : ThreadingModel = REG_SZ \"Apartment\"",
            key + "\\TypeLib",
            key + "\\TypeLib : @ = REG_SZ \"{ABF2CDBF-30F7-4827-9110-3BD6A8F1B786}\"",
            key + "\\Version",
            key + "\\Version : @ = REG_SZ \"1.0\""};
}

/// Whether a line belongs to what the system itself writes of a registered type library.
bool IsLibraryLine(const std::string& line)
{
    static const std::regex library(
        R"(^HK..\\Software\\Classes\\(TypeLib\\\{ABF2CDBF-30F7-4827-9110-3BD6A8F1B786\})"
        R"(|Interface\\\{CE895442-9981-4315-AA85-4B9A5C7739D8\}))",
        std::regex::icase);
    return std::regex_search(line, library);
}

std::vector<std::string> Joined(std::vector<std::string> first, const std::vector<std::string>& second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

/// A key that takes values but no lasting subkeys, so that a registration fails when it gets there.
class CVolatileKey
{
public:
    explicit CVolatileKey(const std::wstring& path)
    {
        HKEY key = nullptr;
        DWORD disposition = 0;
        EXPECT_EQ(RegCreateKeyExW(HKEY_LOCAL_MACHINE, path.c_str(), 0, nullptr, REG_OPTION_VOLATILE,
                                  KEY_ALL_ACCESS, nullptr, &key, &disposition),
                  ERROR_SUCCESS);
        EXPECT_EQ(disposition, static_cast<DWORD>(REG_CREATED_NEW_KEY));
        RegCloseKey(key);
    }
};

/// Starts from a registry without the add-in and without any add-in of Outlook's.
class RegistrationTest : public testing::Test
{
protected:
    RegistrationTest()
    {
        m_guard.Remove();
        Load(BuiltFile(kAddInModule));
    }

    void Load(const std::wstring& path)
    {
        m_module.reset();
        m_module = std::make_unique<CAddInModule>(path);
    }

    /// What has been added to the registry since Mark, without the system's own lines of the type library.
    std::vector<std::string> Added(bool withLibrary = false) const
    {
        std::vector<std::string> lines = Missing(m_before, ReadRegistry(m_extent));
        if (!withLibrary)
        {
            std::erase_if(lines, IsLibraryLine);
        }
        return lines;
    }
    std::vector<std::string> Removed() const { return Missing(ReadRegistry(m_extent), m_before); }
    void Mark(Extent extent = Extent::Known)
    {
        m_extent = extent;
        m_before = ReadRegistry(extent);
    }

    static bool IsRegisteredForMachine() { return RegistryKeyExists(HKEY_LOCAL_MACHINE, kClassKey); }
    static bool IsRegisteredForUser() { return RegistryKeyExists(HKEY_CURRENT_USER, kClassKey); }
    static bool IsAddInEntered() { return RegistryKeyExists(HKEY_LOCAL_MACHINE, kAddInKey); }

    static DWORD RegSvr32(std::vector<std::wstring> options)
    {
        options.push_back(BuiltFile(kAddInModule));
        return RunProcess(L"regsvr32.exe", options).exitCode;
    }

    CRegistrationGuard m_guard;
    std::unique_ptr<CAddInModule> m_module;
    Extent m_extent = Extent::Known;
    CRegistryLines m_before;
    CLogReader m_log;
};

TEST_F(RegistrationTest, MachineRegistrationWritesExactlyTheScriptsAndTheTypeLibrary)
{
    Mark(Extent::Everything);
    EXPECT_EQ(m_module->Register(), S_OK);
    EXPECT_THAT(Added(), UnorderedElementsAreArray(Joined(AddInLines(), ClassLines("HKLM"))));
    EXPECT_THAT(Removed(), IsEmpty());
    EXPECT_THAT(m_log.NewLines(), ElementsAre("DllRegisterServer"));
}

TEST_F(RegistrationTest, TheTypeLibraryIsRegisteredWithItsPathAndItsInterface)
{
    Mark();
    EXPECT_EQ(m_module->Register(), S_OK);
    const std::wstring library = std::wstring(kLibraryKey) + L"\\1.0";
    EXPECT_EQ(RegistryString(HKEY_LOCAL_MACHINE, library, L""), L"OrvaOscAddin 1.0 Type Library");
    EXPECT_EQ(RegistryString(HKEY_LOCAL_MACHINE, library + L"\\0\\win64", L""), BuiltFile(kAddInModule));
    const std::string callback = "HKLM\\Software\\Classes\\Interface\\{CE895442-9981-4315-AA85-4B9A5C7739D8}";
    EXPECT_THAT(Added(true),
                IsSupersetOf({callback + " : @ = REG_SZ \"IRibbonCallback\"",
                              callback + "\\TypeLib : @ = REG_SZ \"{ABF2CDBF-30F7-4827-9110-3BD6A8F1B786}\"",
                              callback + "\\TypeLib : Version = REG_SZ \"1.0\""}));
}

TEST_F(RegistrationTest, RegisteringTwiceLeavesTheSame)
{
    EXPECT_EQ(m_module->Register(), S_OK);
    Mark();
    EXPECT_EQ(m_module->Register(), S_OK);
    EXPECT_THAT(Added(true), IsEmpty());
    EXPECT_THAT(Removed(), IsEmpty());
}

TEST_F(RegistrationTest, RegisteringRepairsChangedValues)
{
    EXPECT_EQ(m_module->Register(), S_OK);
    Mark();
    {
        HKEY key = nullptr;
        ASSERT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, kAddInKey, 0, KEY_SET_VALUE, &key), ERROR_SUCCESS);
        const DWORD disabled = 2;
        RegSetValueExW(key, L"LoadBehavior", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&disabled),
                       sizeof disabled);
        RegCloseKey(key);
        ASSERT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, kClassKey, 0, KEY_ALL_ACCESS, &key), ERROR_SUCCESS);
        HKEY stray = nullptr;
        RegCreateKeyExW(key, L"Stray", 0, nullptr, 0, KEY_READ, nullptr, &stray, nullptr);
        RegCloseKey(stray);
        RegCloseKey(key);
    }
    EXPECT_EQ(m_module->Register(), S_OK);
    EXPECT_THAT(Added(true), IsEmpty());
    EXPECT_THAT(Removed(), IsEmpty());
}

TEST_F(RegistrationTest, UnregistrationRemovesAllOfItAndLeavesOutlooksListOfAddIns)
{
    Mark();
    EXPECT_EQ(m_module->Register(), S_OK);
    m_log.NewLines();
    EXPECT_EQ(m_module->Unregister(), S_OK);
    EXPECT_THAT(m_log.NewLines(), ElementsAre("DllUnregisterServer"));
    EXPECT_THAT(Added(true),
                ElementsAre("HKLM\\Software\\Microsoft\\Office", "HKLM\\Software\\Microsoft\\Office\\Outlook",
                            "HKLM\\Software\\Microsoft\\Office\\Outlook\\Addins"));
    EXPECT_THAT(Removed(), IsEmpty());
}

TEST_F(RegistrationTest, UnregistrationTakesNothingFromOtherAddIns)
{
    CRegistryValue other(HKEY_LOCAL_MACHINE, std::wstring(kAddIns) + L"\\Other.Connect", L"LoadBehavior");
    other.SetDword(3);
    CRegistryValue own(HKEY_LOCAL_MACHINE, kAddIns, L"Ours");
    own.SetString(L"kept");
    Mark();
    EXPECT_EQ(m_module->Register(), S_OK);
    EXPECT_EQ(m_module->Unregister(), S_OK);
    EXPECT_THAT(Added(true), IsEmpty());
    EXPECT_THAT(Removed(), IsEmpty());
}

TEST_F(RegistrationTest, UnregistrationTakesTheAddInsKeyWithValuesThatOutlookLeftThere)
{
    EXPECT_EQ(m_module->Register(), S_OK);
    CRegistryValue left(HKEY_LOCAL_MACHINE, kAddInKey, L"Manifest");
    left.SetString(L"whatever");
    EXPECT_EQ(m_module->Unregister(), S_OK);
    EXPECT_FALSE(IsAddInEntered());
    EXPECT_TRUE(RegistryKeyExists(HKEY_LOCAL_MACHINE, kAddIns));
}

TEST_F(RegistrationTest, UnregisteringWhatWasNeverRegisteredChangesNothing)
{
    Mark();
    m_module->Unregister();
    EXPECT_THAT(Added(true), IsEmpty());
    EXPECT_THAT(Removed(), IsEmpty());
}

TEST_F(RegistrationTest, TheThreadsLocaleIsRestored)
{
    const LCID before = GetThreadLocale();
    const LCID german = MAKELCID(MAKELANGID(LANG_GERMAN, SUBLANG_GERMAN), SORT_DEFAULT);
    ASSERT_TRUE(SetThreadLocale(german));
    EXPECT_EQ(m_module->Register(), S_OK);
    EXPECT_EQ(GetThreadLocale(), german);
    EXPECT_EQ(m_module->Unregister(), S_OK);
    EXPECT_EQ(GetThreadLocale(), german);
    SetThreadLocale(before);
}

TEST_F(RegistrationTest, PerUserRegistrationRedirectsTheClassAndStillEntersTheAddInForTheMachine)
{
    Mark(Extent::Everything);
    EXPECT_EQ(m_module->Install(TRUE, L"user"), S_OK);
    std::vector<std::string> expected = Joined(AddInLines(), ClassLines("HKCU"));
    std::vector<std::string> added = Added();
    // The user's list of classes itself may be new as well.
    std::erase_if(added, [](const std::string& line) {
        return line == "HKCU\\Software\\Classes" || line == "HKCU\\Software\\Classes\\CLSID";
    });
    EXPECT_THAT(added, UnorderedElementsAreArray(expected));
    EXPECT_THAT(Removed(), IsEmpty());
    EXPECT_THAT(m_log.NewLines(), ElementsAre("DllInstall", "DllRegisterServer"));
}

TEST_F(RegistrationTest, PerUserUnregistrationRemovesItAll)
{
    EXPECT_EQ(m_module->Install(TRUE, L"user"), S_OK);
    EXPECT_EQ(m_module->Install(FALSE, L"user"), S_OK);
    EXPECT_FALSE(IsRegisteredForUser());
    EXPECT_FALSE(IsAddInEntered());
    EXPECT_FALSE(RegistryKeyExists(HKEY_CURRENT_USER, kProgIdKey));
    EXPECT_FALSE(RegistryKeyExists(HKEY_CURRENT_USER, kVersionedProgIdKey));
    EXPECT_FALSE(RegistryKeyExists(HKEY_CURRENT_USER, kLibraryKey));
    EXPECT_FALSE(RegistryKeyExists(HKEY_LOCAL_MACHINE, kLibraryKey));
}

struct SwitchCase
{
    const wchar_t* commandLine;
    bool isPerUser;
};

void PrintTo(const SwitchCase& value, std::ostream* out)
{
    *out << (value.commandLine != nullptr ? Utf8(value.commandLine) : "null");
}

class RegistrationSwitchTest : public RegistrationTest, public testing::WithParamInterface<SwitchCase>
{
};

TEST_P(RegistrationSwitchTest, OnlyTheWholeWordUserInAnyCaseMeansPerUser)
{
    EXPECT_EQ(m_module->Install(TRUE, GetParam().commandLine), S_OK);
    EXPECT_EQ(IsRegisteredForUser(), GetParam().isPerUser);
    EXPECT_EQ(IsRegisteredForMachine(), !GetParam().isPerUser);
    EXPECT_TRUE(IsAddInEntered());
}

INSTANTIATE_TEST_SUITE_P(Words, RegistrationSwitchTest,
                         testing::Values(SwitchCase{L"user", true}, SwitchCase{L"USER", true},
                                         SwitchCase{L"User", true}, SwitchCase{L"uSeR", true},
                                         SwitchCase{L"users", false}, SwitchCase{L"user1", false},
                                         SwitchCase{L"user ", false}, SwitchCase{L" user", false},
                                         SwitchCase{L"use", false}, SwitchCase{L"machine", false},
                                         SwitchCase{L"", false}, SwitchCase{nullptr, false}));

TEST_F(RegistrationTest, InstallingWithoutInstallOnlyUnregistersWhateverTheCommandLine)
{
    for (const wchar_t* const commandLine : {L"", L"user", L"user1", L"USER"})
    {
        Load(BuiltFile(kAddInModule));
        EXPECT_EQ(m_module->Register(), S_OK);
        Mark();
        m_log.NewLines();
        m_module->Install(FALSE, commandLine);
        EXPECT_THAT(m_log.NewLines(), ElementsAre("DllInstall", "DllUnregisterServer"));
        EXPECT_THAT(Added(true), IsEmpty()) << Utf8(commandLine);
        EXPECT_FALSE(IsAddInEntered()) << Utf8(commandLine);
    }
    Load(BuiltFile(kAddInModule));
    EXPECT_EQ(m_module->Register(), S_OK);
    EXPECT_EQ(m_module->Install(FALSE, nullptr), S_OK);
    EXPECT_FALSE(IsRegisteredForMachine());
}

TEST_F(RegistrationTest, PerUserUnregistrationLeavesTheMachinesClass)
{
    EXPECT_EQ(m_module->Register(), S_OK);
    m_module->Install(FALSE, L"user");
    EXPECT_TRUE(IsRegisteredForMachine());
}

TEST_F(RegistrationTest, PerUserThenPerMachineStandSideBySide)
{
    EXPECT_EQ(m_module->Install(TRUE, L"user"), S_OK);
    Load(BuiltFile(kAddInModule));
    EXPECT_EQ(m_module->Install(TRUE, nullptr), S_OK);
    EXPECT_TRUE(IsRegisteredForUser());
    EXPECT_TRUE(IsRegisteredForMachine());
    EXPECT_EQ(m_module->Install(FALSE, nullptr), S_OK);
    EXPECT_TRUE(IsRegisteredForUser());
    EXPECT_FALSE(IsRegisteredForMachine());
}

TEST_F(RegistrationTest, AFailureOfTheAddInsEntryComesBackAndNothingElseIsRegistered)
{
    const CVolatileKey office(L"Software\\Microsoft\\Office");
    Mark();
    EXPECT_EQ(m_module->Register(), kChildMustBeVolatile);
    EXPECT_THAT(Added(true), IsEmpty());
}

TEST_F(RegistrationTest, AFailedInstallationReturnsTheRegistrationsFailureAndUnregisters)
{
    const CVolatileKey office(L"Software\\Microsoft\\Office");
    Mark();
    m_log.NewLines();
    EXPECT_EQ(m_module->Install(TRUE, nullptr), kChildMustBeVolatile);
    EXPECT_THAT(m_log.NewLines(), ElementsAre("DllInstall", "DllRegisterServer", "DllUnregisterServer"));
    EXPECT_THAT(Added(true), IsEmpty());
}

// In both of the following the unregistration that takes the failed registration back ends at the type
// library, which was never registered. So it does not come to the add-in's entry.
TEST_F(RegistrationTest, AFailureHalfwayThroughTheClassTakesTheClassBackButNotTheEntry)
{
    const CVolatileKey progId(kProgIdKey);
    EXPECT_EQ(m_module->Install(TRUE, nullptr), kChildMustBeVolatile);
    EXPECT_FALSE(IsRegisteredForMachine());
    EXPECT_FALSE(RegistryKeyExists(HKEY_LOCAL_MACHINE, kVersionedProgIdKey));
    EXPECT_FALSE(RegistryKeyExists(HKEY_LOCAL_MACHINE, kLibraryKey));
    EXPECT_TRUE(IsAddInEntered());
}

TEST_F(RegistrationTest, AMissingTypeLibraryIsAFailureThatTakesTheClassBackButNotTheEntry)
{
    const std::string head("MSFT\x02\x00\x01\x00", 8);
    const CAddInCopy copy(head, std::string(head.size(), 'x'));
    Load(copy.Path());
    EXPECT_EQ(m_module->Install(TRUE, nullptr), TYPE_E_CANTLOADLIBRARY);
    EXPECT_FALSE(IsRegisteredForMachine());
    EXPECT_FALSE(RegistryKeyExists(HKEY_LOCAL_MACHINE, kProgIdKey));
    EXPECT_FALSE(RegistryKeyExists(HKEY_LOCAL_MACHINE, kVersionedProgIdKey));
    EXPECT_TRUE(IsAddInEntered());
    // The copy cannot be deleted while it is loaded.
    m_module.reset();
}

TEST_F(RegistrationTest, AfterAFailureAndItsCauseTheNextRegistrationIsWhole)
{
    {
        const CVolatileKey progId(kProgIdKey);
        EXPECT_EQ(m_module->Install(TRUE, nullptr), kChildMustBeVolatile);
    }
    DeleteRegistryKey(HKEY_LOCAL_MACHINE, kProgIdKey);
    DeleteRegistryKey(HKEY_LOCAL_MACHINE, L"Software\\Microsoft\\Office");
    Mark();
    EXPECT_EQ(m_module->Install(TRUE, nullptr), S_OK);
    EXPECT_THAT(Added(), UnorderedElementsAreArray(Joined(AddInLines(), ClassLines("HKLM"))));
}

TEST_F(RegistrationTest, Regsvr32RegistersAndUnregistersForTheMachine)
{
    Mark(Extent::Everything);
    EXPECT_EQ(RegSvr32({L"/s"}), 0u);
    EXPECT_THAT(Added(), UnorderedElementsAreArray(Joined(AddInLines(), ClassLines("HKLM"))));
    EXPECT_EQ(RegSvr32({L"/s", L"/u"}), 0u);
    EXPECT_THAT(Added(true),
                ElementsAre("HKLM\\Software\\Microsoft\\Office", "HKLM\\Software\\Microsoft\\Office\\Outlook",
                            "HKLM\\Software\\Microsoft\\Office\\Outlook\\Addins"));
    EXPECT_THAT(Removed(), IsEmpty());
}

TEST_F(RegistrationTest, Regsvr32WithTheUserSwitchRegistersAndUnregistersForTheUser)
{
    EXPECT_EQ(RegSvr32({L"/s", L"/n", L"/i:user"}), 0u);
    EXPECT_TRUE(IsRegisteredForUser());
    EXPECT_FALSE(IsRegisteredForMachine());
    EXPECT_TRUE(IsAddInEntered());
    EXPECT_EQ(RegSvr32({L"/s", L"/u", L"/n", L"/i:user"}), 0u);
    EXPECT_FALSE(IsRegisteredForUser());
    EXPECT_FALSE(IsAddInEntered());
}

TEST_F(RegistrationTest, Regsvr32SaysThatARegistrationFailed)
{
    const CVolatileKey office(L"Software\\Microsoft\\Office");
    EXPECT_NE(RegSvr32({L"/s"}), 0u);
    EXPECT_FALSE(IsRegisteredForMachine());
}

TEST_F(RegistrationTest, TheRegistrysOwnToolReadsTheAddInsEntry)
{
    EXPECT_EQ(RegSvr32({L"/s"}), 0u);
    const CProcessResult query = RunProcess(L"reg.exe", {L"query", std::wstring(L"HKLM\\") + kAddInKey});
    EXPECT_EQ(query.exitCode, 0u) << query.output;
    std::vector<std::string> lines = SplitLines(query.output);
    for (const char* const name : {"Description", "FriendlyName"})
    {
        EXPECT_THAT(lines, Contains(testing::ContainsRegex(std::string(name) + " +REG_SZ +ORVA Connector")));
    }
    EXPECT_THAT(lines, Contains(testing::ContainsRegex("LoadBehavior +REG_DWORD +0x3")));
}

/// Runs a script that creates an object by its name, and returns what it prints of it.
std::string CreatedByScript(const wchar_t* progId)
{
    const CTempFolder folder;
    WriteFileBytes(folder.File(L"create.vbs"), "Dim addIn\r\n"
                                               "Set addIn = CreateObject(WScript.Arguments(0))\r\n"
                                               "WScript.Echo TypeName(addIn)\r\n");
    return RunProcess(L"cscript.exe", {L"//nologo", folder.File(L"create.vbs"), progId}).output;
}

TEST_F(RegistrationTest, AScriptCreatesTheAddInByItsVersionedName)
{
    EXPECT_EQ(RegSvr32({L"/s"}), 0u);
    EXPECT_THAT(CreatedByScript(L"OrvaOscAddin.Connect.1"), HasSubstr("IRibbonCallback"));
}

TEST_F(RegistrationTest, AScriptCreatesTheAddInByTheNameWithoutVersion)
{
    EXPECT_EQ(RegSvr32({L"/s"}), 0u);
    // Windows goes on from the name to its current version; Wine looks for a class under the name itself
    // only.
    const bool isWine = GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
    EXPECT_THAT(CreatedByScript(L"OrvaOscAddin.Connect"), isWine ? "" : "IRibbonCallback\r\n");
}

} // namespace
} // namespace orva::test
