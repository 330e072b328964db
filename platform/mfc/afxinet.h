// The Internet classes over WinINet: session, HTTP connection, HTTP request, their exception, and
// AfxParseURL.
//
// Left out of the original: FTP and Gopher, OpenURL, status callbacks and options, authentication dialogs,
// SendRequestEx, the buffered and text sides of CInternetFile, AfxParseURLEx. Otherwise than the original:
//  - CInternetFile derives from CObject and not from CStdioFile.
//  - An HTTP version that is not given is left to WinINet, which takes it from the system's Internet settings
//  (1.1 unless
//    switched off). The original names HTTP/1.0 and WinINet then replaces that by the same settings.
//  - A verb number out of range throws instead of asserting.
#pragma once

#include <afxwin.h>

#include <wininet.h>

class CHttpConnection;
class CHttpFile;

constexpr DWORD AFX_INET_SERVICE_FTP = INTERNET_SERVICE_FTP;       // 1
constexpr DWORD AFX_INET_SERVICE_GOPHER = INTERNET_SERVICE_GOPHER; // 2
constexpr DWORD AFX_INET_SERVICE_HTTP = INTERNET_SERVICE_HTTP;     // 3
constexpr DWORD AFX_INET_SERVICE_UNK = 0x1000;                     // 4096
constexpr DWORD AFX_INET_SERVICE_FILE = AFX_INET_SERVICE_UNK + 1;
constexpr DWORD AFX_INET_SERVICE_MAILTO = AFX_INET_SERVICE_UNK + 2;
constexpr DWORD AFX_INET_SERVICE_NEWS = AFX_INET_SERVICE_UNK + 5;
constexpr DWORD AFX_INET_SERVICE_HTTPS = AFX_INET_SERVICE_UNK + 11; // 4107

/// Failure of a WinINet call. Thrown as a pointer.
class CInternetException : public CException
{
    DECLARE_DYNAMIC(CInternetException)

    explicit CInternetException(DWORD error);

    /// The text of m_dwError from WinINet's message table, else the system's. Texts end as they do in those
    /// tables, with a line break on Windows. FALSE, and an empty text, when neither has one.
    BOOL GetErrorMessage(LPWSTR errorText, UINT maxError, PUINT helpContext = nullptr) const override;

    DWORD m_dwError;       ///< Win32 or WinINet error (ERROR_INTERNET_...)
    DWORD_PTR m_dwContext; ///< context of the session or request it happened in
};

/// Throws a CInternetException* for `error`, 0 meaning GetLastError().
[[noreturn]] void AFXAPI AfxThrowInternetException(DWORD_PTR context, DWORD error = 0);

/// Splits `url` into service type (AFX_INET_SERVICE_...), server, object (path with query and fragment,
/// unsafe characters of the path escaped) and port (the URL's or the service's default; 0 if it has none).
/// FALSE when the URL is null, empty, cannot be split or names no known service; the service type is
/// AFX_INET_SERVICE_UNK then, and the others are what could be found.
BOOL AFXAPI AfxParseURL(LPCWSTR url, DWORD& serviceType, CString& server, CString& object,
                        INTERNET_PORT& port);

/// One use of WinINet. Connections and files made from it must be closed before it.
class CInternetSession : public CObject
{
    DECLARE_DYNAMIC(CInternetSession)

    /// Opens WinINet with the system's proxy settings unless told otherwise. `agent` null: AfxGetAppName().
    /// Throws CInternetException*.
    explicit CInternetSession(LPCWSTR agent = nullptr, DWORD_PTR context = 1,
                              DWORD accessType = PRE_CONFIG_INTERNET_ACCESS, LPCWSTR proxyName = nullptr,
                              LPCWSTR proxyBypass = nullptr, DWORD flags = 0);
    ~CInternetSession() override;

    /// A new connection object, to be deleted by the caller; nothing is sent yet. Throws CInternetException*.
    CHttpConnection* GetHttpConnection(LPCWSTR server, INTERNET_PORT port = INTERNET_INVALID_PORT_NUMBER,
                                       LPCWSTR userName = nullptr, LPCWSTR password = nullptr);

    /// Closes the session; nothing happens when it is closed.
    virtual void Close();

    DWORD_PTR GetContext() const { return m_dwContext; }
    operator HINTERNET() const { return m_hSession; }

protected:
    DWORD_PTR m_dwContext;
    HINTERNET m_hSession;
};

/// A connection to one server; base of the connections by protocol.
class CInternetConnection : public CObject
{
    DECLARE_DYNAMIC(CInternetConnection)

    ~CInternetConnection() override;

    /// Closes the connection; nothing happens when it is closed.
    virtual void Close();

    DWORD_PTR GetContext() const { return m_dwContext; }
    operator HINTERNET() const { return m_hConnection; }

protected:
    CInternetConnection(HINTERNET connection, DWORD_PTR context);

    HINTERNET m_hConnection;
    DWORD_PTR m_dwContext;
};

/// A connection to one HTTP server, made by CInternetSession::GetHttpConnection.
class CHttpConnection : public CInternetConnection
{
    DECLARE_DYNAMIC(CHttpConnection)

    enum
    {
        HTTP_VERB_POST = 0,
        HTTP_VERB_GET = 1,
        HTTP_VERB_HEAD = 2,
        HTTP_VERB_PUT = 3,
        HTTP_VERB_LINK = 4,
        HTTP_VERB_DELETE = 5,
        HTTP_VERB_UNLINK = 6,
    };

    /// A new request object, to be deleted by the caller; nothing is sent yet. `verb` null: GET.
    /// `acceptTypes` is a list that ends with a null pointer; null: no Accept header is sent. Throws
    /// CInternetException*.
    CHttpFile* OpenRequest(LPCWSTR verb, LPCWSTR objectName, LPCWSTR referer = nullptr, DWORD_PTR context = 1,
                           LPCWSTR* acceptTypes = nullptr, LPCWSTR version = nullptr,
                           DWORD flags = INTERNET_FLAG_EXISTING_CONNECT);
    /// The same with a HTTP_VERB_ constant; any other number throws with ERROR_INVALID_PARAMETER.
    CHttpFile* OpenRequest(int verb, LPCWSTR objectName, LPCWSTR referer = nullptr, DWORD_PTR context = 1,
                           LPCWSTR* acceptTypes = nullptr, LPCWSTR version = nullptr,
                           DWORD flags = INTERNET_FLAG_EXISTING_CONNECT);

private:
    friend class CInternetSession;

    CHttpConnection(HINTERNET connection, DWORD_PTR context);
};

/// Something that can be read from the Internet; base of CHttpFile.
class CInternetFile : public CObject
{
    DECLARE_DYNAMIC(CInternetFile)

    ~CInternetFile() override;

    /// Reads up to `count` bytes; returns how many, possibly fewer than asked for, 0 at the end. Blocks.
    /// Throws CInternetException*.
    virtual UINT Read(void* buffer, UINT count);
    /// Closes the request; nothing happens when it is closed.
    virtual void Close();

    operator HINTERNET() const { return m_hFile; }

    HINTERNET m_hFile;

protected:
    CInternetFile(HINTERNET file, DWORD_PTR context);

    DWORD_PTR m_dwContext;
};

/// One HTTP request and its response, made by CHttpConnection::OpenRequest. Blocks; one thread at a time.
class CHttpFile : public CInternetFile
{
    DECLARE_DYNAMIC(CHttpFile)

    /// Adds `headers` ("Name: value", several separated by line breaks) as `flags` say. `length` -1:
    /// terminated text. FALSE on failure, with the cause in GetLastError().
    BOOL AddRequestHeaders(LPCWSTR headers, DWORD flags = HTTP_ADDREQ_FLAG_ADD_IF_NEW, int length = -1);

    /// Sends the request with additional headers (length in characters) and a body (`optionalLength` bytes),
    /// and waits for the response's headers. TRUE; throws CInternetException* on failure. A status like 404
    /// is no failure.
    BOOL SendRequest(LPCWSTR headers = nullptr, DWORD headersLength = 0, LPVOID optional = nullptr,
                     DWORD optionalLength = 0);

    /// Text of the response header (or other information) `infoLevel`, a HTTP_QUERY_ constant. FALSE, an
    /// empty text and the cause in GetLastError() when there is none. `index` counts headers of the same
    /// name.
    BOOL QueryInfo(DWORD infoLevel, CString& text, LPDWORD index = nullptr) const;
    /// The response's status, for example 200. FALSE, and `statusCode` unchanged, when there is no response.
    BOOL QueryInfoStatusCode(DWORD& statusCode) const;

private:
    friend class CHttpConnection;

    CHttpFile(HINTERNET file, DWORD_PTR context);
};
