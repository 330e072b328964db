// The update-information file as a web server sends it.
#pragma once

#include "publishing/Finding.h"

#include <cstdint>
#include <optional>
#include <string>

namespace publishing
{

/// What the server said.
struct CServerFacts
{
    unsigned long status = 0;
    std::wstring date;
    std::wstring contentType;
    std::wstring coding;
    std::wstring redirectedTo;
    /// Bytes after decoding.
    std::uint64_t size = 0;
};

struct CServedFile
{
    CServerFacts facts;
    /// The body after decoding; empty if the add-in would not read it.
    std::string bytes;
    /// The text that the add-in's own client gets.
    std::wstring text;
};

/// Requests the file twice: to see what the server says, and with the add-in's client unless the reply is a
/// redirection that this does not follow. Absent if there is no reply at all, which is an error of the
/// update.
std::optional<CServedFile> FetchAndCheck(const std::wstring& url, CFindings& findings);

} // namespace publishing
