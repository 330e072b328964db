// The setup's and the uninstaller's pages and messages in the language of Windows, as the user reads and
// operates them.
#include "harness/Files.h"
#include "harness/SeenWindow.h"
#include "harness/Text.h"
#include "outlook/AddInModule.h"
#include "setup/RegistrationObstacle.h"
#include "setup/SetupFixture.h"
#include "setup/SetupUser.h"

#include <set>

namespace orva::test
{
namespace
{

using Text = const wchar_t* CSetupTexts::*;

// What somebody starts, what he reads and presses, and what comes of it.
struct CSituation
{
    const char* name;
    std::wstring program;
    DWORD code;
    // The version that is installed then; null: none.
    const CSetupVersion* result;
    // The first page, its caption and the button that begins; the last page. Only the first: a message.
    Text first;
    Text caption = nullptr;
    Text begin = nullptr;
    Text last = nullptr;
    // A file that is missing when it starts.
    std::wstring missing = {};
};

// In this order they lead from a machine without the connector back to it.
std::vector<CSituation> Situations()
{
    return {
        {"fresh installation", OldVersion().setup, kSetupDone, &OldVersion(), &CSetupTexts::installs,
         &CSetupTexts::caption, &CSetupTexts::install, &CSetupTexts::used},
        {"repair", OldVersion().setup, kSetupDone, &OldVersion(), &CSetupTexts::repairs,
         &CSetupTexts::caption, &CSetupTexts::install, &CSetupTexts::used, InstalledModule()},
        {"upgrade", NewVersion().setup, kSetupDone, &NewVersion(), &CSetupTexts::replaces,
         &CSetupTexts::newCaption, &CSetupTexts::install, &CSetupTexts::usesNew},
        {"refused downgrade", OldVersion().setup, kNewerInstalled, &NewVersion(), &CSetupTexts::newer},
        {"uninstallation", InstalledUninstaller(), kSetupDone, nullptr, &CSetupTexts::logStays,
         &CSetupTexts::uninstallCaption, &CSetupTexts::uninstall, &CSetupTexts::removed},
    };
}

// A step that cannot be done.
struct CFailure
{
    const char* name;
    // Sets it up until its result is destroyed.
    std::function<std::shared_ptr<void>()> begin;
    std::wstring program;
    DWORD code;
    // The page on which the work begins; null: the message comes before any page.
    Text first;
    std::wstring message;
    // The page that stays; null: the program ends.
    Text last;
};

std::shared_ptr<void> Raise(CObstacle::Kind kind, const wchar_t* key)
{
    auto obstacle = std::make_shared<CObstacle>(kind, HKEY_LOCAL_MACHINE, key);
    obstacle->Raise();
    return obstacle;
}

class SetupPagesTest : public SetupFixture
{
protected:
    // A language that was asked for has to be there, or the tests would prove another one.
    void SetUp() override { ASSERT_TRUE(IsAskedLanguage()); }

    // The uninstaller's arguments let it work in its place, so that its exit code can be seen.
    static std::vector<std::wstring> Arguments(const std::wstring& program, bool isSilent)
    {
        std::vector<std::wstring> arguments;
        if (isSilent)
        {
            arguments.push_back(L"/S");
        }
        return program == InstalledUninstaller() ? InPlace(arguments) : arguments;
    }

    // Asserts that the version is installed, or that nothing is left but the uninstaller, which has run in
    // its place.
    static void ExpectResult(const CSituation& situation)
    {
        if (situation.result != nullptr)
        {
            ExpectInstalled(*situation.result);
            return;
        }
        EXPECT_THAT(ListFolder(InstallFolder()), testing::ElementsAre(L"Uninstall.exe"));
        EXPECT_FALSE(RegistryKeyExists(HKEY_LOCAL_MACHINE, kEntryKey));
        EXPECT_FALSE(RegistryKeyExists(HKEY_LOCAL_MACHINE, kClassKey));
    }

    // Runs it silently; fails the test if any window is seen.
    static DWORD RunSilently(const CSituation& situation)
    {
        RemovePath(situation.missing);
        const std::wstring& program = situation.program;
        const std::vector<HWND> before = FindWindows({.process = 0});
        std::set<std::wstring> seen;
        CChildProcess process({.program = program, .arguments = Arguments(program, true)});
        EXPECT_TRUE(WaitUntil([&] {
            for (const HWND window : FindWindows({.process = 0}))
            {
                if (std::find(before.begin(), before.end(), window) == before.end())
                {
                    seen.insert(WindowClassName(window) + L": " + WindowText(window));
                }
            }
            constexpr DWORD between = 30;
            return process.WaitForExit(between).has_value();
        }));
        EXPECT_THAT(seen, testing::IsEmpty());
        return process.WaitForExit().value_or(STILL_ACTIVE);
    }

    DWORD RunWithPages(const CSituation& situation) const
    {
        RemovePath(situation.missing);
        CChildProcess process(
            {.program = situation.program, .arguments = Arguments(situation.program, false)});
        if (situation.last == nullptr)
        {
            AnswerMessage(m_texts.*situation.first, process.Id());
        }
        else
        {
            const HWND first = WaitForPage(m_texts.*situation.first, process.Id());
            EXPECT_EQ(WindowText(first), Filled(m_texts.*situation.caption));
            EXPECT_EQ(ChildText(first, kNext), m_texts.*situation.begin);
            EXPECT_TRUE(ClickButton(first, kNext));
            Press(m_texts.*situation.last, kNext, process.Id());
        }
        return process.WaitForExit().value_or(STILL_ACTIVE);
    }

    void ExpectFailure(const CFailure& failure) const
    {
        const std::shared_ptr<void> obstacle = failure.begin();
        CChildProcess process({.program = failure.program, .arguments = Arguments(failure.program, false)});
        if (failure.first != nullptr)
        {
            Press(m_texts.*failure.first, kNext, process.Id());
        }
        if (failure.first == &CSetupTexts::logStays)
        {
            WaitForPage(m_texts.removing, process.Id());
        }
        AnswerMessage(failure.message, process.Id());
        if (failure.last != nullptr)
        {
            Press(m_texts.*failure.last, kCancel, process.Id());
        }
        EXPECT_EQ(process.WaitForExit(), failure.code);
    }

    // Runs the uninstaller by its copy in the temporary folder, as "Programs and Features" starts it.
    void ExpectUninstallerAsksForNoRestart() const
    {
        EXPECT_EQ(Run(InstalledUninstaller(), {}), kSetupDone);
        const HWND first = WaitForPage(m_texts.logStays, 0);
        EXPECT_EQ(WindowText(first), Filled(m_texts.uninstallCaption));
        EXPECT_EQ(ChildText(first, kNext), m_texts.uninstall);
        Press(m_texts.logStays, kNext, 0);
        const HWND last = WaitForPage(m_texts.disappears, 0);
        for (const HWND control : ChildWindows(last))
        {
            const LONG type = GetWindowLongW(control, GWL_STYLE) & BS_TYPEMASK;
            const bool isButton = WindowClassName(control) == L"Button" && IsWindowVisible(control);
            EXPECT_FALSE(isButton && type != BS_PUSHBUTTON && type != BS_DEFPUSHBUTTON)
                << Utf8(WindowText(control));
        }
        EXPECT_TRUE(ClickButton(last, kNext));
        EXPECT_TRUE(WaitUntilGone(last));
    }

    const CSetupTexts& m_texts = Texts();
};

TEST_F(SetupPagesTest, DoWhatTheSilentRunDoes)
{
    std::vector<CInstalledState> silently;
    for (const CSituation& situation : Situations())
    {
        SCOPED_TRACE(situation.name);
        EXPECT_EQ(RunSilently(situation), situation.code);
        ExpectResult(situation);
        silently.push_back(TakeState());
    }
    RemovePath(InstallFolder());
    for (const CSituation& situation : Situations())
    {
        SCOPED_TRACE(situation.name);
        EXPECT_EQ(RunWithPages(situation), situation.code);
        EXPECT_TRUE(TakeState() == silently.front()) << testing::PrintToString(TakeState());
        silently.erase(silently.begin());
    }
}

// From here on, the tests whose names begin with "Say" are run in every language.
TEST_F(SetupPagesTest, SayWhatComesOfAWorkDuringWhichOutlookIsOpen)
{
    std::vector<CSituation> situations = Situations();
    // Removing is the next test.
    situations.pop_back();
    situations[1].last = &CSetupTexts::repaired;
    situations[1].missing.clear();
    situations[2].last = &CSetupTexts::restart;
    std::unique_ptr<CAddInModule> outlook;
    for (const CSituation& situation : situations)
    {
        SCOPED_TRACE(situation.name);
        EXPECT_EQ(RunWithPages(situation), situation.code);
        if (outlook == nullptr)
        {
            outlook = std::make_unique<CAddInModule>(InstalledModule());
        }
    }
    // The DLL that is loaded is not even the installed one any more.
    EXPECT_THAT(ListFolder(InstallFolder()),
                testing::UnorderedElementsAreArray(InstalledFiles({L"OrvaOscAddin.dll.1.old"})));
    ExpectUninstallerAsksForNoRestart();
}

TEST_F(SetupPagesTest, ChangeNothingIfTheUserCancels)
{
    CChildProcess setup({.program = OldVersion().setup});
    Press(m_texts.installs, kCancel, setup.Id());
    EXPECT_EQ(setup.WaitForExit(), kSetupCancelled);
    EXPECT_EQ(TakeState().files, CInstalledState().files);
}

TEST_F(SetupPagesTest, SayWhatFailedAndThatNothingWasChanged)
{
    Install(OldVersion());
    const auto lock = [] { return std::make_shared<UniqueHandle>(LockFile(InstalledModule())); };
    const auto run = [] { return std::make_shared<UniqueHandle>(CreateMutexW(nullptr, FALSE, kSetupMutex)); };
    const std::wstring nothing = std::wstring(L"\r\n\r\n") + m_texts.nothingChanged;
    const std::wstring still = std::wstring(L"\r\n\r\n") + m_texts.stillInstalled;
    const CFailure failures[] = {
        {"busy", run, NewVersion().setup, kSetupBusy, nullptr, m_texts.busy, nullptr},
        {"a folder stands in the file's place",
         [] {
             const std::wstring path = InstalledModule() + L".new";
             EXPECT_TRUE(CreateDirectoryW(path.c_str(), nullptr));
             return std::shared_ptr<void>(nullptr, [path](void*) { RemovePath(path); });
         },
         NewVersion().setup, kFileFailed, &CSetupTexts::replaces, m_texts.cannotWrite + nothing,
         &CSetupTexts::nothingChanged},
        {"locked", lock, NewVersion().setup, kFileFailed, &CSetupTexts::replaces,
         m_texts.cannotReplace + InUseText() + nothing, &CSetupTexts::nothingChanged},
        {"saving",
         [] {
             std::shared_ptr<void> saved = Raise(CObstacle::Kind::Locked, kSavedKey);
             return std::shared_ptr<void>(nullptr, [saved](void*) mutable {
                 saved.reset();
                 DeleteRegistryKey(HKEY_LOCAL_MACHINE, kSavedKey);
             });
         },
         NewVersion().setup, kRegistrationFailed, &CSetupTexts::replaces, m_texts.cannotSave + nothing,
         &CSetupTexts::nothingChanged},
        {"registration", [] { return Raise(CObstacle::Kind::ReadOnly, kAddInKey); }, NewVersion().setup,
         kRegistrationFailed, &CSetupTexts::replaces, m_texts.cannotRegister + nothing,
         &CSetupTexts::nothingChanged},
        {"starting regsvr32", [] { return std::make_shared<UniqueHandle>(LockFile(kRegsvr32)); },
         NewVersion().setup, kRegistrationFailed, &CSetupTexts::replaces,
         m_texts.cannotStartRegsvr32 + nothing, &CSetupTexts::nothingChanged},
        {"entry", [] { return Raise(CObstacle::Kind::ReadOnly, kEntryKey); }, NewVersion().setup,
         kEntryFailed, &CSetupTexts::replaces, m_texts.cannotWriteEntry + nothing,
         &CSetupTexts::nothingChanged},
        {"uninstaller busy", run, InstalledUninstaller(), kSetupBusy, nullptr, m_texts.busy, nullptr},
        {"uninstaller, locked", lock, InstalledUninstaller(), kFileFailed, &CSetupTexts::logStays,
         m_texts.cannotRemove + InUseText() + still, &CSetupTexts::notUninstalled},
    };
    const CInstalledState before = TakeState();
    for (const CFailure& failure : failures)
    {
        SCOPED_TRACE(failure.name);
        ExpectFailure(failure);
        EXPECT_TRUE(TakeState() == before) << testing::PrintToString(TakeState());
    }
    // Without the DLL, which would be registered again.
    RemovePath(InstalledModule());
    ExpectFailure({"unregistering", [] { return Raise(CObstacle::Kind::Locked, kClassKey); },
                   InstalledUninstaller(), kRegistrationFailed, &CSetupTexts::logStays,
                   m_texts.cannotUnregister, &CSetupTexts::notUninstalled});
    ExpectFailure({"removing the entry", [] { return Raise(CObstacle::Kind::Locked, kEntryKey); },
                   InstalledUninstaller(), kEntryFailed, &CSetupTexts::logStays, m_texts.cannotRemoveEntry,
                   &CSetupTexts::notUninstalled});
    CChildProcess uninstaller(
        {.program = InstalledUninstaller(), .arguments = Arguments(InstalledUninstaller(), false)});
    Press(m_texts.logStays, kNext, uninstaller.Id());
    Press(m_texts.removed, kNext, uninstaller.Id());
    EXPECT_EQ(uninstaller.WaitForExit(), kSetupDone);
}

} // namespace
} // namespace orva::test
