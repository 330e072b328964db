// AfxParseURL: a URL's service, server, object and port.
#include <afxinet.h>

#include <string>

namespace
{

DWORD ServiceTypeOf(INTERNET_SCHEME scheme)
{
    switch (scheme)
    {
    case INTERNET_SCHEME_FTP:
        return AFX_INET_SERVICE_FTP;
    case INTERNET_SCHEME_GOPHER:
        return AFX_INET_SERVICE_GOPHER;
    case INTERNET_SCHEME_HTTP:
        return AFX_INET_SERVICE_HTTP;
    case INTERNET_SCHEME_HTTPS:
        return AFX_INET_SERVICE_HTTPS;
    case INTERNET_SCHEME_FILE:
        return AFX_INET_SERVICE_FILE;
    case INTERNET_SCHEME_MAILTO:
        return AFX_INET_SERVICE_MAILTO;
    case INTERNET_SCHEME_NEWS:
        return AFX_INET_SERVICE_NEWS;
    default:
        return AFX_INET_SERVICE_UNK;
    }
}

INTERNET_PORT DefaultPortOf(INTERNET_SCHEME scheme)
{
    switch (scheme)
    {
    case INTERNET_SCHEME_FTP:
        return INTERNET_DEFAULT_FTP_PORT;
    case INTERNET_SCHEME_GOPHER:
        return INTERNET_DEFAULT_GOPHER_PORT;
    case INTERNET_SCHEME_HTTP:
        return INTERNET_DEFAULT_HTTP_PORT;
    case INTERNET_SCHEME_HTTPS:
        return INTERNET_DEFAULT_HTTPS_PORT;
    default:
        return INTERNET_INVALID_PORT_NUMBER;
    }
}

// `url` with the unsafe characters of its path escaped and its dots resolved, as a browser would send it;
// empty on failure.
std::wstring Canonicalize(LPCWSTR url)
{
    DWORD size = INTERNET_MAX_URL_LENGTH;
    std::wstring canonical(size, L'\0');
    BOOL isDone = InternetCanonicalizeUrlW(url, canonical.data(), &size, ICU_BROWSER_MODE);
    if (!isDone && GetLastError() == ERROR_INSUFFICIENT_BUFFER)
    {
        canonical.assign(size, L'\0');
        isDone = InternetCanonicalizeUrlW(url, canonical.data(), &size, ICU_BROWSER_MODE);
    }
    return isDone ? canonical.c_str() : std::wstring();
}

} // namespace

BOOL AFXAPI AfxParseURL(LPCWSTR url, DWORD& serviceType, CString& server, CString& object,
                        INTERNET_PORT& port)
{
    serviceType = AFX_INET_SERVICE_UNK;
    port = INTERNET_INVALID_PORT_NUMBER;
    server.Empty();
    object.Empty();
    if (url == nullptr || *url == L'\0')
    {
        return FALSE;
    }
    const std::wstring canonical = Canonicalize(url);
    if (canonical.empty())
    {
        return FALSE;
    }

    // A length without a pointer asks for pointers into the URL, which know no limit.
    URL_COMPONENTSW parts = {};
    parts.dwStructSize = sizeof(parts);
    parts.dwHostNameLength = 1;
    parts.dwUrlPathLength = 1;
    parts.dwExtraInfoLength = 1;
    if (!InternetCrackUrlW(canonical.c_str(), 0, 0, &parts))
    {
        return FALSE;
    }
    server = CString(parts.lpszHostName, static_cast<int>(parts.dwHostNameLength));
    object = CString(parts.lpszUrlPath, static_cast<int>(parts.dwUrlPathLength));
    object += CString(parts.lpszExtraInfo, static_cast<int>(parts.dwExtraInfoLength));
    port = parts.nPort != INTERNET_INVALID_PORT_NUMBER ? parts.nPort : DefaultPortOf(parts.nScheme);
    serviceType = ServiceTypeOf(parts.nScheme);
    return serviceType != AFX_INET_SERVICE_UNK;
}
