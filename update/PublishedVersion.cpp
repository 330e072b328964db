#include "update/PublishedVersion.h"

#include "support/DebugLog.h"
#include "support/JsonUtilities.h"
#include "support/Version.h"

#include <string>
#include <tuple>

namespace
{

constexpr PublishedVersion kInstalled{kVersionMajor, kVersionMinor, kVersionBuild};

int ReadNumber(const json_spirit::wmObject& entry, const std::wstring& name)
{
    return FindValue(entry, name).get_int();
}

void LogNumber(const char* label, int number)
{
    WriteDebugLog(GetDebugLog(), "CheckForUpdate", label, number);
}

} // namespace

PublishedVersion ReadPublishedVersion(const json_spirit::wmObject& entry)
{
    PublishedVersion version{};
    version.major = ReadNumber(entry, L"majorVersion");
    version.minor = ReadNumber(entry, L"minorVersion");
    version.build = ReadNumber(entry, L"buildNumber");
    LogNumber("majorVersion", version.major);
    LogNumber("minorVersion", version.minor);
    LogNumber("buildNumber", version.build);
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
