// One GET request, and everything that the server says to it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace publishing
{

struct CHttpExchange
{
    unsigned long status = 0;
    /// Headers as they are; empty if there are none.
    std::wstring date;
    std::wstring contentType;
    std::wstring coding;
    std::optional<std::uint64_t> length;
    /// Where the reply comes from after redirections; empty without them.
    std::wstring redirectedTo;
    /// As it was sent, at most kLargestBody bytes.
    std::string body;
    /// Whether reading ended without an error.
    bool isReadToTheEnd = false;
};

/// More than any installer has.
constexpr std::size_t kLargestBody = std::size_t{1} << 30;

/// Requests `url` with these headers ("Name: value", several with line breaks between them). Absent if there
/// is no reply. Blocks.
std::optional<CHttpExchange> Get(const std::wstring& url, const wchar_t* headers);

} // namespace publishing
