// Registrations and unregistrations one after the other, for the machine and for the user, with and without a
// key in the way: what each returns, and how the registry, as reg.exe exports it, has changed.
#include "addin/RegistrationExport.h"
#include "addin/RegistrationFixture.h"
#include "addin/RegistrationObstacle.h"
#include "harness/Files.h"
#include "harness/Report.h"

#include <cstdio>

namespace orva::test
{
namespace
{

using Kind = CObstacle::Kind;

enum class Step
{
    Machine,
    User,
    UndoMachine,
    UndoUser,
    // The same by regsvr32.
    ToolMachine,
    ToolUser,
    ToolUndoMachine,
    ToolUndoUser,
};

struct CHindrance
{
    Kind kind = Kind::None;
    HKEY root = nullptr;
    const wchar_t* key = L"";
};

struct CSequenceCase
{
    const char* name;
    // Done before the first export.
    std::vector<Step> before;
    CHindrance hindrance;
    std::vector<Step> steps;
    // What each step returns.
    const char* results;
    // How the second export differs from the first.
    std::string difference;
};

void PrintTo(const CSequenceCase& value, std::ostream* out)
{
    *out << value.name;
}

class RegistrationSequenceTest : public CRegistrationTest, public testing::WithParamInterface<CSequenceCase>
{
protected:
    // Each step loads the DLL afresh, as each run of an installer does.
    std::string Do(Step step)
    {
        switch (step)
        {
        case Step::ToolMachine:
            return ExitCode({L"/s"});
        case Step::ToolUser:
            return ExitCode({L"/s", L"/n", L"/i:user"});
        case Step::ToolUndoMachine:
            return ExitCode({L"/s", L"/u"});
        case Step::ToolUndoUser:
            return ExitCode({L"/s", L"/u", L"/n", L"/i:user"});
        default:
            break;
        }
        Load(BuiltFile(kAddInModule));
        const bool isUser = step == Step::User || step == Step::UndoUser;
        const bool isUndo = step == Step::UndoMachine || step == Step::UndoUser;
        const HRESULT hr = m_module->Install(!isUndo, isUser ? L"user" : nullptr);
        char text[16];
        std::snprintf(text, sizeof(text), "0x%08lX", static_cast<unsigned long>(hr));
        return hr == S_OK ? "S_OK" : text;
    }

    std::string Do(const std::vector<Step>& steps)
    {
        std::string results;
        for (const Step step : steps)
        {
            results += (results.empty() ? "" : ", ") + Do(step);
        }
        return results;
    }

private:
    static std::string ExitCode(const std::vector<std::wstring>& options)
    {
        return "exit code " + std::to_string(RegSvr32(options));
    }
};

TEST_P(RegistrationSequenceTest, ReturnsTheseResultsAndLeavesThisDifference)
{
    const CSequenceCase& sequence = GetParam();
    Do(sequence.before);
    CObstacle obstacle(sequence.hindrance.kind, sequence.hindrance.root, sequence.hindrance.key);
    const CRegistrationExport before = CRegistrationExport::Take();
    obstacle.Raise();
    const std::string results = Do(sequence.steps);
    if (sequence.hindrance.kind != Kind::Volatile)
    {
        obstacle.Lower();
    }
    const CRegistrationExport after = CRegistrationExport::Take();
    const std::string difference = after.DifferenceFrom(before);
    EXPECT_EQ(results, sequence.results);
    EXPECT_EQ(difference, sequence.difference)
        << testing::PrintToString(Missing(before.Lines(), after.Lines()))
        << testing::PrintToString(Missing(after.Lines(), before.Lines()));
    AddReportRow("registration", {sequence.name, results, difference});

    // Whatever happened, every step succeeds without the obstacle.
    obstacle.Lower();
    for (const Step step : {Step::Machine, Step::UndoMachine, Step::User, Step::UndoUser})
    {
        EXPECT_EQ(Do(step), "S_OK");
    }
}

using Parts = std::vector<std::string>;

const Parts kEntry = {"entry of the machine (1 key, 3 values)"};
const Parts kList = {"Outlook's list of the machine (3 keys)"};
const Parts kMachineClass = {"name with version of the machine (2 keys, 2 values)",
                             "name of the machine (2 keys, 2 values)",
                             "class of the machine (7 keys, 7 values)"};
const Parts kMachineNames = {kMachineClass[0], kMachineClass[1]};
const Parts kUserClass = {"name with version of the user (2 keys, 2 values)",
                          "name of the user (2 keys, 2 values)", "class of the user (7 keys, 7 values)"};
// Wine registers a type library for the machine even when asked to register it for the user.
const Parts kLibrary = {"type library of the machine (6 keys, 4 values)",
                        "interface of the machine (4 keys, 5 values)"};

std::string Join(const std::string& sign, std::initializer_list<Parts> groups)
{
    std::string text;
    for (const Parts& parts : groups)
    {
        for (const std::string& part : parts)
        {
            text += (text.empty() ? "" : "; ") + sign + " " + part;
        }
    }
    return text;
}

std::string More(std::initializer_list<Parts> groups)
{
    return Join("+", groups);
}

std::string Less(std::initializer_list<Parts> groups)
{
    return Join("-", groups);
}

const std::string kNothing = "nothing";
const std::string kWholeMachine = More({kEntry, kList, kMachineClass, kLibrary});
const std::string kWholeUser = More({kEntry, kList, kLibrary, kUserClass});
// What is left of a registration that fails after it has made the entry: the rollback stops at the type
// library, which was never registered, and does not reach the entry.
const std::string kEntryLeft = More({kEntry, kList});

// The system registers a library's interfaces before the library's own key.
const std::string kEntryAndInterfaceLeft = kEntryLeft + "; + " + kLibrary[1];

// 0x80070057 below is Wine's result for unregistering a type library that is not registered.
const CSequenceCase kPlain[] = {
    {"01 register", {}, {}, {Step::Machine}, "S_OK", kWholeMachine},
    {"02 register twice", {}, {}, {Step::Machine, Step::Machine}, "S_OK, S_OK", kWholeMachine},
    {"03 register once more", {Step::Machine}, {}, {Step::Machine}, "S_OK", kNothing},
    {"04 register, unregister", {}, {}, {Step::Machine, Step::UndoMachine}, "S_OK, S_OK", More({kList})},
    {"05 unregister what was registered",
     {Step::Machine},
     {},
     {Step::UndoMachine},
     "S_OK",
     Less({kEntry, kMachineClass, kLibrary})},
    {"06 unregister twice",
     {Step::Machine},
     {},
     {Step::UndoMachine, Step::UndoMachine},
     "S_OK, 0x80070057",
     Less({kEntry, kMachineClass, kLibrary})},
    {"07 unregister what was never registered", {}, {}, {Step::UndoMachine}, "0x80070057", kNothing},
    {"08 register for the user", {}, {}, {Step::User}, "S_OK", kWholeUser},
    {"09 register for the user twice", {}, {}, {Step::User, Step::User}, "S_OK, S_OK", kWholeUser},
    {"10 register and unregister for the user",
     {},
     {},
     {Step::User, Step::UndoUser},
     "S_OK, S_OK",
     More({kList})},
    {"11 unregister for the user what was never registered",
     {},
     {},
     {Step::UndoUser},
     "0x80070057",
     kNothing},
    {"12 register for the user, then for the machine",
     {},
     {},
     {Step::User, Step::Machine},
     "S_OK, S_OK",
     More({kEntry, kList, kMachineClass, kLibrary, kUserClass})},
    {"13 registered for both, unregister for the user",
     {Step::User, Step::Machine},
     {},
     {Step::UndoUser},
     "S_OK",
     Less({kEntry, kLibrary, kUserClass})},
    {"14 registered for both, unregister for the machine",
     {Step::User, Step::Machine},
     {},
     {Step::UndoMachine},
     "S_OK",
     Less({kEntry, kMachineClass, kLibrary})},
    {"15 registered for both, unregister for both",
     {Step::User, Step::Machine},
     {},
     {Step::UndoUser, Step::UndoMachine},
     "S_OK, 0x80070057",
     Less({kEntry, kMachineClass, kLibrary, kUserClass})},
    {"16 registered for the machine, unregister for the user",
     {Step::Machine},
     {},
     {Step::UndoUser},
     "S_OK",
     Less({kEntry, kLibrary})},
    {"17 registered for the user, unregister for the machine",
     {Step::User},
     {},
     {Step::UndoMachine},
     "S_OK",
     Less({kEntry, kLibrary})},
};

const CSequenceCase kByRegSvr32[] = {
    {"21 regsvr32", {}, {}, {Step::ToolMachine}, "exit code 0", kWholeMachine},
    {"22 regsvr32, then with /u",
     {},
     {},
     {Step::ToolMachine, Step::ToolUndoMachine},
     "exit code 0, exit code 0",
     More({kList})},
    {"23 regsvr32 for the user, then with /u",
     {},
     {},
     {Step::ToolUser, Step::ToolUndoUser},
     "exit code 0, exit code 0",
     More({kList})},
    {"24 regsvr32 /u of what was never registered", {}, {}, {Step::ToolUndoMachine}, "exit code 5", kNothing},
    {"25 regsvr32 while the class is locked",
     {},
     {Kind::Locked, HKEY_LOCAL_MACHINE, kClassKey},
     {Step::ToolMachine},
     "exit code 5",
     kEntryLeft},
};

constexpr wchar_t kLibraryVersion[] =
    L"Software\\Classes\\TypeLib\\{ABF2CDBF-30F7-4827-9110-3BD6A8F1B786}\\1.0";

const CSequenceCase kHindered[] = {
    {"31 register while Office's key takes no keys",
     {},
     {Kind::Volatile, HKEY_LOCAL_MACHINE, L"Software\\Microsoft\\Office"},
     {Step::Machine},
     "0x800703FD",
     kNothing},
    {"32 register while the entry takes no values",
     {},
     {Kind::ReadOnly, HKEY_LOCAL_MACHINE, kAddInKey},
     {Step::Machine},
     "0x80070005",
     "- entry of the machine (1 key)"},
    {"33 register while the name with version takes no values",
     {},
     {Kind::ReadOnly, HKEY_LOCAL_MACHINE, kVersionedProgIdKey},
     {Step::Machine},
     "0x80070005",
     kEntryLeft + "; - name with version of the machine (1 key)"},
    {"34 register while the name takes no keys",
     {},
     {Kind::Volatile, HKEY_LOCAL_MACHINE, kProgIdKey},
     {Step::Machine},
     "0x800703FD",
     kEntryLeft + "; - name of the machine (1 key)"},
    {"35 register while the name takes no values",
     {},
     {Kind::ReadOnly, HKEY_LOCAL_MACHINE, kProgIdKey},
     {Step::Machine},
     "0x80070005",
     kEntryLeft + "; - name of the machine (1 key)"},
    {"36 register while the class is locked",
     {},
     {Kind::Locked, HKEY_LOCAL_MACHINE, kClassKey},
     {Step::Machine},
     "0x80070005",
     kEntryLeft},
    {"37 register while the type library's key takes no keys",
     {},
     {Kind::Volatile, HKEY_LOCAL_MACHINE, kLibraryKey},
     {Step::Machine},
     "0x80004005",
     kEntryAndInterfaceLeft},
    {"38 register while the type library takes no values",
     {},
     {Kind::ReadOnly, HKEY_LOCAL_MACHINE, kLibraryVersion},
     {Step::Machine},
     "0x80004005",
     kEntryAndInterfaceLeft},
    {"39 register while the type library is locked",
     {},
     {Kind::Locked, HKEY_LOCAL_MACHINE, kLibraryVersion},
     {Step::Machine},
     "0x80004005",
     kEntryAndInterfaceLeft},
    {"40 register once more while the class is locked",
     {Step::Machine},
     {Kind::Locked, HKEY_LOCAL_MACHINE, kClassKey},
     {Step::Machine},
     "0x80070005",
     Less({kMachineNames})},
    {"41 register once more while the entry takes no values",
     {Step::Machine},
     {Kind::ReadOnly, HKEY_LOCAL_MACHINE, kAddInKey},
     {Step::Machine},
     "0x80070005",
     Less({kEntry, kMachineClass, kLibrary})},
    {"42 unregister while the class is locked",
     {Step::Machine},
     {Kind::Locked, HKEY_LOCAL_MACHINE, kClassKey},
     {Step::UndoMachine},
     "0x80070005",
     Less({kMachineNames})},
    {"43 unregister while the type library is locked",
     {Step::Machine},
     {Kind::Locked, HKEY_LOCAL_MACHINE, kLibraryVersion},
     {Step::UndoMachine},
     "0x80070057",
     Less({kMachineClass})},
    {"44 register for the user while the user's name takes no values",
     {},
     {Kind::ReadOnly, HKEY_CURRENT_USER, kProgIdKey},
     {Step::User},
     "0x80070005",
     kEntryLeft + "; - name of the user (1 key)"},
    {"45 register for the user while the user's class is locked",
     {},
     {Kind::Locked, HKEY_CURRENT_USER, kClassKey},
     {Step::User},
     "0x80070005",
     kEntryLeft},
    {"46 register for the user while the entry takes no values",
     {},
     {Kind::ReadOnly, HKEY_LOCAL_MACHINE, kAddInKey},
     {Step::User},
     "0x80070005",
     "- entry of the machine (1 key)"},
    {"47 registered for the machine, register for the user while the user's class is locked",
     {Step::Machine},
     {Kind::Locked, HKEY_CURRENT_USER, kClassKey},
     {Step::User},
     "0x80070005",
     kNothing},
};

INSTANTIATE_TEST_SUITE_P(Plain, RegistrationSequenceTest, testing::ValuesIn(kPlain));
INSTANTIATE_TEST_SUITE_P(ByRegSvr32, RegistrationSequenceTest, testing::ValuesIn(kByRegSvr32));
INSTANTIATE_TEST_SUITE_P(Hindered, RegistrationSequenceTest, testing::ValuesIn(kHindered));

} // namespace
} // namespace orva::test
