// The version of the add-in and the properties of this build's architecture.
#pragma once

/// The add-in's own version: shown to the user and compared with the published one. The version resource
/// of the DLL is not consulted for either. Defined in a source of its own, so that building another version
/// compiles little.
extern const int kVersionMajor;
extern const int kVersionMinor;
extern const int kVersionBuild;

/// The width of this build, as the version text shows it.
constexpr int kBuildBits = static_cast<int>(sizeof(void*) * 8);

/// The member of the update-information file that describes builds for this architecture.
constexpr const wchar_t* kUpdateEntryName = sizeof(void*) == 8 ? L"x64" : L"x86";
