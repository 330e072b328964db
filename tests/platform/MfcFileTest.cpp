// CFile: opening and its refusals, writing, closing.
#include "harness/Files.h"
#include "harness/TempFolder.h"
#include "harness/Text.h"

#include <afx.h>

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace
{

using orva::test::CTempFolder;
using orva::test::ReadFileBytes;
using orva::test::Utf8;

struct CFileFailure
{
    int cause;
    LONG osError;
    std::string fileName;
};

// Runs `action`; the CFileException* it threw, if any.
template <typename F> std::optional<CFileFailure> FailureOf(F action)
{
    try
    {
        action();
    }
    catch (CFileException* exception)
    {
        const CFileFailure failure = {exception->m_cause, exception->m_lOsError,
                                      Utf8(exception->m_strFileName.GetString())};
        exception->Delete();
        return failure;
    }
    return std::nullopt;
}

// Flags that callers add up.
static_assert((CFile::modeCreate | CFile::modeWrite | CFile::shareDenyWrite) == 0x1021);
static_assert(CFile::modeRead == 0 && CFile::modeReadWrite == 2 && CFile::shareExclusive == 0x10 &&
              CFile::shareDenyNone == 0x40 && CFile::modeNoTruncate == 0x2000 && CFile::typeBinary == 0x8000);

bool CanOpen(const std::wstring& path, DWORD access, DWORD share = FILE_SHARE_READ | FILE_SHARE_WRITE)
{
    const HANDLE file =
        CreateFileW(path.c_str(), access, share, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
    {
        return false;
    }
    CloseHandle(file);
    return true;
}

class MfcFile : public testing::Test
{
protected:
    // Opens the test's file for writing, with more flags.
    void Create(CFile& file, UINT flags = 0)
    {
        ASSERT_TRUE(file.Open(m_path.c_str(), CFile::modeCreate | CFile::modeWrite | flags));
    }

    CTempFolder m_folder;
    std::wstring m_path = m_folder.File(L"file.bin");
};

TEST_F(MfcFile, CreatesAndWrites)
{
    CFile file;
    EXPECT_EQ(INVALID_HANDLE_VALUE, file.m_hFile);
    Create(file);
    EXPECT_NE(CFile::hFileNull, file.m_hFile);
    file.Write("hello\n", 6);
    file.Write("world", 5);
    file.Write(nullptr, 0);
    file.Close();
    EXPECT_EQ("hello\nworld", ReadFileBytes(m_path));
    Create(file, CFile::modeNoTruncate);
    file.Close();
    EXPECT_EQ("hello\nworld", ReadFileBytes(m_path));
    Create(file);
    file.Close();
    EXPECT_EQ("", ReadFileBytes(m_path));
}

TEST_F(MfcFile, RelativeNameBecomesTheFullPath)
{
    wchar_t before[MAX_PATH] = {};
    GetCurrentDirectoryW(MAX_PATH, before);
    ASSERT_TRUE(SetCurrentDirectoryW(m_folder.Path().c_str()));
    CFile file;
    const BOOL isOpen = file.Open(L"file.bin", CFile::modeCreate | CFile::modeWrite);
    SetCurrentDirectoryW(before);
    EXPECT_TRUE(isOpen);
    CloseHandle(file.m_hFile);
    const auto failure = FailureOf([&] { file.Close(); });
    ASSERT_TRUE(failure);
    EXPECT_EQ(Utf8(m_path), failure->fileName);
}

TEST_F(MfcFile, ShareFlagSaysWhatOthersMay)
{
    const struct
    {
        UINT share;
        bool mayRead;
        bool mayWrite;
    } rows[] = {
        {CFile::shareCompat, false, false},   {CFile::shareExclusive, false, false},
        {CFile::shareDenyWrite, true, false}, {CFile::shareDenyRead, false, true},
        {CFile::shareDenyNone, true, true},
    };
    for (const auto& [share, mayRead, mayWrite] : rows)
    {
        CFile file;
        Create(file, share);
        EXPECT_EQ(mayRead, CanOpen(m_path, GENERIC_READ)) << share;
        EXPECT_EQ(mayWrite, CanOpen(m_path, GENERIC_WRITE)) << share;
    }
}

TEST_F(MfcFile, HandleIsInheritedUnlessToldOtherwise)
{
    for (const UINT inherit : {UINT{0}, UINT{CFile::modeNoInherit}})
    {
        CFile file;
        Create(file, inherit);
        DWORD flags = 0;
        ASSERT_TRUE(GetHandleInformation(file.m_hFile, &flags));
        EXPECT_EQ(inherit == 0, (flags & HANDLE_FLAG_INHERIT) != 0);
    }
}

TEST_F(MfcFile, FailedOpenTellsTheWin32ErrorBothWays)
{
    const struct
    {
        std::wstring path;
        UINT flags;
        DWORD error;
        int cause;
    } cases[] = {
        {m_folder.File(L"absent"), CFile::modeRead, ERROR_FILE_NOT_FOUND, CFileException::fileNotFound},
        {m_folder.File(L"no folder\\x"), CFile::modeCreate | CFile::modeWrite, ERROR_PATH_NOT_FOUND,
         CFileException::badPath},
        {m_folder.Path(), CFile::modeCreate | CFile::modeWrite, ERROR_ACCESS_DENIED,
         CFileException::accessDenied},
        {m_folder.File(L"a?b"), CFile::modeCreate | CFile::modeWrite, ERROR_INVALID_NAME,
         CFileException::badPath},
        {L"", CFile::modeRead, ERROR_PATH_NOT_FOUND, CFileException::badPath},
        {m_folder.File(L"x"), CFile::modeWrite | CFile::modeReadWrite, ERROR_INVALID_PARAMETER,
         CFileException::genericException},
    };
    for (const auto& [path, flags, error, cause] : cases)
    {
        CFile file;
        SetLastError(0);
        EXPECT_FALSE(file.Open(path.c_str(), flags));
        EXPECT_EQ(error, GetLastError()) << Utf8(path);

        CFileException exception;
        SetLastError(0);
        EXPECT_FALSE(file.Open(path.c_str(), flags, &exception));
        EXPECT_EQ(error, GetLastError()) << Utf8(path);
        EXPECT_EQ(static_cast<LONG>(error), exception.m_lOsError) << Utf8(path);
        EXPECT_EQ(cause, exception.m_cause) << Utf8(path);
        EXPECT_EQ(Utf8(path), Utf8(exception.m_strFileName.GetString()));
        EXPECT_EQ(CFile::hFileNull, file.m_hFile);
    }
    CFile file;
    EXPECT_FALSE(file.Open(nullptr, CFile::modeRead));
    EXPECT_EQ(DWORD{ERROR_PATH_NOT_FOUND}, GetLastError());
}

TEST_F(MfcFile, FileInUseIsASharingViolation)
{
    CFile first;
    Create(first);
    CFile second;
    CFileException exception;
    EXPECT_FALSE(second.Open(m_path.c_str(), CFile::modeRead, &exception));
    EXPECT_EQ(CFileException::sharingViolation, exception.m_cause);
    EXPECT_EQ(ERROR_SHARING_VIOLATION, exception.m_lOsError);
}

TEST_F(MfcFile, CloseAnotherOpenAndTheDestructorReleaseTheFile)
{
    CFile file;
    Create(file);
    EXPECT_FALSE(CanOpen(m_path, GENERIC_READ));
    file.Close();
    EXPECT_EQ(CFile::hFileNull, file.m_hFile);
    EXPECT_TRUE(CanOpen(m_path, GENERIC_READ, 0));
    EXPECT_FALSE(FailureOf([&] { file.Close(); })) << "it is closed already";
    file.Abort();

    Create(file);
    ASSERT_TRUE(file.Open(m_folder.File(L"other").c_str(), CFile::modeCreate | CFile::modeWrite));
    EXPECT_TRUE(CanOpen(m_path, GENERIC_READ, 0));
    {
        CFile brief;
        Create(brief);
    }
    EXPECT_TRUE(CanOpen(m_path, GENERIC_READ, 0));
}

TEST_F(MfcFile, FailedCloseThrowsAndLeavesTheObjectClosed)
{
    CFile file;
    Create(file);
    CloseHandle(file.m_hFile);
    const auto failure = FailureOf([&] { file.Close(); });
    ASSERT_TRUE(failure);
    EXPECT_EQ(CFileException::invalidFile, failure->cause);
    EXPECT_EQ(ERROR_INVALID_HANDLE, failure->osError);
    EXPECT_EQ(Utf8(m_path), failure->fileName);
    EXPECT_EQ(CFile::hFileNull, file.m_hFile);
}

TEST_F(MfcFile, AbortIgnoresFailures)
{
    CFile file;
    Create(file);
    CloseHandle(file.m_hFile);
    EXPECT_FALSE(FailureOf([&] { file.Abort(); }));
    EXPECT_EQ(CFile::hFileNull, file.m_hFile);
}

TEST_F(MfcFile, WritingToAFileThatIsClosedOrOpenForReadingThrows)
{
    CFile file;
    EXPECT_FALSE(FailureOf([&] { file.Write("", 0); }));
    const auto closed = FailureOf([&] { file.Write("x", 1); });
    ASSERT_TRUE(closed);
    EXPECT_EQ(CFileException::invalidFile, closed->cause);
    Create(file);
    ASSERT_TRUE(file.Open(m_path.c_str(), CFile::modeRead));
    const auto readOnly = FailureOf([&] { file.Write("x", 1); });
    ASSERT_TRUE(readOnly);
    EXPECT_EQ(CFileException::accessDenied, readOnly->cause);
    EXPECT_EQ(ERROR_ACCESS_DENIED, readOnly->osError);
    EXPECT_EQ(Utf8(m_path), readOnly->fileName);
}

// A pipe that does not wait takes what fits, which is the one way to a write that succeeds in part only.
TEST_F(MfcFile, ShortWriteIsDiskFull)
{
    const std::wstring name = L"\\\\.\\pipe\\orva-short-write-" + std::to_wstring(GetCurrentProcessId());
    const HANDLE reader = CreateNamedPipeW(name.c_str(), PIPE_ACCESS_INBOUND, PIPE_TYPE_BYTE | PIPE_WAIT, 1,
                                           4096, 4096, 0, nullptr);
    ASSERT_NE(INVALID_HANDLE_VALUE, reader);
    {
        CFile file;
        ASSERT_TRUE(file.Open(name.c_str(), CFile::modeWrite));
        DWORD mode = PIPE_READMODE_BYTE | PIPE_NOWAIT;
        EXPECT_TRUE(SetNamedPipeHandleState(file.m_hFile, &mode, nullptr, nullptr));
        const std::string bytes(1 << 22, 'x');
        const auto failure = FailureOf([&] { file.Write(bytes.data(), static_cast<UINT>(bytes.length())); });
        EXPECT_TRUE(failure);
        if (failure)
        {
            EXPECT_EQ(CFileException::diskFull, failure->cause);
            EXPECT_EQ(ERROR_DISK_FULL, failure->osError);
        }
    }
    CloseHandle(reader);
}

} // namespace
