// Starts OutlookHost.exe with a fake add-in registered for it, and reads its trace.
#pragma once

#include "harness/ProcessRunner.h"
#include "harness/Registry.h"
#include "harness/TempFolder.h"
#include "harness/WindowDriver.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <memory>
#include <string>
#include <vector>

namespace orva::test
{

/// ProgID of the fake add-in.
inline constexpr wchar_t kFakeAddIn[] = L"OrvaHostTest.FakeAddIn";

/// The fake add-in is the only one registered while a test runs. Earlier registrations are restored.
class HostFixture : public testing::Test
{
protected:
    HostFixture();
    ~HostFixture() override;

    /// Starts the host. `fault` is what the fake add-in does wrong, `markup` its custom UI.
    void StartHost(const std::vector<std::wstring>& options, const std::wstring& fault = {},
                   const std::wstring& markup = {});
    /// Waits for the main window; null when there is none in time.
    HWND MainWindow();
    /// Posts WM_CLOSE and waits for the exit code; -1 when the program does not end in time.
    int CloseHost();
    /// Like CloseHost, but without WM_CLOSE.
    int WaitForHost();
    /// Waits for the message box that the fake add-in shows for the fault "box"; null when there is none in
    /// time.
    HWND WaitForBox() const { return WaitForWindow({.process = m_host->Id(), .caption = L"Fake add-in"}); }
    /// Presses the box's only button.
    static bool CloseBox(HWND box) { return ClickButton(box, IDOK) || ClickButton(box, IDCANCEL); }
    /// What the host has written to standard output and error.
    std::string Output() const { return m_host->Output(); }

    /// The lines of the trace so far, without times and durations.
    std::vector<std::string> Trace() const;
    /// Waits for a line with exactly this text.
    bool WaitForTrace(const std::string& line) const;
    bool HasTrace(const std::string& line) const;
    /// Index of a line; fails the test when there is none.
    size_t TraceIndex(const std::string& line) const;
    /// The trace as one text, for failure messages.
    std::string TraceText() const;

    /// LoadBehavior of the fake add-in under HKEY_CURRENT_USER.
    void SetLoadBehavior(DWORD value);

private:
    CTempFolder m_folder;
    CRegistryTreeGuard m_userAddIns;
    CRegistryTreeGuard m_machineAddIns;
    CRegistryTreeGuard m_storedControls;
    std::vector<std::unique_ptr<CRegistryValue>> m_values;
    std::unique_ptr<CChildProcess> m_host;
    std::wstring m_tracePath;
    int m_runs = 0;
};

} // namespace orva::test
