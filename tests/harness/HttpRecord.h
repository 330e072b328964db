// A request as the scripted server received it.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orva::test
{

struct CHttpRecord
{
    /// All bytes received.
    std::string raw;
    /// The request line without CR LF.
    std::string requestLine;
    std::string method;
    /// The request's target as sent: "/path?query", or "http://host:80/path?query" to a proxy.
    std::string target;
    /// The target's host and port, empty if the target is a path.
    std::string authority;
    /// The target's path without authority and query.
    std::string path;
    /// What follows the "?"; absent without a "?".
    std::optional<std::string> query;
    /// In the order and spelling received.
    std::vector<std::pair<std::string, std::string>> headers;
    std::string body;

    /// The value of a header, whose name is compared without case; absent if it was not sent.
    std::optional<std::string> Header(std::string_view name) const;
};

/// Parses the head of a request, the empty line included. A malformed one leaves fields empty.
CHttpRecord ParseRequestHead(const std::string& head);

/// The length of the body that the request announces; 0 without one.
size_t AnnouncedLength(const CHttpRecord& record);

} // namespace orva::test
