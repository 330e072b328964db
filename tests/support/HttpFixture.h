// What the tests of the HTTP client share: a server, requests to it, and the log lines that they write.
#pragma once

#include "harness/DebugOutput.h"
#include "harness/LoopbackServer.h"
#include "harness/ProxySetting.h"
#include "support/HttpRequest.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace orva::test
{

constexpr int kPost = 0;
constexpr int kGet = 1;
constexpr int kDelete = 5;

/// The log's last lines of a request that gave no body, the same for every text form.
inline const std::vector<std::string> kLinesOfNoBody = {
    "CHttpRequest::PerformTextRequest() newContentLenght 0",
    "CHttpRequest::PerformTextRequest() num_chars 0",
    "CHttpRequest::PerformTextRequest() delete resp ",
    "CHttpRequest::PerformTextRequest() deleted resp ",
};

class HttpFixture : public testing::Test
{
protected:
    /// The result of the longest text form.
    struct Fetched
    {
        std::wstring text;
        struct tm date = {};
        std::uint32_t status = 12345;
        std::vector<std::string> lines;
    };

    static Fetched FetchUrl(const std::string& url, int verb = kGet)
    {
        Fetched fetched;
        const CDebugOutput output;
        fetched.text = CHttpRequest::PerformTextRequest(url, {}, verb, fetched.date, fetched.status);
        fetched.lines = output.Lines();
        return fetched;
    }

    /// Answers the next request with the script.
    Fetched Fetch(CServerScript script)
    {
        m_server.OnNext("/file", std::move(script));
        return FetchUrl(m_server.Url("/file"));
    }

    /// The text of a 200 response with this body.
    std::wstring TextOf(const std::string& body) { return Fetch(CHttpReply(200, body)).text; }

    /// The lines of the longest form, from the entry to the status.
    static std::vector<std::string> Lines(std::uint32_t length, int status, std::vector<std::string> rest)
    {
        std::vector<std::string> lines = {
            "CHttpRequest::PerformTextRequest",
            "CHttpRequest::PerformTextRequest() response content lenght " + std::to_string(length),
            "CHttpRequest::PerformTextRequest() response httpStatus " + std::to_string(status),
        };
        lines.insert(lines.end(), rest.begin(), rest.end());
        return lines;
    }

    /// The lines of a request that failed, with the line that says why.
    static std::vector<std::string> FailureLines(const std::string& reason)
    {
        std::vector<std::string> lines = Lines(0, -1, kLinesOfNoBody);
        lines.insert(lines.begin() + 1, "CHttpRequest::PerformRequest() " + reason);
        return lines;
    }

    CNoProxy m_noProxy;
    CLoopbackServer m_server;
};

/// The text of a WinINet error as the system has it.
inline std::string InternetErrorText(DWORD error)
{
    wchar_t text[1024] = {};
    FormatMessageW(FORMAT_MESSAGE_FROM_HMODULE | FORMAT_MESSAGE_IGNORE_INSERTS,
                   GetModuleHandleW(L"wininet.dll"), error, 0, text, 1024, nullptr);
    const std::wstring wide = text;
    return std::string(wide.begin(), wide.end());
}

} // namespace orva::test
