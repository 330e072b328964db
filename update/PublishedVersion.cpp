#include "update/PublishedVersion.h"

#include "support/DebugLog.h"
#include "support/JsonUtilities.h"
#include "support/Version.h"

#include <string>
#include <tuple>

namespace
{

constexpr PublishedVersion kInstalled{kVersionMajor, kVersionMinor, kVersionBuild};

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

bool IsNewerThanInstalled(const PublishedVersion& published)
{
    return std::tie(published.major, published.minor, published.build) >
           std::tie(kInstalled.major, kInstalled.minor, kInstalled.build);
}

CString FormatVersion(const PublishedVersion& version)
{
    CString text;
    text.Format(L"%d.%d.%d", version.major, version.minor, version.build);
    return text;
}

CString FormatInstalledVersion()
{
    return FormatVersion(kInstalled);
}
