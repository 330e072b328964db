// What the commands that register and unregister the add-in write to the registry, and remove again.
#include "addin/RegistrationFixture.h"
#include "harness/Files.h"
#include "harness/ProcessRunner.h"
#include "harness/Text.h"

namespace orva::test
{
namespace
{

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Not;
using testing::UnorderedElementsAreArray;

class RegistrationTest : public CRegistrationTest
{
};

// How the system's own program is asked to register, and with /u before it to unregister.
struct CCommandCase
{
    const char* name;
    std::vector<std::wstring> options;
    const char* hive;
    std::vector<std::string> registerLines;
    std::vector<std::string> unregisterLines;
};

void PrintTo(const CCommandCase& value, std::ostream* out)
{
    *out << value.name;
}

class RegistrationCommandTest : public RegistrationTest, public testing::WithParamInterface<CCommandCase>
{
};

TEST_P(RegistrationCommandTest, WritesExactlyTheScriptsAndTheTypeLibraryAndRemovesAllButOutlooksList)
{
    const CRegistryLines before = ExportRegistry();
    EXPECT_EQ(RegSvr32(GetParam().options), 0u);
    EXPECT_EQ(m_log.NewLines(), GetParam().registerLines);
    const CRegistryLines registered = ExportRegistry();
    std::vector<std::string> added = Missing(before, registered);
    // Wine registers a type library for the machine even when asked to register it for the user.
    EXPECT_THAT(added, IsSupersetOf(LibraryLines(IsWine() ? "HKEY_LOCAL_MACHINE" : GetParam().hive)));
    std::erase_if(added, IsOfLibrary);
    // The user's list of classes may be new as well.
    std::erase(added, "[HKEY_CURRENT_USER\\Software\\Classes]");
    std::erase(added, "[HKEY_CURRENT_USER\\Software\\Classes\\CLSID]");
    EXPECT_THAT(added, UnorderedElementsAreArray(Joined(EntryLines(), ClassLines(GetParam().hive))));
    EXPECT_THAT(Missing(registered, before), IsEmpty());

    std::vector<std::wstring> undo = GetParam().options;
    undo.insert(undo.begin(), L"/u");
    EXPECT_EQ(RegSvr32(undo), 0u);
    EXPECT_EQ(m_log.NewLines(), GetParam().unregisterLines);
    const CRegistryLines after = ExportRegistry();
    std::vector<std::string> left = Missing(before, after);
    std::erase(left, "[HKEY_CURRENT_USER\\Software\\Classes]");
    std::erase(left, "[HKEY_CURRENT_USER\\Software\\Classes\\CLSID]");
    EXPECT_THAT(left, UnorderedElementsAreArray(ListLines()));
    EXPECT_THAT(Missing(after, before), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Commands, RegistrationCommandTest,
    testing::Values(
        CCommandCase{"per machine", {}, "HKEY_LOCAL_MACHINE", {"DllRegisterServer"}, {"DllUnregisterServer"}},
        CCommandCase{"per user",
                     {L"/n", L"/i:user"},
                     "HKEY_CURRENT_USER",
                     {"DllInstall", "DllRegisterServer"},
                     {"DllInstall", "DllUnregisterServer"}}));

TEST_F(RegistrationTest, RegisteringAgainRepairsChangedValues)
{
    EXPECT_EQ(m_module->Register(), S_OK);
    const std::string before = RegisteredKeys();
    CRegistryValue behavior(HKEY_LOCAL_MACHINE, kAddInKey, L"LoadBehavior");
    behavior.SetDword(2);
    CRegistryValue stray(HKEY_LOCAL_MACHINE, std::wstring(kClassKey) + L"\\Stray", L"");
    stray.SetString(L"whatever");
    EXPECT_NE(RegisteredKeys(), before);
    EXPECT_EQ(m_module->Register(), S_OK);
    EXPECT_EQ(RegisteredKeys(), before);
}

TEST_F(RegistrationTest, UnregistrationTakesNothingFromOtherAddIns)
{
    CRegistryValue other(HKEY_LOCAL_MACHINE, std::wstring(kAddIns) + L"\\Other.Connect", L"LoadBehavior");
    other.SetDword(3);
    CRegistryValue own(HKEY_LOCAL_MACHINE, kAddIns, L"Ours");
    own.SetString(L"kept");
    const std::string before = RegisteredKeys();
    EXPECT_EQ(m_module->Register(), S_OK);
    EXPECT_EQ(m_module->Unregister(), S_OK);
    EXPECT_EQ(RegisteredKeys(), before);
}

TEST_F(RegistrationTest, UnregistrationTakesTheAddInsKeyWithValuesThatOutlookLeftThere)
{
    EXPECT_EQ(m_module->Register(), S_OK);
    CRegistryValue left(HKEY_LOCAL_MACHINE, kAddInKey, L"Manifest");
    left.SetString(L"whatever");
    EXPECT_EQ(m_module->Unregister(), S_OK);
    EXPECT_THAT(RegisteredParts(), IsEmpty());
    EXPECT_TRUE(RegistryKeyExists(HKEY_LOCAL_MACHINE, kAddIns));
}

TEST_F(RegistrationTest, UnregisteringWhatIsNotRegisteredFailsAndChangesNothing)
{
    EXPECT_EQ(m_module->Register(), S_OK);
    EXPECT_EQ(m_module->Unregister(), S_OK);
    const std::string before = RegisteredKeys();
    // Wine's result for a type library that is not registered.
    EXPECT_EQ(m_module->Unregister(), E_INVALIDARG);
    EXPECT_EQ(m_module->Install(FALSE, L"user"), E_INVALIDARG);
    EXPECT_EQ(RegisteredKeys(), before);
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
    EXPECT_EQ(RegistryKeyExists(HKEY_CURRENT_USER, kClassKey), GetParam().isPerUser);
    EXPECT_EQ(RegistryKeyExists(HKEY_LOCAL_MACHINE, kClassKey), !GetParam().isPerUser);
    EXPECT_TRUE(RegistryKeyExists(HKEY_LOCAL_MACHINE, kAddInKey));
    m_log.NewLines();
    EXPECT_EQ(m_module->Install(FALSE, GetParam().commandLine), S_OK);
    EXPECT_THAT(m_log.NewLines(), ElementsAre("DllInstall", "DllUnregisterServer"));
    EXPECT_THAT(RegisteredParts(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Words, RegistrationSwitchTest,
                         testing::Values(CSwitchCase{L"user", true}, CSwitchCase{L"USER", true},
                                         CSwitchCase{L"User", true}, CSwitchCase{L"uSeR", true},
                                         CSwitchCase{L"users", false}, CSwitchCase{L"user1", false},
                                         CSwitchCase{L"user ", false}, CSwitchCase{L" user", false},
                                         CSwitchCase{L"use", false}, CSwitchCase{L"machine", false},
                                         CSwitchCase{L"", false}, CSwitchCase{nullptr, false}));

// The entry is the machine's in both kinds of registration.
TEST_F(RegistrationTest, UnregisteringForTheUserTakesTheEntryThatTheMachinesRegistrationNeeds)
{
    EXPECT_EQ(m_module->Register(), S_OK);
    EXPECT_EQ(m_module->Install(TRUE, L"user"), S_OK);
    EXPECT_EQ(m_module->Install(FALSE, L"user"), S_OK);
    std::vector<std::string> parts = RegisteredParts();
    // Wine unregisters the machine's type library too.
    std::erase(parts, "type library");
    EXPECT_THAT(parts, ElementsAre("name", "name with version", "class"));
}

// Runs a script and returns its output.
std::string RunScript(const std::string& text)
{
    const CTempFolder folder;
    WriteFileBytes(folder.File(L"script.vbs"), text);
    return RunProcess(L"cscript.exe", {L"//nologo", folder.File(L"script.vbs")}).output;
}

TEST_F(RegistrationTest, AScriptCreatesTheAddInByTheCurrentVersionOfItsNameUntilItIsUnregistered)
{
    const std::string script = "version = CreateObject(\"WScript.Shell\").RegRead("
                               "\"HKCR\\OrvaOscAddin.Connect\\CurVer\\\")\r\n"
                               "WScript.Echo version & \" \" & TypeName(CreateObject(version))\r\n";
    EXPECT_EQ(m_module->Register(), S_OK);
    EXPECT_EQ(RunScript(script), "OrvaOscAddin.Connect.1 IRibbonCallback\r\n");
    EXPECT_EQ(m_module->Unregister(), S_OK);
    EXPECT_THAT(RunScript(script), Not(HasSubstr("IRibbonCallback")));
}

TEST_F(RegistrationTest, AScriptCreatesTheAddInByTheNameWithoutVersion)
{
    EXPECT_EQ(m_module->Register(), S_OK);
    // Windows follows the name to its current version; Wine looks only for a class under the name itself.
    EXPECT_EQ(RunScript("WScript.Echo TypeName(CreateObject(\"OrvaOscAddin.Connect\"))\r\n"),
              IsWine() ? "" : "IRibbonCallback\r\n");
}

} // namespace
} // namespace orva::test
