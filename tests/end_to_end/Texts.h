// What the user reads in English, and the paths and names by which the parts of the product are found from
// outside.
#pragma once

#include "OrvaWebHost.h"

namespace orva::test
{

inline constexpr wchar_t kModule[] = L"OrvaOscAddin.dll";
inline constexpr wchar_t kHost[] = L"OutlookHost.exe";
inline constexpr wchar_t kInstaller[] = L"DemoInstaller.exe";

inline constexpr char kUpdateInfoPath[] = "/downloads/outlook/UpdateInfo.txt";
inline constexpr char kUpdateInfoUrl[] = "http://" ORVA_WEB_HOST "/downloads/outlook/UpdateInfo.txt";
inline constexpr char kInstallerPath[] = "/files/setup.exe";
inline constexpr char kInstallerUrl[] = "http://files.orva.example/files/setup.exe";

/// Caption of every message box.
inline constexpr wchar_t kProduct[] = L"ORVA Connector";
inline constexpr wchar_t kNotParsed[] = L"Update information could not be parsed.";
inline constexpr wchar_t kConnectError[] = L"Error when connecting to the update server.";
inline constexpr wchar_t kLatest[] = L"You already have the latest version of the ORVA Connector. ";
inline constexpr wchar_t kDownloadFailed[] =
    L"Update download canceled.\nClick on the \"Update\" button to try and "
    L"download the update again.";
inline constexpr wchar_t kUrlNotParsed[] = L"URL could not be parsed: %s";
inline constexpr wchar_t kOfferCaption[] = L"New update available";
inline constexpr wchar_t kInvalidName[] = L"File could not be created, error ID: 123";
inline constexpr wchar_t kNoSuchPath[] = L"File could not be created, error ID: 3";

/// Controls of the update-available dialog.
inline constexpr int kInstallButton = 204;
inline constexpr int kLaterButton = 205;
inline constexpr int kAvailableText = 207;
inline constexpr int kInstalledText = 208;
inline constexpr int kDescriptionText = 203;
/// Controls of the download dialog.
inline constexpr int kProgressBar = 202;
inline constexpr int kStatusText = 2001;
inline constexpr int kSourceText = 2002;

} // namespace orva::test
