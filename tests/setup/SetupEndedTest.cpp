// A setup that is ended in the midst of its work: Outlook finds the old add-in or the new one, and the next
// setup completes the work.
#include "harness/Files.h"
#include "harness/Thorough.h"
#include "harness/Watchdog.h"
#include "harness/WindowDriver.h"
#include "outlook/AddInModule.h"
#include "setup/EndedProcess.h"
#include "setup/RegistrationObstacle.h"
#include "setup/SetupFixture.h"
#include "setup/SetupUser.h"

namespace orva::test
{
namespace
{

// The value of "LoadBehavior" with which Outlook loads an add-in at its start.
constexpr DWORD kLoadAtStart = 3;

class SetupEndedTest : public SetupFixture
{
protected:
    // The DLL that Outlook loads at its next start. Fails the test unless it works.
    static std::wstring WorkingModule()
    {
        // The last program that the setup has started may still be at work.
        std::wstring path;
        EXPECT_TRUE(WaitUntil([&] {
            path = RegisteredModule();
            return FileExists(path) &&
                   RegistryDword(HKEY_LOCAL_MACHINE, kAddInKey, L"LoadBehavior") == kLoadAtStart;
        })) << testing::PrintToString(TakeState());
        EXPECT_NE(CAddInModule(path).Create(), nullptr);
        const auto module = ReadFileBytes(path);
        EXPECT_TRUE(module == ReadFileBytes(OldVersion().module) ||
                    module == ReadFileBytes(NewVersion().module));
        return path;
    }

    // Replaces whatever is there by the old version.
    static void InstallOldAgain()
    {
        DeleteRegistryKey(HKEY_LOCAL_MACHINE, kEntryKey);
        Install(OldVersion());
    }
};

// Whether the setup is silent or shows its pages.
class SetupEndedAtAnyTimeTest : public SetupEndedTest, public testing::WithParamInterface<bool>
{
protected:
    // Has the newer version's setup begin: started, or with its pages at the click that begins the
    // installation.
    static std::unique_ptr<CChildProcess> Begin()
    {
        auto setup = std::make_unique<CChildProcess>(
            CProcessOptions{.program = NewVersion().setup, .arguments = {GetParam() ? L"/S" : L""}});
        if (!GetParam())
        {
            Press(Texts().replaces, kNext, setup->Id());
        }
        return setup;
    }

    // The milliseconds from there to its end, or to its last page.
    static DWORD Duration()
    {
        const std::unique_ptr<CChildProcess> setup = Begin();
        const ULONGLONG start = GetTickCount64();
        if (GetParam())
        {
            EXPECT_EQ(setup->WaitForExit(), kSetupDone);
        }
        else
        {
            WaitForPage(Texts().usesNew, setup->Id());
        }
        return static_cast<DWORD>(GetTickCount64() - start);
    }
};

TEST_P(SetupEndedAtAnyTimeTest, LeavesAWorkingAddInAndTheNextSetupCompletesTheWork)
{
    Install(OldVersion());
    const DWORD duration = Duration();
    const int moments = Repetitions(2, 40);
    for (int moment = 0; moment < moments; ++moment)
    {
        SCOPED_TRACE("moment " + std::to_string(moment));
        SetTestDeadline(kTestDeadline);
        InstallOldAgain();
        const std::unique_ptr<CChildProcess> setup = Begin();
        // In the middle of each part: one of two is ended at a quarter and at three quarters.
        setup->WaitForExit(duration * static_cast<DWORD>(2 * moment + 1) / static_cast<DWORD>(2 * moments));
        setup->End();
        WorkingModule();
        Install(NewVersion());
    }
}

INSTANTIATE_TEST_SUITE_P(Silent, SetupEndedAtAnyTimeTest, testing::Values(true));
INSTANTIATE_TEST_SUITE_P(WithPages, SetupEndedAtAnyTimeTest, testing::Values(false));

// Each step of replacing a file is one of these calls.
TEST_F(SetupEndedTest, BeforeAnyMoveOfAFileLeavesAWorkingAddIn)
{
    int moves = 0;
    for (bool isEnded = true; isEnded; ++moves)
    {
        SCOPED_TRACE("before move " + std::to_string(moves + 1));
        SetTestDeadline(kTestDeadline);
        InstallOldAgain();
        const CAddInModule outlook(InstalledModule());
        int count = 0;
        isEnded = EndAtCall(NewVersion().setup, {L"/S"}, "MoveFileExW", [&] { return count++ == moves; });
        WorkingModule();
        EXPECT_EQ(Run(NewVersion().setup), kSetupDone);
        EXPECT_EQ(RegisteredModule(), InstalledModule());
    }
    // Of the notices, the uninstaller and the DLL; aside; again the DLL; and at the next start of Windows.
    // The last setup made them all.
    EXPECT_EQ(moves, 6 + 1);
}

// Neither can the new DLL be moved to its place nor the old one back.
TEST_F(SetupEndedTest, ADllThatCannotBeMovedBackIsReplacedByItsCopy)
{
    Install(OldVersion());
    const CAddInModule outlook(InstalledModule());
    std::vector<UniqueHandle> locks;
    EXPECT_FALSE(EndAtCall(NewVersion().setup, {L"/S"}, "MoveFileExW", [&] {
        if (locks.empty() && !FileExists(InstalledModule()))
        {
            for (const wchar_t* const ending : {L".new", L".1.old"})
            {
                locks.push_back(LockFile(InstalledModule() + ending));
            }
        }
        return false;
    }));
    EXPECT_EQ(locks.size(), 2u);
    EXPECT_EQ(WorkingModule(), InstalledModule());
    EXPECT_TRUE(ReadFileBytes(InstalledModule()) == ReadFileBytes(OldVersion().module));
    EXPECT_EQ(RegistryString(HKEY_LOCAL_MACHINE, kEntryKey, L"DisplayVersion"), OldVersion().version);
}

// Ended while the DLL that Outlook has loaded is aside and the new one is not yet in its place.
class SetupEndedBetweenTheDllsTest : public SetupEndedTest
{
protected:
    void SetUp() override
    {
        Install(OldVersion());
        const CAddInModule outlook(InstalledModule());
        ASSERT_TRUE(EndAtCall(NewVersion().setup, {L"/S"}, "MoveFileExW",
                              [] { return !FileExists(InstalledModule()); }));
        EXPECT_TRUE(ReadFileBytes(WorkingModule()) == ReadFileBytes(OldVersion().module));
    }
};

TEST_F(SetupEndedBetweenTheDllsTest, TheNextSetupCompletesTheWork)
{
    Install(NewVersion());
}

TEST_F(SetupEndedBetweenTheDllsTest, TheNextSetupCompletesTheWorkWhileTheNextOutlookIsOpen)
{
    {
        const CAddInModule outlook(RegisteredModule());
        EXPECT_EQ(Run(NewVersion().setup), kSetupDone);
        EXPECT_EQ(RegisteredModule(), InstalledModule());
        EXPECT_THAT(ListFolder(InstallFolder()),
                    testing::UnorderedElementsAreArray(InstalledFiles({L"OrvaOscAddin.dll.1.old"})));
        EXPECT_THAT(DeletedAtNextStart(), testing::Contains(InstallFolder() + L"\\OrvaOscAddin.dll.1.old"));
    }
    Install(NewVersion());
}

TEST_F(SetupEndedBetweenTheDllsTest, ANextSetupThatFailsLeavesTheOldAddIn)
{
    {
        CObstacle entry(CObstacle::Kind::ReadOnly, HKEY_LOCAL_MACHINE, kAddInKey);
        entry.Raise();
        EXPECT_EQ(Run(NewVersion().setup), kRegistrationFailed);
    }
    EXPECT_EQ(WorkingModule(), InstalledModule());
    ExpectInstalled(OldVersion());
}

TEST_F(SetupEndedBetweenTheDllsTest, TheUninstallerLeavesNothing)
{
    Uninstall();
}

TEST_F(SetupEndedBetweenTheDllsTest, TheUninstallerLeavesWhatTheNextOutlookUsesUntilTheNextStartOfWindows)
{
    const CAddInModule outlook(RegisteredModule());
    RunUninstaller();
    EXPECT_THAT(ListFolder(InstallFolder()), testing::ElementsAre(L"OrvaOscAddin.dll.before.1.old"));
    EXPECT_THAT(DeletedAtNextStart(),
                testing::Contains(InstallFolder() + L"\\OrvaOscAddin.dll.before.1.old"));
}

} // namespace
} // namespace orva::test
