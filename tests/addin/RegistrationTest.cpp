// What registration writes to the registry and removes again, called through the DLL's exports.
#include "addin/RegistrationFixture.h"
#include "harness/Files.h"
#include "harness/Text.h"

namespace orva::test
{
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::UnorderedElementsAreArray;

class RegistrationTest : public CRegistrationTest
{
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
                       sizeof(disabled));
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

struct CSwitchCase
{
    const wchar_t* commandLine;
    bool isPerUser;
};

void PrintTo(const CSwitchCase& value, std::ostream* out)
{
    *out << (value.commandLine != nullptr ? Utf8(value.commandLine) : "null");
}

class RegistrationSwitchTest : public RegistrationTest, public testing::WithParamInterface<CSwitchCase>
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
                         testing::Values(CSwitchCase{L"user", true}, CSwitchCase{L"USER", true},
                                         CSwitchCase{L"User", true}, CSwitchCase{L"uSeR", true},
                                         CSwitchCase{L"users", false}, CSwitchCase{L"user1", false},
                                         CSwitchCase{L"user ", false}, CSwitchCase{L" user", false},
                                         CSwitchCase{L"use", false}, CSwitchCase{L"machine", false},
                                         CSwitchCase{L"", false}, CSwitchCase{nullptr, false}));

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

} // namespace
} // namespace orva::test
