#include "ui/VersionLine.h"

#include "res/resource.h"
#include "support/Version.h"
#include "ui/LocalizedResources.h"

CString FormatVersionLine()
{
    CString line;
    line.Format(GetLocalizedResources().LoadString(IDS_VERSION_LINE1), kVersionMajor, kVersionMinor,
                kVersionBuild, kBuildBits);
    return line;
}
