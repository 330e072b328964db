#include "update/PublishedVersion.h"

#include "support/DebugLog.h"
#include "support/JsonUtilities.h"
#include "support/Version.h"

#include <string>
#include <tuple>

namespace
{

PublishedVersion InstalledVersion()
{
    return {kVersionMajor, kVersionMinor, kVersionBuild};
}

} // namespace

PublishedVersion ReadPublishedVersion(const json_spirit::wmObject& entry)
{
    constexpr char kFunction[] = "CheckForUpdate";
    PublishedVersion version{};
    version.major = FindValue(entry, L"majorVersion").get_int();
    version.minor = FindValue(entry, L"minorVersion").get_int();
    version.build = FindValue(entry, L"buildNumber").get_int();
    WriteDebugLog(GetDebugLog(), kFunction, "majorVersion", version.major);
    WriteDebugLog(GetDebugLog(), kFunction, "minorVersion", version.minor);
    WriteDebugLog(GetDebugLog(), kFunction, "buildNumber", version.build);
    return version;
}

bool IsNewer(const PublishedVersion& published, const PublishedVersion& installed)
{
    return std::tie(published.major, published.minor, published.build) >
           std::tie(installed.major, installed.minor, installed.build);
}

bool IsNewerThanInstalled(const PublishedVersion& published)
{
    return IsNewer(published, InstalledVersion());
}

CString FormatVersion(const PublishedVersion& version)
{
    CString text;
    text.Format(L"%d.%d.%d", version.major, version.minor, version.build);
    return text;
}

CString FormatInstalledVersion()
{
    return FormatVersion(InstalledVersion());
}
