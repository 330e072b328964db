// CFileException: causes from Win32 errors, and their texts.
#include <afxfile_.h>

IMPLEMENT_DYNAMIC(CFileException, CException)

CFileException::CFileException(int cause, LONG osError, LPCWSTR fileName)
    : m_cause(cause), m_lOsError(osError), m_strFileName(fileName)
{
}

int CFileException::OsErrorToException(LONG osError)
{
    switch (osError)
    {
    case NO_ERROR:
        return none;
    case ERROR_FILE_NOT_FOUND:
    case ERROR_NO_MORE_FILES:
        return fileNotFound;
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_DRIVE:
    case ERROR_WRONG_DISK:
    case ERROR_BAD_NETPATH:
    case ERROR_BAD_NET_NAME:
    case ERROR_INVALID_NAME:
    case ERROR_BAD_PATHNAME:
    case ERROR_FILENAME_EXCED_RANGE:
    case ERROR_DIRECTORY:
        return badPath;
    case ERROR_TOO_MANY_OPEN_FILES:
    case ERROR_SHARING_BUFFER_EXCEEDED:
        return tooManyOpenFiles;
    case ERROR_ACCESS_DENIED:
    case ERROR_INVALID_ACCESS:
    case ERROR_WRITE_PROTECT:
    case ERROR_NETWORK_ACCESS_DENIED:
    case ERROR_FILE_EXISTS:
    case ERROR_ALREADY_EXISTS:
        return accessDenied;
    case ERROR_INVALID_HANDLE:
    case ERROR_BAD_FORMAT:
        return invalidFile;
    case ERROR_CURRENT_DIRECTORY:
        return removeCurrentDir;
    case ERROR_CANNOT_MAKE:
        return directoryFull;
    case ERROR_SEEK:
    case ERROR_NEGATIVE_SEEK:
        return badSeek;
    case ERROR_BAD_UNIT:
    case ERROR_NOT_READY:
    case ERROR_CRC:
    case ERROR_BAD_LENGTH:
    case ERROR_SECTOR_NOT_FOUND:
    case ERROR_WRITE_FAULT:
    case ERROR_READ_FAULT:
    case ERROR_GEN_FAILURE:
        return hardIO;
    case ERROR_SHARING_VIOLATION:
        return sharingViolation;
    case ERROR_LOCK_VIOLATION:
        return lockViolation;
    case ERROR_HANDLE_DISK_FULL:
    case ERROR_DISK_FULL:
        return diskFull;
    case ERROR_HANDLE_EOF:
        return endOfFile;
    default:
        return genericException;
    }
}

void CFileException::ThrowOsError(LONG osError, LPCWSTR fileName)
{
    AfxThrowFileException(OsErrorToException(osError), osError, fileName);
}

BOOL CFileException::GetErrorMessage(LPWSTR errorText, UINT maxError, PUINT helpContext) const
{
    CException::GetErrorMessage(errorText, maxError, helpContext);
    return m_lOsError != -1 &&
           AfxCopyErrorMessage(nullptr, static_cast<DWORD>(m_lOsError), errorText, maxError);
}

void AFXAPI AfxThrowFileException(int cause, LONG osError, LPCWSTR fileName)
{
    throw new CFileException(cause, osError, fileName);
}
