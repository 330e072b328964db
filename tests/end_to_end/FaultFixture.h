// A fault, a check in Outlook that meets it, and a second check without it.
#pragma once

#include "end_to_end/OutlookFixture.h"

#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

namespace orva::test
{

/// Which check meets the fault: the silent one at Outlook's start, or the one that the user asks for.
enum class CheckMode
{
    StartUp,
    Explicit,
};

void PrintTo(CheckMode mode, std::ostream* out);
/// "StartUp" or "Explicit", for the names of tests with this parameter alone.
std::string NameOfMode(const testing::TestParamInfo<CheckMode>& info);
/// Both in the thorough run, otherwise the start-up check alone.
std::vector<CheckMode> ModesOfThisRun();

/// An update file whose build is not newer than the installed one.
extern const std::string g_latestInfo;

/// The window of a download's progress, in a list of what was shown; its texts change with the progress.
inline constexpr wchar_t kProgress[] = L"(progress of the download)";

/// The outcome of a fault.
struct CObservedFault
{
    /// The windows that the check showed, in order.
    std::vector<CSeenWindow> windows;
    /// The same, a message box of the add-in's by its text, another box by caption and text, a dialog by its
    /// caption.
    std::vector<std::wstring> shown;
    /// The log of the check that met the fault.
    std::vector<std::string> log;
    /// The contents of the temporary folder after it, as TempFiles returns them.
    std::vector<std::wstring> left;
};

/// Runs one fault in one Outlook: a check with the fault, then a second check with a healthy server.
///
/// Asserts that Outlook's window is enabled after the first check, that the second one works and that Outlook
/// then ends normally, and records what the user saw. The test asserts what is shown, logged and left.
class FaultFixture : public OutlookFixture
{
protected:
    /// The user's steps for the first check must have been added before.
    void RunFault(CheckMode mode);
    /// The same for a fault that lasts as long as Outlook runs: a new Outlook makes the second check.
    /// `isLoaded` says whether the add-in is expected to load at the first start.
    void RunFaultyStart(bool isLoaded = true);

    const CObservedFault& Observed() const { return m_observed; }

    /// Removes what the test did apart from the server's scripts and the proxy, before the second check.
    std::function<void()> m_removeFault;
    /// In RunFaultyStart: the user's action that triggers the fault, in an Outlook without start-up check. If
    /// it is not set, the start-up check triggers the fault.
    std::function<void()> m_triggerFault;

private:
    void RunFirstCheck(CheckMode mode);
    void Observe(CheckMode mode);
    /// Has the server answer that the installed build is the latest.
    void MakeAllWell();
    void EndOutlookWithoutAddIn();

    CObservedFault m_observed;
};

} // namespace orva::test
