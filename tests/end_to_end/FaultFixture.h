// One fault, a check in Outlook that meets it, and its outcome: observed, asserted and reported.
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

/// The outcome of a fault.
struct CObservedFault
{
    CheckMode mode = CheckMode::StartUp;
    /// The texts of the windows that the check showed, in order.
    std::vector<std::wstring> shown;
    /// The log of the check that met the fault.
    std::vector<std::string> log;
    /// The contents of the temporary folder after it, as TempFiles returns them.
    std::vector<std::wstring> left;
    /// The same as a text with sizes.
    std::string leftText;
    /// Whether Outlook's window was enabled after the check.
    bool isHostEnabled = false;
    /// Whether the second check showed the expected message and left the window enabled.
    bool worksAgain = false;

    /// The cells of a report's row after its first.
    std::vector<std::string> Cells() const;
};

/// An update file whose build is not newer than the installed one.
extern const std::string g_latestInfo;

/// Runs one fault in one Outlook: a check with the fault, then a second check without it.
///
/// Records the windows shown, the log, the temporary folder, whether Outlook's window is enabled after the
/// check, and whether the second check works. Asserts the last two, and that Outlook then ends normally; the
/// test asserts what is shown, logged and left.
class FaultFixture : public OutlookFixture
{
protected:
    FaultFixture();

    /// Has the user press "Later" or the only button of every window that comes up, if any.
    void AnswerWhateverComes();
    /// Runs both checks and closes Outlook. The steps of m_user for this mode must have been added before.
    void RunBothChecks(CheckMode mode);
    /// The same, and adds a row to the report's table under `fault`.
    void RunFault(const std::string& table, const std::string& fault, CheckMode mode);

    /// For a fault that lasts as long as Outlook runs: Outlook starts with it and ends, and a new Outlook
    /// makes the second check. `isLoaded` says whether the add-in is expected to load at the first start.
    void RunFaultyStart(const std::string& table, const std::string& fault, bool isLoaded);

    const CObservedFault& Observed() const { return m_observed; }

    /// Removes the fault before the second check. By default the server publishes the installed version.
    std::function<void()> m_removeFault;
    /// In RunFaultyStart: the user's action that triggers the fault, in an Outlook without start-up check. If
    /// it is not set, the start-up check triggers the fault.
    std::function<void()> m_triggerFault;

private:
    void RunFirstCheck(CheckMode mode);
    /// Records the state of Outlook after the first check.
    void Observe(CheckMode mode);
    bool RunSecondCheck(CheckMode mode);
    void EndOutlookWithoutAddIn();
    void AddRow(const std::string& table, const std::string& fault) const;
    bool IsHostEnabled() const;
    /// The contents of the temporary folder, with sizes.
    std::string DescribeTempFiles() const;

    bool m_isTolerant = false;
    CObservedFault m_observed;
};

/// The lines of a check's log that say how it went: errors, the status, and the last line.
std::string TellingLines(const std::vector<std::string>& log);
/// "a fault of this name" of "AFaultOfThisName", with a number of three digits before it.
std::string FaultLabel(int number, const std::string& name);
std::string JoinTexts(const std::vector<std::wstring>& texts);

} // namespace orva::test
