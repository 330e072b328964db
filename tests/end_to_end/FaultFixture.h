// One fault, one check in Outlook, and what came of both: observed, checked and noted for the report.
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
/// Both in the thorough run, the start-up check alone in the everyday one.
std::vector<CheckMode> ModesOfThisRun();

/// What came of a fault.
struct CObservedFault
{
    CheckMode mode = CheckMode::StartUp;
    /// The texts of the windows that the check showed, in order.
    std::vector<std::wstring> shown;
    /// The log of the check that met the fault.
    std::vector<std::string> log;
    /// What there was in the temporary folder after it, as TempFiles gives it.
    std::vector<std::wstring> left;
    /// The same as a text with sizes.
    std::string leftText;
    /// Whether Outlook's window was enabled after the check.
    bool isHostEnabled = false;
    /// Whether the second check said what it should and left the window enabled.
    bool worksAgain = false;

    /// The cells of a report's row after its first.
    std::vector<std::string> Cells() const;
};

/// The file of a build that is not newer than the installed one.
extern const std::string g_latestInfo;

/// Plays one fault in one Outlook: the check that meets it, then a second check without it.
///
/// Observed are the windows shown, the log, the temporary folder, whether Outlook's window is enabled after
/// the check, and whether the second check says what it should. The last two are also asserted here, and that
/// Outlook then ends in an orderly way; what is shown, logged and left is the test's to assert.
class FaultFixture : public OutlookFixture
{
protected:
    FaultFixture();

    /// Has the user press "Later" or the only button of whatever comes up, without expecting anything.
    void AnswerWhateverComes();
    /// Runs both checks and closes Outlook. The steps of m_user that go with the mode have been added before.
    void RunBothChecks(CheckMode mode);
    /// The same, and adds a row to the report's table under `fault`.
    void RunFault(const std::string& table, const std::string& fault, CheckMode mode);

    /// For a fault that lasts as long as Outlook runs: Outlook starts with it, ends, and the second check is
    /// made in a new one. `isLoaded` says whether the add-in is expected to be there at the first start.
    void RunFaultyStart(const std::string& table, const std::string& fault, bool isLoaded);

    const CObservedFault& Observed() const { return m_observed; }

    /// Takes the fault away before the second check: by default the server publishes the installed version.
    std::function<void()> m_mend;
    /// In RunFaultyStart: what the user does, in an Outlook without start-up check, to meet the fault. Unset:
    /// the start-up check meets it.
    std::function<void()> m_meetFault;

private:
    void RunFirstCheck(CheckMode mode);
    /// Observes Outlook after the first check.
    void Observe(CheckMode mode);
    bool RunSecondCheck(CheckMode mode);
    void EndOutlookWithoutAddIn();
    void AddRow(const std::string& table, const std::string& fault) const;
    bool IsHostEnabled() const;
    /// What is in the temporary folder, with sizes.
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
