#include "publishing/ServerCheck.h"

#include "publishing/HttpExchange.h"
#include "publishing/Text.h"
#include "publishing/UpdateText.h"
#include "support/GzipDecoder.h"
#include "support/HttpRequest.h"
#include "support/TextUtilities.h"

#include <fcntl.h>
#include <io.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <utility>

namespace publishing
{
namespace
{

constexpr wchar_t kPath[] = L"server";

// The add-in's client prints a line of its own when it cannot decode a body, which must not get into a
// report.
class CQuietOutput
{
public:
    CQuietOutput() : m_saved(Flushed() ? _dup(kOutput) : -1)
    {
        const int nothing = _open("NUL", _O_WRONLY);
        _dup2(nothing, kOutput);
        _close(nothing);
    }
    ~CQuietOutput()
    {
        static_cast<void>(Flushed());
        _dup2(m_saved, kOutput);
        _close(m_saved);
    }
    CQuietOutput(const CQuietOutput&) = delete;
    CQuietOutput& operator=(const CQuietOutput&) = delete;

private:
    static constexpr int kOutput = 1;
    static bool Flushed() { return std::fflush(stdout) == 0; }

    int m_saved;
};

// Empty if the add-in gets nothing that it reads.
std::wstring FetchAsTheAddIn(const std::wstring& url, const CHttpExchange& seen, CFindings& findings)
{
    const CQuietOutput quiet;
    try
    {
        return CHttpRequest::PerformTextRequest(WideToNarrow(url), {}, CHttpConnection::HTTP_VERB_GET);
    }
    catch (const std::out_of_range&)
    {
        findings.Error("no-date", kPath,
                       seen.date.empty()
                           ? L"sends no Date header, which the add-in needs"
                           : L"sends a Date header that the add-in cannot read: " + Quoted(seen.date));
        return {};
    }
}

bool IsGzip(const std::wstring& coding)
{
    const CString text = coding.c_str();
    return text.CompareNoCase(L"gzip") == 0 || text.CompareNoCase(L"x-gzip") == 0;
}

std::string Decode(const CHttpExchange& seen, CFindings& findings)
{
    if (!IsGzip(seen.coding))
    {
        if (!seen.coding.empty() && CString(seen.coding.c_str()).CompareNoCase(L"identity") != 0)
        {
            findings.Error("coding", kPath,
                           L"uses a coding that the add-in does not know: " + Quoted(seen.coding));
        }
        return seen.body;
    }
    std::unique_ptr<char[]> decoded;
    std::uint32_t length = 0;
    const auto read =
        static_cast<std::uint32_t>(std::min<std::size_t>(seen.body.size(), kMaximumDecodedLength));
    if (DecodeGzip(seen.body.data(), read, decoded, length) != 0)
    {
        findings.Error("coding", kPath,
                       length == kMaximumDecodedLength || seen.body.size() > kMaximumDecodedLength
                           ? L"sends more than the 256000 bytes that the add-in reads"
                           : L"sends a damaged gzip body");
    }
    return {decoded.get(), length};
}

void CheckHeaders(const CHttpExchange& seen, CFindings& findings)
{
    if (IsHttps(seen.redirectedTo))
    {
        findings.Error("redirect", kPath,
                       L"redirects to " + seen.redirectedTo +
                           L", and Windows does not follow from http to https");
        return;
    }
    if (seen.status != HTTP_STATUS_OK)
    {
        findings.Error("status", kPath,
                       L"answers with status " + std::to_wstring(seen.status) + L", not 200");
        return;
    }
    const std::wstring& type = seen.contentType;
    if (type.find(L"UTF-16") != std::wstring::npos || type.find(L"utf-16") != std::wstring::npos)
    {
        findings.Error("content-type", kPath,
                       L"says that the file is UTF-16, which the add-in does not read: " + Quoted(type));
    }
    else if (!type.starts_with(L"text/plain") && !type.starts_with(L"application/json"))
    {
        findings.Warning("content-type", kPath,
                         L"sends the file as " + Quoted(type) +
                             L" and not as \"text/plain\" or \"application/json\"");
    }
    if (!seen.redirectedTo.empty())
    {
        findings.Warning("redirect", kPath, L"redirects to " + seen.redirectedTo);
    }
    if (!seen.isReadToTheEnd || (seen.length && seen.body.size() < *seen.length))
    {
        findings.Error("cut", kPath,
                       L"ends the file after " + std::to_wstring(seen.body.size()) +
                           (seen.length ? L" of " + std::to_wstring(*seen.length) + L" bytes" : L" bytes"));
    }
}

} // namespace

std::optional<CServedFile> FetchAndCheck(const std::wstring& url, CFindings& findings)
{
    // The add-in asks with the question mark, which may make a difference to a server.
    const std::optional<CHttpExchange> seen = Get(url + L"?", L"Accept-Encoding: gzip");
    if (!seen)
    {
        findings.Error("no-answer", kPath, L"does not answer");
        return std::nullopt;
    }
    CServedFile file;
    CheckHeaders(*seen, findings);
    if (!IsRedirection(seen->status))
    {
        file.text = FetchAsTheAddIn(url, *seen, findings);
    }
    file.bytes = Decode(*seen, findings);
    if (file.text.empty() && !DecodeAsTheAddIn(file.bytes).empty() && !findings.HasErrors())
    {
        findings.Error("no-answer", kPath, L"does not give the file to the add-in's own client");
    }
    file.facts = {seen->status, seen->date,         seen->contentType,
                  seen->coding, seen->redirectedTo, file.bytes.size()};
    return file;
}

} // namespace publishing
