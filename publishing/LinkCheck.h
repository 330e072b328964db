// The link to the installer: whether the add-in can download from it and start what it gets.
#pragma once

#include "publishing/Finding.h"

#include <string>

namespace publishing
{

/// What becomes of a link when the user has chosen "Install".
enum class LinkFate
{
    /// There is nothing after the last "/", or no "/".
    NoFileName,
    NotParsed,
    /// The name does not name one ordinary file.
    BadFileName,
    /// The name is too long for a path in a user's temporary folder.
    NameTooLong,
    /// The scheme is another one than http.
    NotHttp,
    Downloaded,
};

/// `link` ends at its first zero unit, as for the add-in.
LinkFate FateOf(const std::wstring& link);

/// Errors for a link that cannot be downloaded, and for a file that Windows would not start.
void CheckLink(const std::wstring& link, const std::wstring& path, CFindings& findings);

} // namespace publishing
