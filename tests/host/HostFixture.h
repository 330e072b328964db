// Starts OutlookHost.exe with a fake add-in registered for it, and reads its trace.
#pragma once

#include "harness/ProcessRunner.h"
#include "harness/Registry.h"
#include "harness/TempFolder.h"
#include "harness/WindowDriver.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace orva::test
{

/// ProgID of the fake add-in.
inline constexpr wchar_t kFakeAddIn[] = L"OrvaHostTest.FakeAddIn";

/// The fake add-in is the only one registered while a test runs; what was registered before is put back.
class HostFixture : public testing::Test
{
protected:
    HostFixture();
    ~HostFixture() override;

    /// Starts the host; `fault` and `markup` are what the fake add-in is to do and to hand out.
    void StartHost(const std::vector<std::wstring>& options, const std::wstring& fault = {},
                   const std::wstring& markup = {});
    /// The main window, waited for; null when there is none in time.
    HWND MainWindow();
    /// Posts WM_CLOSE and waits for the end; the exit code, or -1 when the program does not end.
    int CloseHost();
    /// Waits for the end without doing anything for it.
    int WaitForHost();
    DWORD HostProcess() const { return m_host->Id(); }
    /// What it has written to its standard output and error.
    std::string Output() const { return m_host->Output(); }

    /// The trace so far: each line without its time, and with " N ms" cut out.
    std::vector<std::string> Trace() const;
    /// Waits for a line with exactly this text.
    bool WaitForTrace(const std::string& line) const;
    bool HasTrace(const std::string& line) const;
    /// Position of a line; fails the test when it is not there.
    size_t TraceIndex(const std::string& line) const;
    /// The trace in one text, for failure messages.
    std::string TraceText() const;

    /// LoadBehavior of the fake add-in under HKEY_CURRENT_USER.
    void SetLoadBehavior(DWORD value);
    const CTempFolder& Folder() const { return m_folder; }

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
