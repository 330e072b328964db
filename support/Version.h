// The version of the add-in and the properties of this build's architecture.
#pragma once

#include "OrvaVersion.h"

/// The add-in's own version: shown to the user and compared with the published one. The version resource
/// of the DLL is not consulted for either.
constexpr int kVersionMajor = ORVA_VERSION_MAJOR;
constexpr int kVersionMinor = ORVA_VERSION_MINOR;
constexpr int kVersionBuild = ORVA_VERSION_BUILD;

/// The width of this build, as the version text shows it.
constexpr int kBuildBits = static_cast<int>(sizeof(void*) * 8);

/// The member of the update-information file that describes builds for this architecture.
constexpr const wchar_t* kUpdateEntryName = sizeof(void*) == 8 ? L"x64" : L"x86";
