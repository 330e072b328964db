// The system's own programs register, read, create and unregister the add-in.
#include "addin/RegistrationFixture.h"
#include "addin/RegistrationObstacle.h"
#include "harness/Files.h"
#include "harness/ProcessRunner.h"
#include "harness/Text.h"

namespace orva::test
{
namespace
{

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::UnorderedElementsAreArray;

class RegistrationToolsTest : public CRegistrationTest
{
};

TEST_F(RegistrationToolsTest, Regsvr32RegistersAndUnregistersForTheMachine)
{
    Mark();
    EXPECT_EQ(RegSvr32({L"/s"}), 0u);
    EXPECT_THAT(Added(), UnorderedElementsAreArray(Joined(AddInLines(), ClassLines("HKLM"))));
    EXPECT_EQ(RegSvr32({L"/s", L"/u"}), 0u);
    EXPECT_THAT(Added(true),
                ElementsAre("HKLM\\Software\\Microsoft\\Office", "HKLM\\Software\\Microsoft\\Office\\Outlook",
                            "HKLM\\Software\\Microsoft\\Office\\Outlook\\Addins"));
    EXPECT_THAT(Removed(), IsEmpty());
}

TEST_F(RegistrationToolsTest, Regsvr32WithTheUserSwitchRegistersAndUnregistersForTheUser)
{
    EXPECT_EQ(RegSvr32({L"/s", L"/n", L"/i:user"}), 0u);
    EXPECT_TRUE(IsRegisteredForUser());
    EXPECT_FALSE(IsRegisteredForMachine());
    EXPECT_TRUE(IsAddInEntered());
    EXPECT_EQ(RegSvr32({L"/s", L"/u", L"/n", L"/i:user"}), 0u);
    EXPECT_FALSE(IsRegisteredForUser());
    EXPECT_FALSE(IsAddInEntered());
}

TEST_F(RegistrationToolsTest, Regsvr32SaysThatARegistrationFailed)
{
    const CObstacle office(L"Software\\Microsoft\\Office");
    EXPECT_NE(RegSvr32({L"/s"}), 0u);
    EXPECT_FALSE(IsRegisteredForMachine());
}

TEST_F(RegistrationToolsTest, TheRegistrysOwnToolReadsTheAddInsEntry)
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

// Runs a script that creates an object by its name, and returns the script's output: the type's name.
std::string CreatedByScript(const wchar_t* progId)
{
    const CTempFolder folder;
    WriteFileBytes(folder.File(L"create.vbs"), "Dim addIn\r\n"
                                               "Set addIn = CreateObject(WScript.Arguments(0))\r\n"
                                               "WScript.Echo TypeName(addIn)\r\n");
    return RunProcess(L"cscript.exe", {L"//nologo", folder.File(L"create.vbs"), progId}).output;
}

TEST_F(RegistrationToolsTest, AScriptCreatesTheAddInByItsVersionedName)
{
    EXPECT_EQ(RegSvr32({L"/s"}), 0u);
    EXPECT_THAT(CreatedByScript(L"OrvaOscAddin.Connect.1"), HasSubstr("IRibbonCallback"));
}

TEST_F(RegistrationToolsTest, AScriptCreatesTheAddInByTheNameWithoutVersion)
{
    EXPECT_EQ(RegSvr32({L"/s"}), 0u);
    // Windows follows the name to its current version; Wine looks only for a class under the name itself.
    EXPECT_THAT(CreatedByScript(L"OrvaOscAddin.Connect"), IsWine() ? "" : "IRibbonCallback\r\n");
}

// Runs a script that reads the current version of a name and creates that object, and returns its output: the
// version and the type's name.
std::string CreatedByScriptThroughCurVer(const std::string& name)
{
    const CTempFolder folder;
    WriteFileBytes(folder.File(L"curver.vbs"), "Dim shell, version, addIn\r\n"
                                               "Set shell = CreateObject(\"WScript.Shell\")\r\n"
                                               "version = shell.RegRead(\"HKCR\\" +
                                                   name +
                                                   "\\CurVer\\\")\r\n"
                                                   "Set addIn = CreateObject(version)\r\n"
                                                   "WScript.Echo version & \" \" & TypeName(addIn)\r\n");
    return RunProcess(L"cscript.exe", {L"//nologo", folder.File(L"curver.vbs")}).output;
}

TEST_F(RegistrationToolsTest, AScriptThatFollowsTheCurrentVersionItselfCreatesTheAddIn)
{
    EXPECT_EQ(RegSvr32({L"/s"}), 0u);
    EXPECT_EQ(CreatedByScriptThroughCurVer("OrvaOscAddin.Connect"),
              "OrvaOscAddin.Connect.1 IRibbonCallback\r\n");
    EXPECT_EQ(RegSvr32({L"/s", L"/u"}), 0u);
    EXPECT_THAT(CreatedByScriptThroughCurVer("OrvaOscAddin.Connect"), Not(HasSubstr("IRibbonCallback")));
}

} // namespace
} // namespace orva::test
