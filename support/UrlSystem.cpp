#include "support/UrlSystem.h"

#include <windows.h>
#include <wininet.h>

std::wstring WidenAnsi(const std::string& text)
{
    const int length = static_cast<int>(text.size());
    const int needed = MultiByteToWideChar(CP_THREAD_ACP, 0, text.data(), length, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(needed), L'\0');
    MultiByteToWideChar(CP_THREAD_ACP, 0, text.data(), length, wide.data(), needed);
    return wide;
}

bool SystemCrackUrl(const std::wstring& url, wchar_t* host, wchar_t* path, int& scheme, std::uint16_t& port)
{
    URL_COMPONENTSW components = {};
    components.dwStructSize = sizeof(components);
    components.lpszHostName = host;
    components.dwHostNameLength = kUrlPartCapacity;
    components.lpszUrlPath = path;
    components.dwUrlPathLength = kUrlPartCapacity;
    if (!InternetCrackUrlW(url.c_str(), 0, ICU_ESCAPE, &components))
    {
        return false;
    }
    scheme = components.nScheme;
    port = components.nPort;
    return true;
}
