#include "end_to_end/FaultFixture.h"

#include "end_to_end/Texts.h"
#include "harness/Report.h"
#include "harness/Text.h"
#include "harness/Watchdog.h"

#include <algorithm>
#include <ostream>

namespace orva::test
{

namespace
{

bool HasControl(const CSeenWindow& window, int id)
{
    return std::ranges::any_of(window.controls, [=](const auto& control) { return control.first == id; });
}

std::wstring NameOf(const CSeenWindow& window)
{
    if (HasControl(window, kProgressBar))
    {
        return kProgress;
    }
    if (!HasControl(window, kBoxText))
    {
        return window.caption;
    }
    return window.caption == kProduct || window.caption.empty() ? window.text
                                                                : window.caption + L": " + window.text;
}

// On one line.
std::string UserSaw(const std::vector<std::wstring>& shown)
{
    std::string joined;
    for (const std::wstring& text : shown)
    {
        joined += (joined.empty() ? "" : " / ") + (text.empty() ? "(an empty box)" : Utf8(text));
    }
    std::ranges::replace(joined, '\n', ' ');
    return joined.empty() ? "nothing" : joined;
}

} // namespace

const std::string g_latestInfo = UpdateInfo("1", "2", "0", kInstallerUrl);

void PrintTo(CheckMode mode, std::ostream* out)
{
    *out << (mode == CheckMode::StartUp ? "start-up" : "explicit");
}

std::string NameOfMode(const testing::TestParamInfo<CheckMode>& info)
{
    return info.param == CheckMode::StartUp ? "StartUp" : "Explicit";
}

std::vector<CheckMode> ModesOfThisRun()
{
    if (IsThorough())
    {
        return {CheckMode::StartUp, CheckMode::Explicit};
    }
    return {CheckMode::StartUp};
}

void FaultFixture::RunFirstCheck(CheckMode mode)
{
    if (mode == CheckMode::StartUp)
    {
        StartOutlook({L"--backstage"});
        WaitForStart();
    }
    else
    {
        StartWithBackstage();
        CheckExplicitly();
    }
}

void FaultFixture::Observe(CheckMode mode)
{
    ASSERT_TRUE(m_outlook->IsRunning());
    EXPECT_TRUE(IsWindowEnabled(MainWindow()));
    m_observed = {};
    m_observed.windows = m_user.Finish();
    for (const CSeenWindow& window : m_observed.windows)
    {
        m_observed.shown.push_back(NameOf(window));
    }
    RecordProperty("user_saw", UserSaw(m_observed.shown));
    if (!ReadLog().empty())
    {
        m_observed.log = mode == CheckMode::StartUp ? StartCheckLog() : ExplicitCheckLog();
    }
    m_observed.left = TempFiles();
}

void FaultFixture::MakeAllWell()
{
    NoteTestPart("the second check");
    if (m_removeFault)
    {
        m_removeFault();
    }
    m_proxy.emplace(m_server.Port());
    m_server.OnConnection(std::nullopt);
    Publish(g_latestInfo);
    m_user.AnswerBox(kLatest);
}

void FaultFixture::RunFault(CheckMode mode)
{
    ASSERT_NO_FATAL_FAILURE(RunFirstCheck(mode));
    ASSERT_NO_FATAL_FAILURE(Observe(mode));
    MakeAllWell();
    m_user.StartFor(m_outlook->Id());
    CheckExplicitly(mode == CheckMode::StartUp ? 1 : 2);
    ExpectOutlookGoesOn();
}

void FaultFixture::RunFaultyStart(bool isLoaded)
{
    if (!isLoaded)
    {
        StartOutlook({L"--backstage"});
        ASSERT_TRUE(WaitForTrace("start-up complete"));
        ASSERT_NO_FATAL_FAILURE(Observe(CheckMode::StartUp));
        EndOutlookWithoutAddIn();
    }
    else
    {
        if (m_triggerFault)
        {
            StartWithBackstage();
            m_triggerFault();
        }
        else
        {
            RunFirstCheck(CheckMode::StartUp);
        }
        ASSERT_NO_FATAL_FAILURE(Observe(m_triggerFault ? CheckMode::Explicit : CheckMode::StartUp));
        ExpectOutlookGoesOn();
    }
    MakeAllWell();
    StartWithBackstage();
    CheckExplicitly();
    ExpectOutlookGoesOn();
}

void FaultFixture::EndOutlookWithoutAddIn()
{
    PostMessageW(MainWindow(), WM_CLOSE, 0, 0);
    EXPECT_EQ(m_outlook->WaitForExit(), 0u) << DescribeWindows(m_outlook->Id());
    EXPECT_THAT(Trace(), testing::Contains("Outlook: ended"));
}

} // namespace orva::test
