// What the tests of the download share: a server, a private temporary folder, a user, and the dialog's
// controls.
#pragma once

#include "fixture/ProductFixture.h"
#include "fixture/UserTexts.h"
#include "harness/HttpReply.h"
#include "harness/ImportHook.h"
#include "harness/LoopbackServer.h"
#include "harness/ProxySetting.h"
#include "harness/TempFolder.h"
#include "harness/UserScript.h"
#include "ui/InstallerType.h"
#include "ui/StartDownloadDialog.h"

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace orva::test
{

inline constexpr char kInstallerPath[] = "/setup.orvatest";

/// What CDownloadTest::Left returns when the file has been deleted and when it exists.
inline const std::vector<std::wstring> kEmptyFolderLeft{L"osc??????\\"};
inline const std::vector<std::wstring> kFileLeft{L"osc??????\\", L"osc??????\\setup.orvatest"};

/// Runs StartDownloadDialog against a loopback server, in English, with a temporary folder of its own. The
/// dialog's last second ends when the user has seen the dialog.
class CDownloadTest : public testing::Test
{
protected:
    CDownloadTest();

    /// Answers the installer's request once the user has seen the dialog.
    void Serve(const CHttpReply& reply);
    /// Runs the whole download of this link; the user's steps must have been added.
    void Download(const std::wstring& url, const CSignedUpdate* signedUpdate = nullptr);
    /// The same for the installer's path on the server.
    void DownloadInstaller() { Download(m_server.WideUrl(kInstallerPath)); }
    /// When the dialog comes up, runs `act` on the user's thread, and then lets the server go on.
    CUserScript& OnDownloadDialog(std::function<void(HWND)> act = [](HWND) {});
    /// Waits until the installer has been started and has ended.
    bool WaitForInstaller() const;
    /// Files and folders in the temporary folder, except "NAME.started", with "osc??????" for the names of
    /// fresh folders.
    std::vector<std::wstring> Left() const;

    /// The bytes of the file in the fresh folder; absent if there is none.
    std::optional<std::string> FileBytes() const;

    CLoopbackServer m_server;
    CNoProxy m_noProxy;
    COfficeLanguage m_language{1033};
    CInstallerType m_installerType;
    CPrivateTemp m_temp;
    CGate m_seenGate;
    /// The download's owner.
    HWND m_owner = nullptr;
    CUserScript m_user;
    std::vector<CSeenWindow> m_seen;

private:
    CImportHook m_sleep;
};

} // namespace orva::test
