#include "publishing/HttpExchange.h"

#include "publishing/Files.h"

#include <afxinet.h>

#include <cwchar>
#include <iterator>
#include <memory>

namespace publishing
{
namespace
{

// Wine's WinINet follows redirections to https, which that of Windows refuses.
constexpr DWORD kFlags = INTERNET_FLAG_RELOAD | INTERNET_FLAG_NO_CACHE_WRITE | INTERNET_FLAG_NO_AUTO_REDIRECT;
constexpr int kMostRedirections = 10;
constexpr UINT kChunkSize = 65536;

struct CUrl
{
    std::wstring host;
    std::wstring object;
    INTERNET_PORT port = 0;
    DWORD flags = kFlags;
};

std::wstring Header(const CHttpFile& file, DWORD level)
{
    CString text;
    file.QueryInfo(level, text);
    return text.GetString();
}

std::optional<std::uint64_t> Length(const CHttpFile& file)
{
    const std::wstring text = Header(file, HTTP_QUERY_CONTENT_LENGTH);
    return text.empty() ? std::nullopt
                        : std::optional<std::uint64_t>(std::wcstoull(text.c_str(), nullptr, 10));
}

// Empty if that is no URL.
std::wstring Combine(const std::wstring& url, const std::wstring& location)
{
    wchar_t combined[INTERNET_MAX_URL_LENGTH] = {};
    DWORD size = INTERNET_MAX_URL_LENGTH;
    return InternetCombineUrlW(url.c_str(), location.c_str(), combined, &size, ICU_BROWSER_MODE) ? combined
                                                                                                 : L"";
}

void ReadBody(CHttpFile& file, CHttpExchange& exchange)
{
    const auto chunk = std::make_unique<char[]>(kChunkSize);
    while (exchange.body.size() <= kLargestFile)
    {
        const UINT read = file.Read(chunk.get(), kChunkSize);
        if (read == 0)
        {
            exchange.isReadToTheEnd = true;
            return;
        }
        exchange.body.append(chunk.get(), read);
    }
}

std::optional<CHttpExchange> Exchange(const CUrl& url, const wchar_t* headers)
{
    CInternetSession session(L"", 1);
    const std::unique_ptr<CHttpConnection> connection(session.GetHttpConnection(url.host.c_str(), url.port));
    const std::unique_ptr<CHttpFile> file(connection->OpenRequest(
        CHttpConnection::HTTP_VERB_GET, url.object.c_str(), nullptr, 1, nullptr, nullptr, url.flags));
    file->AddRequestHeaders(headers, HTTP_ADDREQ_FLAG_ADD);
    file->SendRequest();

    CHttpExchange exchange;
    if (!file->QueryInfoStatusCode(exchange.status))
    {
        return std::nullopt;
    }
    exchange.date = Header(*file, HTTP_QUERY_DATE);
    exchange.contentType = Header(*file, HTTP_QUERY_CONTENT_TYPE);
    exchange.coding = Header(*file, HTTP_QUERY_CONTENT_ENCODING);
    exchange.length = Length(*file);
    exchange.location = Header(*file, HTTP_QUERY_LOCATION);
    try
    {
        ReadBody(*file, exchange);
    }
    catch (CInternetException* exception)
    {
        exception->Delete();
    }
    return exchange;
}

std::optional<CUrl> Split(const std::wstring& url)
{
    CString server;
    CString object;
    CUrl parts;
    DWORD service = 0;
    if (!AfxParseURL(url.c_str(), service, server, object, parts.port) ||
        (service != AFX_INET_SERVICE_HTTP && service != AFX_INET_SERVICE_HTTPS))
    {
        return std::nullopt;
    }
    parts.host = server.GetString();
    parts.object = object.GetString();
    parts.flags |= service == AFX_INET_SERVICE_HTTPS ? INTERNET_FLAG_SECURE : 0;
    return parts;
}

std::optional<CHttpExchange> GetOnce(const std::wstring& url, const wchar_t* headers)
{
    const std::optional<CUrl> parts = Split(url);
    if (!parts)
    {
        return std::nullopt;
    }
    try
    {
        return Exchange(*parts, headers);
    }
    catch (CInternetException* exception)
    {
        exception->Delete();
        return std::nullopt;
    }
}

} // namespace

bool IsRedirection(unsigned long status)
{
    return status == HTTP_STATUS_MOVED || status == HTTP_STATUS_REDIRECT ||
           status == HTTP_STATUS_REDIRECT_METHOD || status == HTTP_STATUS_REDIRECT_KEEP_VERB;
}

bool IsHttps(const std::wstring& url)
{
    constexpr wchar_t kScheme[] = L"https:";
    return _wcsnicmp(url.c_str(), kScheme, std::size(kScheme) - 1) == 0;
}

std::optional<CHttpExchange> Get(const std::wstring& url, const wchar_t* headers)
{
    std::optional<CHttpExchange> reply = GetOnce(url, headers);
    std::wstring from = url;
    for (int followed = 0; reply && IsRedirection(reply->status) && !reply->location.empty(); ++followed)
    {
        const std::wstring to = Combine(from, reply->location);
        if (IsHttps(to) || followed == kMostRedirections)
        {
            reply->redirectedTo = to;
            return reply;
        }
        reply = GetOnce(to, headers);
        if (reply)
        {
            reply->redirectedTo = to;
        }
        from = to;
    }
    return reply;
}

} // namespace publishing
