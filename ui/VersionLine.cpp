// The line that tells the user which version of the add-in is installed.
#include "ui/VersionLine.h"

#include "support/Version.h"
#include "ui/LocalizedResources.h"

#include "res/resource.h"

CString FormatVersionLine()
{
    CString line;
    line.Format(GetLocalizedResources().LoadString(IDS_VERSION_LINE1), kVersionMajor, kVersionMinor,
                kVersionBuild, kBuildBits);
    return line;
}
