#include "publishing/UpdateText.h"

#include "publishing/Text.h"
#include "support/GzipDecoder.h"
#include "support/HttpRequest.h"

#include <boost/spirit/include/classic_position_iterator.hpp>

#include <algorithm>
#include <string_view>
#include <utility>

namespace publishing
{
namespace
{

using json_spirit::Error_position;

// The reader counts columns in its own way, with tabulators of four columns.
std::size_t IndexOf(const std::wstring& text, const Error_position& error)
{
    using namespace boost::spirit::classic;
    position_iterator<std::wstring::const_iterator, file_position> position(text.begin(), text.end(), "");
    std::size_t index = 0;
    while (index < text.size() && (position.get_position().line != static_cast<int>(error.line_) ||
                                   position.get_position().column != static_cast<int>(error.column_)))
    {
        ++position;
        ++index;
    }
    return index;
}

// What the reader misses at `index`, which is moved to where it is missing.
std::wstring Expected(const std::string& reason, const std::wstring& text, std::size_t& index)
{
    const bool isObject = reason == "not an object";
    if (isObject || reason == "not an array")
    {
        if (index >= text.size() || text[index] != L',')
        {
            return isObject ? L"\",\" or \"}\" has to stand here" : L"\",\" or \"]\" has to stand here";
        }
        // The comma is not taken without what has to follow it.
        index = SkipWhiteSpace(text, index + 1);
        return isObject ? L"a name in quotation marks has to stand here" : L"a value has to stand here";
    }
    if (reason == "no colon in pair")
    {
        return L"\":\" has to stand here";
    }
    return reason == "not a value" ? L"a value has to stand here"
                                   : L"too many arrays and objects inside each other";
}

bool IsUtf8(std::string_view bytes)
{
    return bytes.empty() || MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, bytes.data(),
                                                static_cast<int>(bytes.size()), nullptr, 0) != 0;
}

void CheckEncoding(const std::string& bytes, CFindings& findings)
{
    if (bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF"))
    {
        findings.Error("not-utf-8", {}, L"the file is UTF-16, and has to be UTF-8");
        return;
    }
    // No character beyond ASCII contains the byte of a line feed.
    std::size_t line = 1;
    for (std::size_t begin = 0; begin < bytes.size(); ++line)
    {
        const std::size_t end = std::min(bytes.find('\n', begin), bytes.size());
        if (!IsUtf8(std::string_view(bytes).substr(begin, end - begin)))
        {
            findings.Error("not-utf-8", {}, L"line " + std::to_wstring(line) + L" is not UTF-8");
            return;
        }
        begin = end + 1;
    }
    if (const std::size_t zero = bytes.find('\0'); zero != std::string::npos)
    {
        findings.Error("zero-byte", {},
                       L"byte " + std::to_wstring(zero + 1) +
                           L" is zero: the add-in does not read beyond it");
    }
}

} // namespace

std::wstring DecodeAsTheAddIn(const std::string& bytes)
{
    CHttpResponse response;
    response.m_length =
        static_cast<std::uint32_t>(std::min<std::size_t>(bytes.size(), kMaximumDecodedLength));
    response.m_data = std::make_unique<char[]>(response.m_length + 1);
    std::copy_n(bytes.begin(), response.m_length, response.m_data.get());
    return CHttpRequest::DecodeUtf8(response);
}

CUpdateText ReadAsTheAddIn(std::wstring text)
{
    CUpdateText result{std::move(text), {}, {}};
    try
    {
        json_spirit::read_or_throw(result.text, result.root);
    }
    catch (const Error_position& error)
    {
        result.error = error;
    }
    return result;
}

void CheckBytes(const std::string& bytes, const std::wstring& text, CFindings& findings)
{
    if (bytes.size() > kMaximumDecodedLength)
    {
        findings.Error("too-long", {},
                       L"the file has " + std::to_wstring(bytes.size()) +
                           L" bytes: the add-in reads the first 256000 only");
    }
    CheckEncoding(bytes, findings);
    if (text.empty() && !findings.HasErrors())
    {
        findings.Error("empty", {}, L"the file is empty");
    }
}

bool CheckSyntax(const CUpdateText& text, CFindings& findings)
{
    if (!text.error)
    {
        return true;
    }
    std::size_t index = SkipWhiteSpace(text.text, IndexOf(text.text, *text.error));
    const std::wstring expected = Expected(text.error->reason_, text.text, index);
    findings.Error("syntax", {},
                   PlaceOf(text.text, index) + L": " + expected + L", not " + WhatStandsAt(text.text, index));
    return false;
}

} // namespace publishing
