#include "support/Version.h"

#include "OrvaVersion.h"

const int kVersionMajor = ORVA_VERSION_MAJOR;
const int kVersionMinor = ORVA_VERSION_MINOR;
const int kVersionBuild = ORVA_VERSION_BUILD;
