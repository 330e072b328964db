// CFile, an unbuffered file, and CFileException, what it throws.
//
// Left out of the original: reading, seeking, flushing, constructors that open, Duplicate, Rename, Remove,
// locks, GetStatus/SetStatus, SetLength, SetFilePath, transactions, text mode. Otherwise than the original:
//  - Open on an open file closes that file first instead of losing its handle.
//  - File names are not limited to 260 characters by the class; the system decides.
//  - Opening with neither an exception nor a share flag, Close on a closed file and the like assert nothing.
//  - GetErrorMessage gives the system's text for m_lOsError, and none when no Win32 error is known.
#pragma once

#include <afxexc_.h>
#include <afxstr.h>

/// Failure of a file operation. Thrown as a pointer by CFile, or filled in by CFile::Open.
class CFileException : public CException
{
    DECLARE_DYNAMIC(CFileException)

    enum
    {
        none,
        genericException,
        fileNotFound,
        badPath,
        tooManyOpenFiles,
        accessDenied,
        invalidFile,
        removeCurrentDir,
        directoryFull,
        badSeek,
        hardIO,
        sharingViolation,
        lockViolation,
        diskFull,
        endOfFile
    };

    explicit CFileException(int cause = none, LONG osError = -1, LPCWSTR fileName = nullptr);

    /// The cause for a Win32 error; genericException for those without a cause of their own, none for 0.
    static int OsErrorToException(LONG osError);
    /// Throws a CFileException* with the cause that belongs to `osError`.
    [[noreturn]] static void ThrowOsError(LONG osError, LPCWSTR fileName = nullptr);

    BOOL GetErrorMessage(LPWSTR errorText, UINT maxError, PUINT helpContext = nullptr) const override;

    int m_cause;           ///< one of the constants above
    LONG m_lOsError;       ///< Win32 error, -1 when not known
    CString m_strFileName; ///< the file it happened to, may be empty
};

/// Throws a CFileException* made from the arguments.
[[noreturn]] void AFXAPI AfxThrowFileException(int cause, LONG osError = -1, LPCWSTR fileName = nullptr);

/// A file opened for unbuffered binary writing; closed by its destructor. Operations throw
/// CFileException* on failure, except Open, which returns FALSE. Not for use by two threads at a time.
class CFile : public CObject
{
    DECLARE_DYNAMIC(CFile)

    enum OpenFlags : UINT
    {
        modeRead = 0x0000,
        modeWrite = 0x0001,
        modeReadWrite = 0x0002,
        shareCompat = 0x0000, ///< as shareExclusive
        shareExclusive = 0x0010,
        shareDenyWrite = 0x0020,
        shareDenyRead = 0x0030,
        shareDenyNone = 0x0040,
        modeNoInherit = 0x0080,
        modeCreate = 0x1000,     ///< creates the file, or empties it if it exists
        modeNoTruncate = 0x2000, ///< with modeCreate: an existing file keeps its content
        typeText = 0x4000,       ///< without effect
        typeBinary = 0x8000,     ///< without effect: a CFile is always binary
    };

    /// Value of m_hFile while no file is open.
    static const HANDLE hFileNull;

    CFile();
    /// Closes the file; a failure of that is not reported.
    ~CFile() override;

    /// Opens `fileName` with a sum of OpenFlags. On failure returns FALSE, fills in `exception` if given,
    /// leaves no file open, and GetLastError() is the Win32 error that said no. On success m_strFileName is
    /// the full path.
    virtual BOOL Open(LPCWSTR fileName, UINT openFlags, CFileException* exception = nullptr);

    /// Writes all of the `count` bytes. Fewer written by the system without an error of its own is the cause
    /// diskFull with ERROR_DISK_FULL.
    virtual void Write(const void* buffer, UINT count);
    /// Closes the file. Nothing happens when none is open. The object is closed also when this throws.
    virtual void Close();
    /// Closes the file and ignores failures. Never throws.
    virtual void Abort();

    HANDLE m_hFile;

protected:
    CString m_strFileName;
};
