// The user's proxy setting: sends every WinINet request, whatever its host, to a server on loopback.
#pragma once

#include "harness/Registry.h"

#include <string>

namespace orva::test
{

/// Its destructor makes this process read the proxy setting again.
struct CProxyChangeAnnouncer
{
    ~CProxyChangeAnnouncer();
};

/// During its lifetime the current user's proxy is 127.0.0.1:PORT, for this process and for programs started
/// afterwards.
///
/// A request then arrives in absolute form ("GET http://host:80/path HTTP/1.1"). Wine reads the setting at
/// each InternetOpen; Windows keeps it until INTERNET_OPTION_SETTINGS_CHANGED is set in the process, as it is
/// here. Requests to 127.0.0.1 itself go through the proxy too, because the list of exceptions is removed.
class CProxySetting
{
public:
    explicit CProxySetting(unsigned short port);
    /// A proxy text as the user would type it.
    explicit CProxySetting(const std::wstring& proxy);
    CProxySetting(const CProxySetting&) = delete;
    CProxySetting& operator=(const CProxySetting&) = delete;

private:
    // First, so that it is destroyed last, when the values have been restored.
    CProxyChangeAnnouncer m_announcer;
    CRegistryValue m_enable;
    CRegistryValue m_server;
    CRegistryValue m_override;
    CRegistryValue m_autoConfig;
};

/// During its lifetime no proxy is set.
class CNoProxy
{
public:
    CNoProxy();
    CNoProxy(const CNoProxy&) = delete;
    CNoProxy& operator=(const CNoProxy&) = delete;

private:
    // First, so that it is destroyed last, when the values have been restored.
    CProxyChangeAnnouncer m_announcer;
    CRegistryValue m_enable;
    CRegistryValue m_autoConfig;
};

} // namespace orva::test
