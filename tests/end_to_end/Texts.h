// The paths and names by which the parts of the product are found from outside.
#pragma once

#include "OrvaWebHost.h"
#include "fixture/UpdateInfo.h"
#include "fixture/UserTexts.h"

namespace orva::test
{

inline constexpr wchar_t kHost[] = L"OutlookHost.exe";
inline constexpr wchar_t kInstaller[] = L"newer\\OrvaSetup-1.3.0.exe";

inline constexpr char kUpdateInfoUrl[] = "http://" ORVA_WEB_HOST "/downloads/outlook/UpdateInfo.txt";
inline constexpr char kInstallerPath[] = "/files/setup.exe";
inline constexpr char kInstallerUrl[] = "http://files.orva.example/files/setup.exe";

} // namespace orva::test
