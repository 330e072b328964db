#include "harness/ProxySetting.h"

#include <windows.h>
#include <wininet.h>

namespace orva::test
{

namespace
{

constexpr wchar_t kSettingsKey[] = L"Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings";
constexpr wchar_t kEnableValue[] = L"ProxyEnable";
constexpr wchar_t kServerValue[] = L"ProxyServer";
constexpr wchar_t kOverrideValue[] = L"ProxyOverride";
constexpr wchar_t kAutoConfigValue[] = L"AutoConfigURL";

void ReadSettingAgain()
{
    InternetSetOptionW(nullptr, INTERNET_OPTION_SETTINGS_CHANGED, nullptr, 0);
    InternetSetOptionW(nullptr, INTERNET_OPTION_REFRESH, nullptr, 0);
}

} // namespace

CProxyChangeAnnouncer::~CProxyChangeAnnouncer()
{
    ReadSettingAgain();
}

CProxySetting::CProxySetting(unsigned short port) : CProxySetting(L"127.0.0.1:" + std::to_wstring(port)) {}

CProxySetting::CProxySetting(const std::wstring& proxy)
    : m_enable(HKEY_CURRENT_USER, kSettingsKey, kEnableValue),
      m_server(HKEY_CURRENT_USER, kSettingsKey, kServerValue),
      m_override(HKEY_CURRENT_USER, kSettingsKey, kOverrideValue),
      m_autoConfig(HKEY_CURRENT_USER, kSettingsKey, kAutoConfigValue)
{
    m_enable.SetDword(1);
    m_server.SetString(proxy);
    m_override.Remove();
    m_autoConfig.Remove();
    ReadSettingAgain();
}

CNoProxy::CNoProxy()
    : m_enable(HKEY_CURRENT_USER, kSettingsKey, kEnableValue),
      m_autoConfig(HKEY_CURRENT_USER, kSettingsKey, kAutoConfigValue)
{
    m_enable.SetDword(0);
    m_autoConfig.Remove();
    ReadSettingAgain();
}

} // namespace orva::test
