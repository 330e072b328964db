// Takes a URL apart for the HTTP client, free of Windows headers.
#pragma once

#include <cstdint>
#include <string>

struct CrackedUrl
{
    std::string host;

    /// With the query, if the URL has one.
    std::string path;

    /// WinINet's number of the scheme: 4 is https.
    int scheme = 0;

    /// The URL's port or its scheme's default.
    std::uint16_t port = 0;
};

/// Takes `url` apart, turning escape sequences into their characters; each character of host and path is
/// cut to its low byte. Returns false, and leaves `parts` alone, if that is not possible or the host or the
/// path is too long (kUrlPartCapacity).
bool CrackUrl(const std::string& url, CrackedUrl& parts);
