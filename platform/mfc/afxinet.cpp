#include <afxinet.h>

#include <cwchar>
#include <iterator>
#include <memory>

IMPLEMENT_DYNAMIC(CInternetSession, CObject)
IMPLEMENT_DYNAMIC(CInternetConnection, CObject)
IMPLEMENT_DYNAMIC(CHttpConnection, CInternetConnection)
IMPLEMENT_DYNAMIC(CInternetFile, CObject)
IMPLEMENT_DYNAMIC(CHttpFile, CInternetFile)

namespace
{

// Indexed by CHttpConnection's HTTP_VERB_ constants.
constexpr LPCWSTR kVerbs[] = {L"POST", L"GET", L"HEAD", L"PUT", L"LINK", L"DELETE", L"UNLINK"};

// Closes `handle` and leaves null behind. Keeps the last error, which destructors must not spoil for a
// caller who is about to ask for it.
void CloseInternetHandle(HINTERNET& handle)
{
    if (handle != nullptr)
    {
        const DWORD error = GetLastError();
        InternetCloseHandle(handle);
        handle = nullptr;
        SetLastError(error);
    }
}

} // namespace

CInternetSession::CInternetSession(LPCWSTR agent, DWORD_PTR context, DWORD accessType, LPCWSTR proxyName,
                                   LPCWSTR proxyBypass, DWORD flags)
    : m_dwContext(context), m_hSession(InternetOpenW(agent != nullptr ? agent : AfxGetAppName(), accessType,
                                                     proxyName, proxyBypass, flags))
{
    if (m_hSession == nullptr)
    {
        AfxThrowInternetException(m_dwContext);
    }
}

CInternetSession::~CInternetSession()
{
    CInternetSession::Close();
}

CHttpConnection* CInternetSession::GetHttpConnection(LPCWSTR server, INTERNET_PORT port, LPCWSTR userName,
                                                     LPCWSTR password)
{
    std::unique_ptr<CHttpConnection> connection(new CHttpConnection(nullptr, m_dwContext));
    connection->m_hConnection =
        InternetConnectW(m_hSession, server, port, userName, password, INTERNET_SERVICE_HTTP, 0, m_dwContext);
    if (connection->m_hConnection == nullptr)
    {
        AfxThrowInternetException(m_dwContext);
    }
    return connection.release();
}

void CInternetSession::Close()
{
    CloseInternetHandle(m_hSession);
}

CInternetConnection::CInternetConnection(HINTERNET connection, DWORD_PTR context)
    : m_hConnection(connection), m_dwContext(context)
{
}

CInternetConnection::~CInternetConnection()
{
    CInternetConnection::Close();
}

void CInternetConnection::Close()
{
    CloseInternetHandle(m_hConnection);
}

CHttpConnection::CHttpConnection(HINTERNET connection, DWORD_PTR context)
    : CInternetConnection(connection, context)
{
}

CHttpFile* CHttpConnection::OpenRequest(LPCWSTR verb, LPCWSTR objectName, LPCWSTR referer, DWORD_PTR context,
                                        LPCWSTR* acceptTypes, LPCWSTR version, DWORD flags)
{
    std::unique_ptr<CHttpFile> file(new CHttpFile(nullptr, context));
    file->m_hFile = HttpOpenRequestW(m_hConnection, verb != nullptr ? verb : kVerbs[HTTP_VERB_GET],
                                     objectName, version, referer, acceptTypes, flags, context);
    if (file->m_hFile == nullptr)
    {
        AfxThrowInternetException(context);
    }
    return file.release();
}

CHttpFile* CHttpConnection::OpenRequest(int verb, LPCWSTR objectName, LPCWSTR referer, DWORD_PTR context,
                                        LPCWSTR* acceptTypes, LPCWSTR version, DWORD flags)
{
    if (verb < 0 || verb >= static_cast<int>(std::size(kVerbs)))
    {
        AfxThrowInternetException(context, ERROR_INVALID_PARAMETER);
    }
    return OpenRequest(kVerbs[verb], objectName, referer, context, acceptTypes, version, flags);
}

CInternetFile::CInternetFile(HINTERNET file, DWORD_PTR context) : m_hFile(file), m_dwContext(context) {}

CInternetFile::~CInternetFile()
{
    CInternetFile::Close();
}

UINT CInternetFile::Read(void* buffer, UINT count)
{
    DWORD read = 0;
    if (!InternetReadFile(m_hFile, buffer, count, &read))
    {
        AfxThrowInternetException(m_dwContext);
    }
    return read;
}

void CInternetFile::Close()
{
    CloseInternetHandle(m_hFile);
}

CHttpFile::CHttpFile(HINTERNET file, DWORD_PTR context) : CInternetFile(file, context) {}

BOOL CHttpFile::AddRequestHeaders(LPCWSTR headers, DWORD flags, int length)
{
    return HttpAddRequestHeadersW(m_hFile, headers, static_cast<DWORD>(length), flags);
}

BOOL CHttpFile::SendRequest(LPCWSTR headers, DWORD headersLength, LPVOID optional, DWORD optionalLength)
{
    if (!HttpSendRequestW(m_hFile, headers, headersLength, optional, optionalLength))
    {
        AfxThrowInternetException(m_dwContext);
    }
    return TRUE;
}

BOOL CHttpFile::QueryInfo(DWORD infoLevel, CString& text, LPDWORD index) const
{
    text.Empty();
    DWORD size = 0;
    // Asked without a buffer WinINet tells the size it needs, in bytes and with the terminator. The index
    // moves on with a header that was delivered only, so asking twice is safe.
    if (HttpQueryInfoW(m_hFile, infoLevel, nullptr, &size, index))
    {
        return TRUE;
    }
    if (GetLastError() != ERROR_INSUFFICIENT_BUFFER)
    {
        return FALSE;
    }
    const LPWSTR buffer = text.GetBuffer(static_cast<int>(size / sizeof(wchar_t)) + 1);
    const BOOL isFound = HttpQueryInfoW(m_hFile, infoLevel, buffer, &size, index);
    text.ReleaseBuffer(isFound ? static_cast<int>(size / sizeof(wchar_t)) : 0);
    return isFound;
}

BOOL CHttpFile::QueryInfoStatusCode(DWORD& statusCode) const
{
    CString text;
    if (!QueryInfo(HTTP_QUERY_STATUS_CODE, text))
    {
        return FALSE;
    }
    statusCode = static_cast<DWORD>(std::wcstoul(text, nullptr, 10));
    return TRUE;
}
