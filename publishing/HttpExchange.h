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
    std::wstring location;
    /// Where the reply comes from after redirections, or the https URL that it redirects to; empty without
    /// redirections.
    std::wstring redirectedTo;
    /// As it was sent; of more than kLargestFile bytes the first ones, some more than these.
    std::string body;
    /// Whether reading ended without an error.
    bool isReadToTheEnd = false;
};

/// Whether this is a status with which WinINet looks for a new place.
bool IsRedirection(unsigned long status);

bool IsHttps(const std::wstring& url);

/// Requests `url` with these headers ("Name: value", several with line breaks between them). Absent if there
/// is no reply. Blocks.
///
/// Follows redirections as WinINet does on Windows for the add-in, which does not ask for more: not to https
/// (INTERNET_FLAG_IGNORE_REDIRECT_TO_HTTPS), and not without end. Their own reply is returned then.
std::optional<CHttpExchange> Get(const std::wstring& url, const wchar_t* headers);

} // namespace publishing
