// The user's proxy setting: leads every WinINet request, whatever its host, to a server on loopback.
#pragma once

#include "harness/Registry.h"

#include <string>

namespace orva::test
{

/// Makes this process read the proxy setting again when it is destroyed.
struct CProxyChangeAnnouncer
{
    ~CProxyChangeAnnouncer();
};

/// For its lifetime the current user's proxy is 127.0.0.1:PORT, for programs started from now on and for this
/// one.
///
/// A request then arrives in absolute form ("GET http://host:80/path HTTP/1.1"). Wine reads the setting at
/// each InternetOpen; Windows keeps it for a process until INTERNET_OPTION_SETTINGS_CHANGED, which is sent
/// here (it reaches this process only). Requests to 127.0.0.1 itself go through the proxy as well, since the
/// list of exceptions is taken away.
class CProxySetting
{
public:
    explicit CProxySetting(unsigned short port);
    /// A proxy text as the user would type it.
    explicit CProxySetting(const std::wstring& proxy);
    CProxySetting(const CProxySetting&) = delete;
    CProxySetting& operator=(const CProxySetting&) = delete;

private:
    /// First, so that it is destroyed last: when the values stand as before.
    CProxyChangeAnnouncer m_announcer;
    CRegistryValue m_enable;
    CRegistryValue m_server;
    CRegistryValue m_override;
    CRegistryValue m_autoConfig;
};

/// For its lifetime no proxy is set.
class CNoProxy
{
public:
    CNoProxy();
    CNoProxy(const CNoProxy&) = delete;
    CNoProxy& operator=(const CNoProxy&) = delete;

private:
    /// First, so that it is destroyed last: when the values stand as before.
    CProxyChangeAnnouncer m_announcer;
    CRegistryValue m_enable;
    CRegistryValue m_autoConfig;
};

} // namespace orva::test
