// The whole product as its user has it: the built DLL, registered, in the stand-in Outlook, with the scripted
// server as the user's proxy and the user on a second thread.
#pragma once

#include "fixture/UpdateInfo.h"
#include "harness/LogFile.h"
#include "harness/LoopbackServer.h"
#include "harness/OfficeLanguage.h"
#include "harness/ProcessRunner.h"
#include "harness/ProxySetting.h"
#include "harness/TempFolder.h"
#include "harness/UserScript.h"
#include "outlook/AddInRegistration.h"

#include <gmock/gmock.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace orva::test
{

/// An update-information file on one line, whose entry holds the three numbers, the link and a description.
std::string UpdateInfo(const std::string& major, const std::string& minor, const std::string& build,
                       const std::string& link);
/// One that offers 1.3.0 at this link.
std::string NewerBuild(const std::string& link);

/// Registers a DLL of the build once for a whole test program, and restores the registry at its end.
class CInstalledAddIn : public testing::Environment
{
public:
    explicit CInstalledAddIn(const std::wstring& module);
    void SetUp() override;
    void TearDown() override;

private:
    const std::wstring m_path;
    std::optional<CRegistrationGuard> m_guard;
};

/// One test with one stand-in Outlook. The language is English, the log is on and empty, the temporary folder
/// is fresh.
class OutlookFixture : public testing::Test
{
protected:
    OutlookFixture();

    /// Starts Outlook with further options of the stand-in, and the user's steps in it.
    void StartOutlook(const std::vector<std::wstring>& options = {});
    /// Starts it without its start-up check and with the add-in's Backstage tab open.
    void StartWithBackstage();
    /// Presses "Update" in the Backstage.
    void ClickUpdate();
    /// Presses "Update" for the nth time since Outlook's start, and waits until the callback has returned.
    void CheckExplicitly(int time = 1);
    /// Waits until Outlook has started, and asserts that the add-in was connected.
    void WaitForStart();
    /// Asserts that the main window is enabled, that no dialog is left and that the user took all of his
    /// steps. Then closes Outlook and asserts that the add-in was released.
    void ExpectOutlookGoesOn();
    /// Starts Outlook, waits for its start and closes it, with the assertions of the functions above.
    void RunToTheEnd(const std::vector<std::wstring>& options = {});

    /// The log of the start-up check, without the lines around it.
    std::vector<std::string> StartCheckLog() const;
    /// The log of an explicit check after its entry line.
    std::vector<std::string> ExplicitCheckLog() const;

    HWND MainWindow() const;
    /// The host's trace without times.
    std::vector<std::string> Trace() const;
    /// Waits until `count` lines hold this text. False if Outlook ends or the deadline passes before.
    bool WaitForTrace(const std::string& part, int count = 1) const;

    /// Publishes this text as the update file.
    void Publish(const std::string& text) { m_server.On(kUpdateInfoPath, CHttpReply(200, text)); }
    /// Expects the offer of a newer build, for which the user chooses "Later".
    void ExpectOffer();
    /// Publishes a newer build with this link, and has the user choose "Install".
    void OfferAndInstall(const std::string& link);
    /// Expects the progress dialog; the user does nothing with it.
    void ExpectDownloadDialog();
    /// The contents of the temporary folder, with "osc??????" for the name of a fresh folder.
    std::vector<std::wstring> TempFiles() const;

private:
    CDebugLogOn m_log;
    COfficeLanguageSetting m_language;
    CRegistryTreeGuard m_storedControls;
    // Made before the private temporary folder, so that it lies outside.
    CTempFolder m_folder;
    std::wstring m_tracePath;
    int m_starts = 0;

protected:
    CLoopbackServer m_server;
    std::optional<CProxySetting> m_proxy;
    CUserScript m_user;
    std::vector<CSeenWindow> m_seen;
    std::unique_ptr<CChildProcess> m_outlook;
    CPrivateTemp m_temp;
};

} // namespace orva::test
