#include "support/UrlCracker.h"

#include "support/TextUtilities.h"
#include "support/UrlSystem.h"

bool CrackUrl(const std::string& url, CrackedUrl& parts)
{
    // One more than the system is told of, so that the text ends in any case.
    wchar_t host[kUrlPartCapacity + 1] = {};
    wchar_t path[kUrlPartCapacity + 1] = {};
    int scheme = 0;
    std::uint16_t port = 0;
    if (!SystemCrackUrl(WidenAnsi(url), host, path, scheme, port))
    {
        return false;
    }
    parts = {WideToNarrow(host), WideToNarrow(path), scheme, port};
    return true;
}
