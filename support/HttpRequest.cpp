#include "support/HttpRequest.h"

#include "support/ComUtilities.h"
#include "support/DebugLog.h"
#include "support/GzipDecoder.h"
#include "support/TextUtilities.h"
#include "support/TimeUtilities.h"

#include <afxwin.h>

#include <cstdio>
#include <optional>
#include <string_view>
#include <utility>

namespace
{
constexpr char kPerformRequest[] = "CHttpRequest::PerformRequest";
constexpr char kPerformTextRequest[] = "CHttpRequest::PerformTextRequest";

// At most this many bytes of a body are read; the buffer has one more for the zero byte after the body.
constexpr std::uint32_t kMaximumBodyLength = 256000;
constexpr UINT kLongestErrorText = 1024;

// The capacity passed for a URL's host and path; the buffers have one character more.
constexpr DWORD kUrlPartCapacity = 255;

constexpr DWORD kRequestFlags = INTERNET_FLAG_RELOAD | INTERNET_FLAG_EXISTING_CONNECT |
                                INTERNET_FLAG_NO_CACHE_WRITE | INTERNET_FLAG_RESYNCHRONIZE;

constexpr DWORD_PTR kContext = 1;

constexpr wchar_t kAcceptEncoding[] = L"Accept-Encoding: gzip";
constexpr std::wstring_view kFormContentType = L"Content-Type: application/x-www-form-urlencoded";
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

struct CrackedUrl
{
    std::string host;

    // With the query, if the URL has one.
    std::string path;

    INTERNET_SCHEME scheme = INTERNET_SCHEME_UNKNOWN;

    // The URL's port or its scheme's default.
    INTERNET_PORT port = INTERNET_INVALID_PORT_NUMBER;
};

struct ExceptionDeleter
{
    void operator()(CException* exception) const { exception->Delete(); }
};

// An empty application name gives an empty user agent, which the server expects.
void ClearApplicationName()
{
    AfxGetModuleState()->m_lpszCurrentAppName = L"";
}

// Widens `text` with the thread's ANSI code page.
std::wstring Widen(const std::string& text)
{
    const int length = static_cast<int>(text.size());
    const int needed = MultiByteToWideChar(CP_THREAD_ACP, 0, text.data(), length, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(needed), L'\0');
    MultiByteToWideChar(CP_THREAD_ACP, 0, text.data(), length, wide.data(), needed);
    return wide;
}

// Splits `url` and decodes its escape sequences. Empty if it is no URL or if its host or path does not fit.
std::optional<CrackedUrl> CrackUrl(const std::string& url)
{
    wchar_t host[kUrlPartCapacity + 1] = {};
    wchar_t path[kUrlPartCapacity + 1] = {};
    URL_COMPONENTSW components = {};
    components.dwStructSize = sizeof(components);
    components.lpszHostName = host;
    components.dwHostNameLength = kUrlPartCapacity;
    components.lpszUrlPath = path;
    components.dwUrlPathLength = kUrlPartCapacity;
    if (!InternetCrackUrlW(Widen(url).c_str(), 0, ICU_ESCAPE, &components))
    {
        return std::nullopt;
    }
    return CrackedUrl{WideToNarrow(host), WideToNarrow(path), components.nScheme, components.nPort};
}

// The pairs in the order of their keys, without percent-encoding.
std::string EncodeParameters(const CHttpRequest::Parameters& params)
{
    std::string text;
    for (const auto& [key, value] : params)
    {
        if (!text.empty())
        {
            text += "&";
        }
        text += key;
        text += "=";
        text += value;
    }
    return text;
}

std::string QueryHeader(const CHttpFile& file, DWORD level)
{
    CString text;
    file.QueryInfo(level, text);
    return WideToNarrow(text.GetString());
}

bool IsAccepted(std::uint32_t status)
{
    return status == HTTP_STATUS_OK || status == HTTP_STATUS_CREATED || status == HTTP_STATUS_NO_CONTENT;
}

bool IsGzip(const CHttpFile& file)
{
    CString encoding;
    file.QueryInfo(HTTP_QUERY_CONTENT_ENCODING, encoding);
    return encoding.CompareNoCase(L"gzip") == 0 || encoding.CompareNoCase(L"x-gzip") == 0;
}

void SendByVerb(CHttpFile& file, int verb, const std::string& encodedParameters)
{
    switch (verb)
    {
    case CHttpConnection::HTTP_VERB_POST: {
        // As many bytes as the text has characters, so only the first half of its UTF-16 form. Kept on
        // purpose.
        std::wstring body = Widen(encodedParameters);
        file.SendRequest(kFormContentType.data(), static_cast<DWORD>(kFormContentType.size()), body.data(),
                         static_cast<DWORD>(body.size()));
        break;
    }
    case CHttpConnection::HTTP_VERB_GET:
    case CHttpConnection::HTTP_VERB_DELETE:
        file.SendRequest();
        break;
    default:
        break;
    }
}

// Reads and decodes at most kMaximumBodyLength bytes of the body; the rest is not read.
void ReadBody(CHttpFile& file, bool gzip, CHttpResponse& response)
{
    auto buffer = std::make_unique_for_overwrite<char[]>(kMaximumBodyLength + 1);
    std::uint32_t length = 0;
    while (length < kMaximumBodyLength)
    {
        const UINT read = file.Read(buffer.get() + length, kMaximumBodyLength - length);
        if (read == 0)
        {
            break;
        }
        length += read;
    }

    if (gzip)
    {
        std::unique_ptr<char[]> decoded;
        std::uint32_t decodedLength = 0;
        if (DecodeGzip(buffer.get(), length, decoded, decodedLength) != 0)
        {
            static_cast<void>(std::fputs("Could not decode gzip content\n", stdout));
        }
        buffer = std::move(decoded);
        length = decodedLength;
    }
    buffer[length] = '\0';
    response.m_data = std::move(buffer);
    response.m_length = length;
}

// Sends the request and reads the response. The request is closed before its connection, also on an
// exception.
void Exchange(CInternetSession& session, const CrackedUrl& url, const std::string& encodedParameters,
              int verb, CHttpResponse& response)
{
    const DWORD secure = url.scheme == INTERNET_SCHEME_HTTPS ? INTERNET_FLAG_SECURE : 0;

    // With a question mark even if nothing follows it: the server expects it.
    const std::wstring path = Widen(url.path + "?" + encodedParameters);

    const std::unique_ptr<CHttpConnection> connection(
        session.GetHttpConnection(Widen(url.host).c_str(), url.port));
    const std::unique_ptr<CHttpFile> file(connection->OpenRequest(verb, path.c_str(), nullptr, kContext,
                                                                  nullptr, nullptr, kRequestFlags | secure));
    file->AddRequestHeaders(kAcceptEncoding, HTTP_ADDREQ_FLAG_ADD_IF_NEW);
    SendByVerb(*file, verb, encodedParameters);

    DWORD status = 0;
    file->QueryInfoStatusCode(status);
    response.m_date = ParseHttpDate(QueryHeader(*file, HTTP_QUERY_DATE));

    std::string contentType;
    if (IsAccepted(status))
    {
        const bool gzip = IsGzip(*file);
        contentType = QueryHeader(*file, HTTP_QUERY_CONTENT_TYPE);
        ReadBody(*file, gzip, response);
    }
    file->Close();
    connection->Close();

    response.m_status = status;
    response.m_contentType = std::move(contentType);
}
} // namespace

// NOLINTNEXTLINE(performance-unnecessary-value-param): both forms of a request take their arguments by value
std::unique_ptr<CHttpResponse> CHttpRequest::PerformRequest(std::string url, Parameters params, int verb)
{
    // A session that cannot be opened throws to the caller. No time-outs or other options are set: WinINet's
    // defaults apply, also to redirections.
    CInternetSession session(nullptr, kContext, PRE_CONFIG_INTERNET_ACCESS, nullptr, nullptr, 0);

    auto response = std::make_unique<CHttpResponse>();
    const std::optional<CrackedUrl> parts = CrackUrl(url);
    if (!parts)
    {
        WriteDebugLog(GetDebugLog(), kPerformRequest, "Caught exception", "Could not parse url");
        return response;
    }

    try
    {
        Exchange(session, *parts, EncodeParameters(params), verb, *response);
    }
    catch (CInternetException* caught)
    {
        const std::unique_ptr<CInternetException, ExceptionDeleter> exception(caught);
        wchar_t text[kLongestErrorText] = {};
        exception->GetErrorMessage(text, kLongestErrorText);
        WriteDebugLog(GetDebugLog(), kPerformRequest, "Caught CInternetException", std::wstring(text));
    }
    session.Close();
    return response;
}

std::wstring CHttpRequest::PerformTextRequest(std::string url, Parameters params, int verb)
{
    LogEntry(kPerformTextRequest);
    struct tm date = {};
    return PerformTextRequest(std::move(url), std::move(params), verb, date);
}

std::wstring CHttpRequest::PerformTextRequest(std::string url, Parameters params, int verb, struct tm& date)
{
    LogEntry(kPerformTextRequest);
    std::uint32_t status = 0;
    return PerformTextRequest(std::move(url), std::move(params), verb, date, status);
}

std::wstring CHttpRequest::PerformTextRequest(std::string url, Parameters params, int verb,
                                              std::uint32_t& status)
{
    LogEntry(kPerformTextRequest);
    struct tm date = {};
    return PerformTextRequest(std::move(url), std::move(params), verb, date, status);
}

std::wstring CHttpRequest::PerformTextRequest(std::string url, Parameters params, int verb, struct tm& date,
                                              std::uint32_t& status)
{
    LogEntry(kPerformTextRequest);
    ClearApplicationName();
    std::unique_ptr<CHttpResponse> response = PerformRequest(std::move(url), std::move(params), verb);
    WriteDebugLog(GetDebugLog(), kPerformTextRequest, "response content lenght",
                  static_cast<std::int32_t>(response->m_length));
    WriteDebugLog(GetDebugLog(), kPerformTextRequest, "response httpStatus",
                  static_cast<std::int32_t>(response->m_status));
    date = response->m_date;
    status = response->m_status;

    // UTF-16 texts are not read, so such a response counts as an empty one. These two spellings only: others
    // are read as UTF-8.
    std::wstring text;
    const std::string& contentType = response->m_contentType;
    if (contentType.find("UTF-16") == std::string::npos && contentType.find("utf-16") == std::string::npos)
    {
        text = DecodeUtf8(*response);
    }

    LogMessage(kPerformTextRequest, "delete resp");
    response.reset();
    LogMessage(kPerformTextRequest, "deleted resp");
    return text;
}

std::wstring CHttpRequest::DecodeUtf8(const CHttpResponse& response)
{
    const char* body = response.m_data.get();
    std::uint32_t length = response.m_length;
    if (length >= kByteOrderMark.size())
    {
        LogMessage(kPerformTextRequest, "check for BOM");
        if (std::string_view(body, length).starts_with(kByteOrderMark))
        {
            body += kByteOrderMark.size();
            length -= static_cast<std::uint32_t>(kByteOrderMark.size());
        }
    }

    // The misspelt labels are the log's vocabulary. The conversion goes by the body's first zero byte, not by
    // this length. A response without a body gives 0 characters.
    WriteDebugLog(GetDebugLog(), kPerformTextRequest, "newContentLenght", static_cast<std::int32_t>(length));
    const int count = MultiByteToWideChar(CP_UTF8, 0, body, -1, nullptr, 0);
    WriteDebugLog(GetDebugLog(), kPerformTextRequest, "num_chars", count);
    if (count < 1)
    {
        return {};
    }

    std::wstring text(static_cast<std::size_t>(count), L'\0');
    const int converted = MultiByteToWideChar(CP_UTF8, 0, body, -1, text.data(), count);
    WriteDebugLog(GetDebugLog(), kPerformTextRequest, "ret", converted);
    if (converted < 1)
    {
        return {};
    }

    text.resize(static_cast<std::size_t>(count) - 1);
    WriteDebugLog(GetDebugLog(), kPerformTextRequest, "response", text);
    return text;
}

HRESULT CHttpRequest::PerformBinaryRequest(std::string url, Parameters params, int verb, SAFEARRAY*& out)
{
    ClearApplicationName();
    const std::unique_ptr<CHttpResponse> response = PerformRequest(std::move(url), std::move(params), verb);
    return response->m_data != nullptr ? BytesToSafeArray(response->m_data.get(), response->m_length, &out)
                                       : E_FAIL;
}

void CHttpRequest::SetParameter(Parameters& params, const std::string& key, const std::string& value)
{
    params[key] = value;
}
