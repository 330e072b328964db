// A request as the scripted server received it.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orva::test
{

/// One request as it came in.
struct CHttpRecord
{
    /// Everything that was received for it, byte for byte.
    std::string raw;
    /// The request line without its end.
    std::string requestLine;
    std::string method;
    /// The request's target as sent: "/path?query", or "http://host:80/path?query" to a proxy.
    std::string target;
    std::string version;
    /// The target's host and port, empty if the target is a path.
    std::string authority;
    /// The target's path without authority and query.
    std::string path;
    /// What follows the "?"; absent without a "?".
    std::optional<std::string> query;
    /// In the order and spelling received.
    std::vector<std::pair<std::string, std::string>> headers;
    std::string body;
    /// Number of the connection it came on, counted from 0.
    size_t connection = 0;

    /// A header's value, looked up without case; absent if it was not sent.
    std::optional<std::string> Header(std::string_view name) const;
};

/// Takes the head of a request (its bytes up to and with the empty line) apart. A malformed one leaves fields
/// empty.
CHttpRecord ParseRequestHead(const std::string& head);

/// The length of the body that the request announces; 0 without one.
size_t AnnouncedLength(const CHttpRecord& record);

} // namespace orva::test
