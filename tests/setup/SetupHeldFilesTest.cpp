// A setup and an uninstaller while another program, for instance a virus scanner, holds a file that they
// need.
#include "harness/Files.h"
#include "harness/Text.h"
#include "setup/EndedProcess.h"
#include "setup/RegistrationObstacle.h"
#include "setup/SetupFixture.h"
#include "setup/SetupUser.h"

#include <thread>

namespace orva::test
{
namespace
{

class SetupHeldFilesTest : public SetupFixture
{
};

TEST_F(SetupHeldFilesTest, ADllThatCannotBeMovedStays)
{
    Install(OldVersion());
    UniqueHandle file = LockFile(InstalledModule());
    ExpectOldStays(kFileFailed, [&] { file.reset(); });
    Install(NewVersion());
}

TEST_F(SetupHeldFilesTest, ANewDllThatIsHeldAtAFirstInstallationIsToldWithItsError)
{
    UniqueHandle file;
    std::jthread user([&file] {
        // Process 0, because the setup's id is not known.
        Press(Texts().installs, kNext, 0);
        AnswerMessage(Texts().cannotReplace + InUseText() + L"\r\n\r\n" + Texts().nothingChanged, 0);
        file.reset();
        Press(Texts().nothingChanged, kCancel, 0);
    });
    EXPECT_FALSE(EndAtCall(OldVersion().setup, {}, "MoveFileExW", [&file] {
        if (file == nullptr && FileExists(InstalledUninstaller()))
        {
            file = LockFile(InstalledModule() + L".new");
        }
        return false;
    }));
    user.join();
    EXPECT_FALSE(FolderExists(InstallFolder()));
}

TEST_F(SetupHeldFilesTest, AnUninstallerThatCannotBeReplacedStays)
{
    Install(OldVersion());
    UniqueHandle file = LockFile(InstalledUninstaller());
    ExpectOldStays(kFileFailed, [&] { file.reset(); });
}

TEST_F(SetupHeldFilesTest, AFileThatCannotBeRemovedKeepsTheConnectorInstalled)
{
    Install(OldVersion());
    const CUninstallerCopy uninstaller;
    for (const std::wstring& name : InstalledFiles())
    {
        SCOPED_TRACE(Utf8(name));
        {
            const UniqueHandle file = LockFile(InstallFolder() + L"\\" + name);
            EXPECT_EQ(Run(uninstaller.Path(), InPlace({L"/S"})), kFileFailed);
        }
        ExpectInstalled(OldVersion());
    }
    Uninstall();
}

// As the uninstaller that has started the copy holds its file until it ends, and as a virus scanner may
// later.
TEST_F(SetupHeldFilesTest, AnUninstallerThatIsHeldForAMomentIsRemoved)
{
    Install(OldVersion());
    const CUninstallerCopy uninstaller;
    UniqueHandle holder = LockFile(InstalledUninstaller());
    int calls = 0;
    int callsAtTheEnd = 0;
    EXPECT_FALSE(EndAtCall(uninstaller.Path(), InPlace({L"/S"}), "MoveFileExW", [&] {
        // The third one is the second attempt to find out whether the file can be moved.
        if (++calls == 3)
        {
            holder.reset();
        }
        // The first one at the end is that with which the file goes.
        if (!FileExists(InstallFolder() + L"\\Third-party notices.txt"))
        {
            holder = ++callsAtTheEnd == 1 ? LockFile(InstalledUninstaller()) : UniqueHandle();
        }
        return false;
    }));
    EXPECT_EQ(callsAtTheEnd, 2);
    EXPECT_FALSE(FolderExists(InstallFolder()));
}

TEST_F(SetupHeldFilesTest, Regsvr32IsStartedAgainIfItCannotBeStartedAtFirst)
{
    UniqueHandle regsvr32;
    int starts = 0;
    EXPECT_FALSE(EndAtCall(OldVersion().setup, {L"/S"}, "CreateProcessW", [&] {
        ++starts;
        regsvr32 = starts == 1 ? LockFile(kRegsvr32) : UniqueHandle();
        return false;
    }));
    EXPECT_EQ(starts, 2);
    ExpectInstalled(OldVersion());
}

// An upgrade whose registration fails while the new DLL is held, from the moment at which the old one is to
// be put back.
class SetupHeldDllTest : public SetupHeldFilesTest
{
protected:
    // `isReleased`: whether the DLL is released at the second attempt.
    void UpgradeWithHeldDll(bool isReleased)
    {
        Install(OldVersion());
        CObstacle entry(CObstacle::Kind::ReadOnly, HKEY_LOCAL_MACHINE, kAddInKey);
        entry.Raise();
        int calls = 0;
        EXPECT_FALSE(EndAtCall(NewVersion().setup, {L"/S"}, "MoveFileExW", [&] {
            // Before that, the two other files are put back.
            const bool isDllNext = FileExists(InstalledModule() + L".before") &&
                                   !FileExists(InstalledModule() + L".new") &&
                                   !FileExists(InstalledUninstaller() + L".before");
            calls += isDllNext ? 1 : 0;
            if (isDllNext && calls == 1)
            {
                m_holder = LockFile(InstalledModule());
            }
            // Each attempt replaces the file or moves it aside.
            if (isReleased && calls == 3)
            {
                m_holder.reset();
            }
            return false;
        }));
        EXPECT_GE(calls, 3);
    }

    UniqueHandle m_holder;
};

TEST_F(SetupHeldDllTest, TheOldDllIsPutBackIfTheNewOneIsHeldForAMoment)
{
    UpgradeWithHeldDll(true);
    ExpectInstalled(OldVersion());
}

TEST_F(SetupHeldDllTest, TheCopyOfTheOldDllIsRegisteredIfTheNewOneStaysHeldAndTheNextSetupPutsItBack)
{
    UpgradeWithHeldDll(false);
    EXPECT_EQ(RegisteredModule(), InstalledModule() + L".before");
    EXPECT_TRUE(ReadFileBytes(RegisteredModule()) == ReadFileBytes(OldVersion().module));
    EXPECT_EQ(Run(NewVersion().setup), kFileFailed);
    EXPECT_TRUE(ReadFileBytes(RegisteredModule()) == ReadFileBytes(OldVersion().module));
    m_holder.reset();
    {
        CObstacle entry(CObstacle::Kind::ReadOnly, HKEY_LOCAL_MACHINE, kAddInKey);
        entry.Raise();
        ExpectOldStays(kRegistrationFailed, [&] { entry.Lower(); });
    }
    Install(NewVersion());
}

} // namespace
} // namespace orva::test
