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

bool CanOpen(const std::wstring& path, DWORD access, DWORD share)
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
    // Writes `content` to the test's file.
    void Fill(const std::string& content)
    {
        CFile file;
        ASSERT_TRUE(file.Open(m_path.c_str(), CFile::modeCreate | CFile::modeWrite));
        file.Write(content.data(), static_cast<UINT>(content.length()));
    }

    CTempFolder m_folder;
    std::wstring m_path = m_folder.File(L"file.bin");
};

TEST_F(MfcFile, FlagsHaveTheOriginalsValues)
{
    EXPECT_EQ(0x1021U, CFile::modeCreate | CFile::modeWrite | CFile::shareDenyWrite);
    EXPECT_EQ(0U, +CFile::modeRead);
    EXPECT_EQ(2U, +CFile::modeReadWrite);
    EXPECT_EQ(0x10U, +CFile::shareExclusive);
    EXPECT_EQ(0x40U, +CFile::shareDenyNone);
    EXPECT_EQ(0x2000U, +CFile::modeNoTruncate);
    EXPECT_EQ(0x8000U, +CFile::typeBinary);
}

TEST_F(MfcFile, StartsClosed)
{
    CFile file;
    EXPECT_EQ(CFile::hFileNull, file.m_hFile);
    EXPECT_EQ(INVALID_HANDLE_VALUE, file.m_hFile);
}

TEST_F(MfcFile, CreatesAndWrites)
{
    CFile file;
    ASSERT_TRUE(file.Open(m_path.c_str(), CFile::modeCreate | CFile::modeReadWrite));
    EXPECT_NE(CFile::hFileNull, file.m_hFile);
    file.Write("hello\n", 6);
    file.Write("world", 5);
    file.Write(nullptr, 0);
    file.Close();
    EXPECT_EQ("hello\nworld", ReadFileBytes(m_path));
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

TEST_F(MfcFile, CreateEmptiesAnExistingFile)
{
    Fill("before");
    CFile file;
    ASSERT_TRUE(file.Open(m_path.c_str(), CFile::modeCreate | CFile::modeWrite));
    file.Close();
    EXPECT_EQ("", ReadFileBytes(m_path));
}

TEST_F(MfcFile, CreateWithNoTruncateKeepsTheContent)
{
    Fill("before");
    CFile file;
    ASSERT_TRUE(file.Open(m_path.c_str(), CFile::modeCreate | CFile::modeNoTruncate | CFile::modeWrite));
    file.Close();
    EXPECT_EQ("before", ReadFileBytes(m_path));
}

TEST_F(MfcFile, DenyWriteLetsOthersReadOnly)
{
    CFile file;
    ASSERT_TRUE(file.Open(m_path.c_str(), CFile::modeCreate | CFile::modeWrite | CFile::shareDenyWrite));
    EXPECT_TRUE(CanOpen(m_path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE));
    EXPECT_FALSE(CanOpen(m_path, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE));
}

TEST_F(MfcFile, DenyReadLetsOthersWriteOnly)
{
    CFile file;
    ASSERT_TRUE(file.Open(m_path.c_str(), CFile::modeCreate | CFile::modeWrite | CFile::shareDenyRead));
    EXPECT_FALSE(CanOpen(m_path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE));
    EXPECT_TRUE(CanOpen(m_path, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE));
}

TEST_F(MfcFile, DenyNoneLetsOthersReadAndWrite)
{
    CFile file;
    ASSERT_TRUE(file.Open(m_path.c_str(), CFile::modeCreate | CFile::modeWrite | CFile::shareDenyNone));
    EXPECT_TRUE(CanOpen(m_path, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE));
}

TEST_F(MfcFile, ExclusiveAndCompatKeepOthersOut)
{
    for (const UINT share : {UINT{CFile::shareExclusive}, UINT{CFile::shareCompat}})
    {
        CFile file;
        ASSERT_TRUE(file.Open(m_path.c_str(), CFile::modeCreate | CFile::modeWrite | share));
        EXPECT_FALSE(CanOpen(m_path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE)) << share;
    }
}

TEST_F(MfcFile, HandleIsInheritedUnlessToldOtherwise)
{
    for (const UINT inherit : {UINT{0}, UINT{CFile::modeNoInherit}})
    {
        CFile file;
        ASSERT_TRUE(file.Open(m_path.c_str(), CFile::modeCreate | CFile::modeWrite | inherit));
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
}

TEST_F(MfcFile, FileInUseIsASharingViolation)
{
    CFile first;
    ASSERT_TRUE(first.Open(m_path.c_str(), CFile::modeCreate | CFile::modeWrite));
    CFile second;
    CFileException exception;
    EXPECT_FALSE(second.Open(m_path.c_str(), CFile::modeRead, &exception));
    EXPECT_EQ(CFileException::sharingViolation, exception.m_cause);
    EXPECT_EQ(ERROR_SHARING_VIOLATION, exception.m_lOsError);
}

TEST_F(MfcFile, OpenWithoutNameFails)
{
    CFile file;
    EXPECT_FALSE(file.Open(nullptr, CFile::modeRead));
    EXPECT_EQ(DWORD{ERROR_PATH_NOT_FOUND}, GetLastError());
}

TEST_F(MfcFile, OpenAgainClosesTheFormerFile)
{
    CFile file;
    ASSERT_TRUE(file.Open(m_path.c_str(), CFile::modeCreate | CFile::modeWrite));
    ASSERT_TRUE(file.Open(m_folder.File(L"other").c_str(), CFile::modeCreate | CFile::modeWrite));
    EXPECT_TRUE(CanOpen(m_path, GENERIC_READ, 0));
}

TEST_F(MfcFile, DestructorCloses)
{
    {
        CFile file;
        ASSERT_TRUE(file.Open(m_path.c_str(), CFile::modeCreate | CFile::modeWrite));
        EXPECT_FALSE(CanOpen(m_path, GENERIC_READ, FILE_SHARE_WRITE));
    }
    EXPECT_TRUE(CanOpen(m_path, GENERIC_READ, 0));
}

TEST_F(MfcFile, CloseReleasesTheFileAndMayBeRepeated)
{
    CFile file;
    ASSERT_TRUE(file.Open(m_path.c_str(), CFile::modeCreate | CFile::modeWrite));
    file.Close();
    EXPECT_EQ(CFile::hFileNull, file.m_hFile);
    EXPECT_TRUE(CanOpen(m_path, GENERIC_READ, 0));
    EXPECT_FALSE(FailureOf([&] { file.Close(); }));
    file.Abort();
}

TEST_F(MfcFile, FailedCloseThrowsAndLeavesTheObjectClosed)
{
    CFile file;
    ASSERT_TRUE(file.Open(m_path.c_str(), CFile::modeCreate | CFile::modeWrite));
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
    ASSERT_TRUE(file.Open(m_path.c_str(), CFile::modeCreate | CFile::modeWrite));
    CloseHandle(file.m_hFile);
    EXPECT_FALSE(FailureOf([&] { file.Abort(); }));
    EXPECT_EQ(CFile::hFileNull, file.m_hFile);
}

TEST_F(MfcFile, WriteToAFileOpenedForReadingThrowsAccessDenied)
{
    Fill("content");
    CFile file;
    ASSERT_TRUE(file.Open(m_path.c_str(), CFile::modeRead));
    const auto failure = FailureOf([&] { file.Write("x", 1); });
    ASSERT_TRUE(failure);
    EXPECT_EQ(CFileException::accessDenied, failure->cause);
    EXPECT_EQ(ERROR_ACCESS_DENIED, failure->osError);
    EXPECT_EQ(Utf8(m_path), failure->fileName);
}

TEST_F(MfcFile, WritingToAClosedFileThrows)
{
    CFile file;
    const auto failure = FailureOf([&] { file.Write("x", 1); });
    ASSERT_TRUE(failure);
    EXPECT_EQ(CFileException::invalidFile, failure->cause);
    EXPECT_FALSE(FailureOf([&] { file.Write("", 0); }));
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
