#include "publishing/HttpExchange.h"

#include <afxinet.h>

#include <cwchar>
#include <memory>

namespace publishing
{
namespace
{

constexpr DWORD kFlags = INTERNET_FLAG_RELOAD | INTERNET_FLAG_NO_CACHE_WRITE;
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

std::wstring FinalUrl(const CHttpFile& file)
{
    wchar_t url[INTERNET_MAX_URL_LENGTH] = {};
    DWORD size = sizeof(url);
    return InternetQueryOptionW(file, INTERNET_OPTION_URL, url, &size) ? url : L"";
}

void ReadBody(CHttpFile& file, CHttpExchange& exchange)
{
    const auto chunk = std::make_unique<char[]>(kChunkSize);
    while (exchange.body.size() < kLargestBody)
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
    const std::wstring asked = FinalUrl(*file);
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
    if (const std::wstring answered = FinalUrl(*file); answered != asked)
    {
        exchange.redirectedTo = answered;
    }
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

} // namespace

std::optional<CHttpExchange> Get(const std::wstring& url, const wchar_t* headers)
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

} // namespace publishing
