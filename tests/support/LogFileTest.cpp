// The debug log's file: when there is one, where, how large it gets, and what happens when it cannot be
// written.
#include "support/LogFile.h"

#include "harness/Files.h"
#include "harness/ImportHook.h"
#include "harness/TempFolder.h"
#include "support/LogFixture.h"

#include <cerrno>
#include <optional>

namespace
{

using namespace orva::test;
using testing::ElementsAre;
using testing::IsEmpty;

int __cdecl WriteNothing(int, const void*, unsigned)
{
    errno = ENOSPC;
    return -1;
}

class LogFile : public CLogTest
{
protected:
    void SwitchOn() { m_user.SetDword(1); }
};

} // namespace

// The user's switch wins where it can be read. How it is read is tested with the registry's utilities.
TEST_F(LogFile, OnlyTheSwitchOneMakesAFile)
{
    struct CCase
    {
        std::optional<DWORD> user;
        std::optional<DWORD> machine;
        bool isOn;
    };
    constexpr std::nullopt_t kNone = std::nullopt;
    for (const CCase& row :
         {CCase{kNone, kNone, false}, CCase{1, kNone, true}, CCase{kNone, 1, true}, CCase{1, 0, true},
          CCase{0, 1, false}, CCase{2, 1, false}, CCase{0x01000000, 1, false}, CCase{0x101, 1, false},
          CCase{kNone, 2, false}, CCase{0xFFFFFFFF, kNone, false}})
    {
        SCOPED_TRACE(testing::PrintToString(row.user) + ", " + testing::PrintToString(row.machine));
        Reset();
        if (row.user)
        {
            m_user.SetDword(*row.user);
        }
        if (row.machine)
        {
            m_machine.SetDword(*row.machine);
        }
        EXPECT_EQ(CLogFile().IsOpen(), row.isOn);
        EXPECT_EQ(FolderExists(LogFolder()), row.isOn);
    }
}

TEST_F(LogFile, IsATextFileUnderItsFixedNameInTheFolderOfTheProduct)
{
    SwitchOn();
    CLogFile().Write("one\ntwo\n");
    EXPECT_THAT(ListFolder(LogFolder()), ElementsAre(L"logfile_OrvaAddIn.txt"));
    EXPECT_EQ(ReadLog(), "one\r\ntwo\r\n");
}

TEST_F(LogFile, EveryLineIsInTheFileAtOnce)
{
    SwitchOn();
    CLogFile log;
    log.Write("one\n");
    EXPECT_EQ(ReadLog(), "one\r\n");
    log.Write("two\n");
    EXPECT_EQ(ReadLog(), "one\r\ntwo\r\n");
}

TEST_F(LogFile, OthersMayReadAndWriteItMeanwhile)
{
    SwitchOn();
    CLogFile log;
    log.Write("mine\n");
    const UniqueHandle other(CreateFileW(LogPath().c_str(), FILE_APPEND_DATA | GENERIC_READ,
                                         FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0,
                                         nullptr));
    ASSERT_NE(other.get(), INVALID_HANDLE_VALUE) << GetLastError();
    DWORD written = 0;
    EXPECT_TRUE(WriteFile(other.get(), "theirs\r\n", 8, &written, nullptr));
    log.Write("mine again\n");
    EXPECT_EQ(ReadLog(), "mine\r\ntheirs\r\nmine again\r\n");
}

TEST_F(LogFile, AFileOfUpToOneMebibyteIsAppendedToAndALargerOneEmptied)
{
    SwitchOn();
    constexpr char kOldLine[] = "[2011-01-20 14:03:07] CConnect::OnConnection\r\n";
    const std::string old = std::string(1'048'576 - (sizeof(kOldLine) - 1), 'x') + kOldLine;
    CreateDirectoryW(LogFolder().c_str(), nullptr);
    WriteFileBytes(LogPath(), old);
    CLogFile().Write("new\n");
    EXPECT_TRUE(ReadLog() == old + "new\r\n");

    WriteFileBytes(LogPath(), "x" + old);
    CLogFile().Write("new\n");
    EXPECT_TRUE(ReadLog() == "new\r\n");
}

TEST_F(LogFile, MayGrowBeyondOneMebibyteWhileItIsOpen)
{
    SwitchOn();
    CLogFile log;
    const std::string line(4096, 'x');
    for (int i = 0; i < 512; ++i)
    {
        log.Write(line);
    }
    EXPECT_EQ(ReadLog().size(), 512u * 4096);
}

TEST_F(LogFile, WithoutALocalApplicationDataFolderItIsClosedAndNothingIsMade)
{
    SwitchOn();
    const CTempFolder temp;
    CRegistryValue folder(HKEY_CURRENT_USER,
                          L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\User Shell Folders",
                          L"Local AppData");
    folder.SetString(temp.File(L"missing"));
    wchar_t before[MAX_PATH];
    ASSERT_NE(GetCurrentDirectoryW(MAX_PATH, before), 0u);
    ASSERT_TRUE(SetCurrentDirectoryW(temp.Path().c_str()));
    EXPECT_FALSE(CLogFile().IsOpen());
    SetCurrentDirectoryW(before);

    EXPECT_THAT(ListFolder(temp.Path()), IsEmpty());
    // The log's folder if its path lacked the missing part.
    const std::wstring atTheRoot = temp.Path().substr(0, 2) + L"\\ORVA Connector";
    EXPECT_FALSE(FolderExists(atTheRoot));
    RemovePath(atTheRoot);
}

TEST_F(LogFile, IsClosedIfItsFolderCannotBeMadeOrItCannotBeOpened)
{
    SwitchOn();
    WriteFileBytes(LogFolder(), "a file where the folder should be");
    EXPECT_FALSE(CLogFile().IsOpen());
    EXPECT_EQ(ReadFileBytes(LogFolder()), "a file where the folder should be");
    RemovePath(LogFolder());

    CreateDirectoryW(LogFolder().c_str(), nullptr);
    CreateDirectoryW(LogPath().c_str(), nullptr);
    CLogFile log;
    EXPECT_FALSE(log.IsOpen());
    log.Write("dropped\n");
    EXPECT_TRUE(FolderExists(LogPath()));
}

TEST_F(LogFile, AWriteFailureIsIgnoredAndEndsTheFile)
{
    SwitchOn();
    CLogFile log;
    log.Write("kept\n");
    {
        const CImportHook fullDisk(GetModuleHandleW(nullptr), "msvcrt.dll", "_write", &WriteNothing);
        log.Write("lost\n");
    }
    log.Write("lost too\n");
    EXPECT_EQ(ReadLog(), "kept\r\n");
}
