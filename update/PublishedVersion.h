// The version that the update-information file publishes, and its comparison with the add-in's own.
#pragma once

#include <afxwin.h>
#include <json_spirit.h>

struct PublishedVersion
{
    int major;
    int minor;
    int build;
};

/// Reads "majorVersion", "minorVersion" and "buildNumber" of the update's entry, all three and in this order,
/// and logs them. Throws json_spirit's type error for a member that is missing or not an integer.
PublishedVersion ReadPublishedVersion(const json_spirit::wmObject& entry);

/// Whether `published` is greater than `installed` in lexicographic order of (major, minor, build). An equal
/// version is not newer.
bool IsNewer(const PublishedVersion& published, const PublishedVersion& installed);

/// Whether `published` is newer than the add-in's own version.
bool IsNewerThanInstalled(const PublishedVersion& published);

/// "major.minor.build".
CString FormatVersion(const PublishedVersion& version);

/// The add-in's own version, in the same form.
CString FormatInstalledVersion();
