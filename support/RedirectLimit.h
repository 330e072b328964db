// Ends requests that are redirected without end.
#pragma once

#include <windows.h>
#include <wininet.h>

/// While it lives, the requests of one session are redirected at most kMaximumRedirects times all together on
/// the thread that made it; from then on an answer has no more than a millisecond to come, and the request
/// fails.
///
/// WinINet on Windows gives up by itself after five, so this never comes into play there. Wine's follows a
/// server that redirects to itself for ever, and the thread that would wait for it is the host's
/// user-interface thread.
class CRedirectLimit
{
public:
    static constexpr unsigned int kMaximumRedirects = 10;

    /// Make it before the connections of the session: they inherit what it sets up.
    explicit CRedirectLimit(HINTERNET session) noexcept;
    ~CRedirectLimit();
    CRedirectLimit(const CRedirectLimit&) = delete;
    CRedirectLimit& operator=(const CRedirectLimit&) = delete;

private:
    HINTERNET m_session;
};
