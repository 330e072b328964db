#include "harness/HttpRecord.h"

#include "harness/Text.h"

#include <strings.h>

#include <algorithm>
#include <charconv>

namespace orva::test
{

namespace
{

void SplitTarget(CHttpRecord& record)
{
    std::string rest = record.target;
    const size_t scheme = rest.find("://");
    if (scheme != std::string::npos && scheme < rest.find('/'))
    {
        rest.erase(0, scheme + 3);
        const size_t path = std::min(rest.find('/'), rest.size());
        record.authority = rest.substr(0, path);
        rest.erase(0, path);
    }
    const size_t query = rest.find('?');
    record.path = rest.substr(0, query);
    if (query != std::string::npos)
    {
        record.query = rest.substr(query + 1);
    }
}

} // namespace

CHttpRecord ParseRequestHead(const std::string& head)
{
    CHttpRecord record;
    record.raw = head;
    const std::vector<std::string> lines = SplitLines(head);
    if (lines.empty())
    {
        return record;
    }
    record.requestLine = lines[0];
    const size_t first = lines[0].find(' ');
    const size_t last = lines[0].rfind(' ');
    if (first != std::string::npos && last > first)
    {
        record.method = lines[0].substr(0, first);
        record.target = lines[0].substr(first + 1, last - first - 1);
        SplitTarget(record);
    }
    for (size_t i = 1; i < lines.size() && !lines[i].empty(); ++i)
    {
        const size_t colon = lines[i].find(':');
        std::string value = colon == std::string::npos ? std::string() : lines[i].substr(colon + 1);
        value.erase(0, std::min(value.find_first_not_of(" \t"), value.size()));
        record.headers.emplace_back(lines[i].substr(0, colon), std::move(value));
    }
    return record;
}

size_t AnnouncedLength(const CHttpRecord& record)
{
    size_t length = 0;
    if (const auto text = record.Header("Content-Length"))
    {
        std::from_chars(text->data(), text->data() + text->size(), length);
    }
    return length;
}

std::optional<std::string> CHttpRecord::Header(std::string_view name) const
{
    for (const auto& [key, value] : headers)
    {
        if (key.size() == name.size() && strncasecmp(key.data(), name.data(), name.size()) == 0)
        {
            return value;
        }
    }
    return std::nullopt;
}

} // namespace orva::test
