#include "support/RedirectLimit.h"

namespace
{
// Synchronous requests report their progress on their own thread.
thread_local unsigned int g_redirects = 0;

void CALLBACK OnStatus(HINTERNET request, DWORD_PTR, DWORD status, LPVOID, DWORD)
{
    if (status != INTERNET_STATUS_REDIRECT || ++g_redirects <= CRedirectLimit::kMaximumRedirects)
    {
        return;
    }

    // Closing the request's handle here would not end the redirections: they are followed all the same. An
    // answer that may not take any time does.
    DWORD timeout = 1;
    InternetSetOptionW(request, INTERNET_OPTION_RECEIVE_TIMEOUT, &timeout, sizeof(timeout));
}
} // namespace

CRedirectLimit::CRedirectLimit(HINTERNET session) noexcept : m_session(session)
{
    g_redirects = 0;
    InternetSetStatusCallbackW(m_session, OnStatus);
}

CRedirectLimit::~CRedirectLimit()
{
    InternetSetStatusCallbackW(m_session, nullptr);
}
