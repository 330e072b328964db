// Exceptions: their life as pointers, and their texts.
#include "harness/Text.h"

#include <afxinet.h>

#include <gtest/gtest.h>

#include <cwchar>
#include <iterator>
#include <string>

namespace
{

using orva::test::Utf8;

// The text of the error in that module's message table (null: the system's); empty if it has none.
std::string MessageOf(DWORD error, HMODULE module = nullptr)
{
    wchar_t text[1024] = {};
    FormatMessageW((module ? FORMAT_MESSAGE_FROM_HMODULE : FORMAT_MESSAGE_FROM_SYSTEM) |
                       FORMAT_MESSAGE_IGNORE_INSERTS,
                   module, error, 0, text, static_cast<DWORD>(std::size(text)), nullptr);
    return Utf8(text);
}

TEST(MfcException, DeleteDestroysAnExceptionFromTheHeap)
{
    class CCountedException : public CException
    {
    public:
        explicit CCountedException(int& deaths) : m_deaths(deaths) {}
        ~CCountedException() override { ++m_deaths; }

    private:
        int& m_deaths;
    };
    int deaths = 0;
    CException* const exception = new CCountedException(deaths);
    exception->Delete();
    EXPECT_EQ(1, deaths);
}

TEST(MfcException, TextIsTheSystemsOrWinInetsOrNoneAndThereIsNoHelp)
{
    // Windows' wininet.dll holds a message table, Wine's does not: there such an error has no text.
    const HMODULE winInet = LoadLibraryW(L"wininet.dll");
    const CException base;
    const CFileException notFound(CFileException::fileNotFound, ERROR_FILE_NOT_FOUND, L"C:\\x");
    const CFileException withoutError(CFileException::diskFull);
    const CInternetException invalid(ERROR_INVALID_PARAMETER);
    const CInternetException notResolved(ERROR_INTERNET_NAME_NOT_RESOLVED);
    const CInternetException unknown(0xE1234567);
    ASSERT_NE("", MessageOf(ERROR_FILE_NOT_FOUND));
    const std::pair<const CException&, std::string> rows[] = {
        {base, ""},
        {notFound, MessageOf(ERROR_FILE_NOT_FOUND)},
        {withoutError, ""},
        {invalid, MessageOf(ERROR_INVALID_PARAMETER)},
        {notResolved, MessageOf(ERROR_INTERNET_NAME_NOT_RESOLVED, winInet)},
        {unknown, ""},
    };
    for (const auto& [exception, expected] : rows)
    {
        wchar_t text[1024] = L"before";
        UINT help = 7;
        EXPECT_EQ(!expected.empty(),
                  exception.GetErrorMessage(text, static_cast<UINT>(std::size(text)), &help));
        EXPECT_EQ(expected, Utf8(text));
        EXPECT_EQ(0U, help);
    }
    EXPECT_FALSE(base.GetErrorMessage(nullptr, 0));
    EXPECT_EQ(-1, withoutError.m_lOsError);
}

TEST(MfcException, TextIsCutToTheBufferWithItsTerminator)
{
    const CFileException exception(CFileException::fileNotFound, ERROR_FILE_NOT_FOUND);
    wchar_t text[8];
    std::wmemset(text, L'#', std::size(text));
    EXPECT_TRUE(exception.GetErrorMessage(text, 5));
    EXPECT_EQ(MessageOf(ERROR_FILE_NOT_FOUND).substr(0, 4), Utf8(text));
    EXPECT_EQ(L'#', text[5]);
}

TEST(MfcException, ThrowInternetExceptionTakesTheLastErrorUnlessOneIsGiven)
{
    for (const DWORD given : {DWORD{0}, DWORD{ERROR_INTERNET_TIMEOUT}})
    {
        DWORD thrown = 0;
        SetLastError(ERROR_INTERNET_CANNOT_CONNECT);
        try
        {
            AfxThrowInternetException(42, given);
        }
        catch (CInternetException* exception)
        {
            thrown = exception->m_dwError;
            EXPECT_EQ(42U, exception->m_dwContext);
            exception->Delete();
        }
        EXPECT_EQ(given != 0 ? given : ERROR_INTERNET_CANNOT_CONNECT, thrown);
    }
}

TEST(MfcException, ThrownPointerIsCaughtAsItsBase)
{
    try
    {
        AfxThrowFileException(CFileException::diskFull, ERROR_DISK_FULL, L"C:\\full");
    }
    catch (CException* exception)
    {
        const auto* const file = dynamic_cast<CFileException*>(exception);
        ASSERT_TRUE(file);
        EXPECT_STREQ("CFileException", exception->GetRuntimeClass()->m_lpszClassName);
        EXPECT_EQ(CFileException::diskFull, file->m_cause);
        EXPECT_EQ(ERROR_DISK_FULL, file->m_lOsError);
        EXPECT_EQ("C:\\full", Utf8(file->m_strFileName.GetString()));
        exception->Delete();
    }
}

TEST(MfcException, FileCausesFollowFromWin32Errors)
{
    const struct
    {
        LONG error;
        int cause;
    } cases[] = {
        {NO_ERROR, CFileException::none},
        {ERROR_FILE_NOT_FOUND, CFileException::fileNotFound},
        {ERROR_PATH_NOT_FOUND, CFileException::badPath},
        {ERROR_INVALID_NAME, CFileException::badPath},
        {ERROR_TOO_MANY_OPEN_FILES, CFileException::tooManyOpenFiles},
        {ERROR_ACCESS_DENIED, CFileException::accessDenied},
        {ERROR_WRITE_PROTECT, CFileException::accessDenied},
        {ERROR_INVALID_HANDLE, CFileException::invalidFile},
        {ERROR_CURRENT_DIRECTORY, CFileException::removeCurrentDir},
        {ERROR_CANNOT_MAKE, CFileException::directoryFull},
        {ERROR_NEGATIVE_SEEK, CFileException::badSeek},
        {ERROR_WRITE_FAULT, CFileException::hardIO},
        {ERROR_SHARING_VIOLATION, CFileException::sharingViolation},
        {ERROR_LOCK_VIOLATION, CFileException::lockViolation},
        {ERROR_DISK_FULL, CFileException::diskFull},
        {ERROR_HANDLE_EOF, CFileException::endOfFile},
        {ERROR_INTERNET_TIMEOUT, CFileException::genericException},
    };
    for (const auto& [error, cause] : cases)
    {
        EXPECT_EQ(cause, CFileException::OsErrorToException(error)) << "error " << error;
    }
}

} // namespace
