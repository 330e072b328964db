#include <afxfile_.h>

#include <string>

IMPLEMENT_DYNAMIC(CFile, CObject)

const HANDLE CFile::hFileNull = INVALID_HANDLE_VALUE;

namespace
{

constexpr UINT kAccessMask = CFile::modeRead | CFile::modeWrite | CFile::modeReadWrite;
constexpr UINT kShareMask = 0x0070;

// 0 and the right error when `openFlags` holds two access modes.
DWORD AccessOf(UINT openFlags)
{
    switch (openFlags & kAccessMask)
    {
    case CFile::modeRead:
        return GENERIC_READ;
    case CFile::modeWrite:
        return GENERIC_WRITE;
    case CFile::modeReadWrite:
        return GENERIC_READ | GENERIC_WRITE;
    default:
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
}

DWORD ShareOf(UINT openFlags)
{
    switch (openFlags & kShareMask)
    {
    case CFile::shareDenyWrite:
        return FILE_SHARE_READ;
    case CFile::shareDenyRead:
        return FILE_SHARE_WRITE;
    case CFile::shareDenyNone:
        return FILE_SHARE_READ | FILE_SHARE_WRITE;
    default:
        return 0;
    }
}

DWORD DispositionOf(UINT openFlags)
{
    if ((openFlags & CFile::modeCreate) == 0)
    {
        return OPEN_EXISTING;
    }
    return (openFlags & CFile::modeNoTruncate) != 0 ? OPEN_ALWAYS : CREATE_ALWAYS;
}

// The full path, or the name as it stands when the system cannot make one of it.
CString FullPathOf(LPCWSTR fileName)
{
    const DWORD size = GetFullPathNameW(fileName, 0, nullptr, nullptr);
    std::wstring path(size, L'\0');
    const DWORD length = size != 0 ? GetFullPathNameW(fileName, size, path.data(), nullptr) : 0;
    if (length == 0 || length >= size)
    {
        return fileName;
    }
    return CString(path.c_str(), static_cast<int>(length));
}

} // namespace

CFile::CFile() : m_hFile(hFileNull) {}

CFile::~CFile()
{
    CFile::Abort();
}

BOOL CFile::Open(LPCWSTR fileName, UINT openFlags, CFileException* exception)
{
    Abort();

    const CString path = FullPathOf(fileName != nullptr ? fileName : L"");
    const DWORD access = AccessOf(openFlags);
    if (access != 0)
    {
        SECURITY_ATTRIBUTES security = {};
        security.nLength = sizeof(security);
        security.bInheritHandle = (openFlags & modeNoInherit) == 0;
        m_hFile = CreateFileW(path, access, ShareOf(openFlags), &security, DispositionOf(openFlags),
                              FILE_ATTRIBUTE_NORMAL, nullptr);
    }
    if (m_hFile == hFileNull)
    {
        const DWORD error = GetLastError();
        if (exception != nullptr)
        {
            exception->m_cause = CFileException::OsErrorToException(static_cast<LONG>(error));
            exception->m_lOsError = static_cast<LONG>(error);
            exception->m_strFileName = path;
        }
        // Callers without an exception ask GetLastError why; the copying above may have changed it.
        SetLastError(error);
        return FALSE;
    }
    m_strFileName = path;
    return TRUE;
}

void CFile::Write(const void* buffer, UINT count)
{
    if (count == 0)
    {
        return;
    }
    DWORD written = 0;
    if (!WriteFile(m_hFile, buffer, count, &written, nullptr))
    {
        CFileException::ThrowOsError(static_cast<LONG>(GetLastError()), m_strFileName);
    }
    if (written != count)
    {
        AfxThrowFileException(CFileException::diskFull, ERROR_DISK_FULL, m_strFileName);
    }
}

void CFile::Close()
{
    if (m_hFile == hFileNull)
    {
        return;
    }
    const HANDLE file = m_hFile;
    const CString fileName = m_strFileName;
    m_hFile = hFileNull;
    m_strFileName.Empty();
    if (!CloseHandle(file))
    {
        CFileException::ThrowOsError(static_cast<LONG>(GetLastError()), fileName);
    }
}

void CFile::Abort()
{
    if (m_hFile != hFileNull)
    {
        CloseHandle(m_hFile);
        m_hFile = hFileNull;
    }
    m_strFileName.Empty();
}
