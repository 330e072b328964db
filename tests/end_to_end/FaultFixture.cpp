#include "end_to_end/FaultFixture.h"

#include "end_to_end/Texts.h"
#include "harness/Files.h"
#include "harness/Report.h"
#include "harness/Text.h"
#include "harness/Watchdog.h"

#include <algorithm>
#include <cctype>
#include <ostream>
#include <regex>

namespace orva::test
{

namespace
{

// How much of one log line the report quotes at most, in bytes.
constexpr size_t kQuoteLimit = 120;
// More windows than any check shows.
constexpr int kMostWindows = 8;

std::string Quoted(std::string line)
{
    // The fresh folder of this run.
    static const std::regex folder("[A-Za-z]:\\\\.*\\\\osc[A-Za-z0-9_]{6}\\\\");
    line = std::regex_replace(line, folder, "%TEMP%\\osc??????\\");
    while (!line.empty() && (line.back() == ' ' || line.back() == '\r'))
    {
        line.pop_back();
    }
    // The log holds a garbage reply unchanged.
    for (char& character : line)
    {
        const auto byte = static_cast<unsigned char>(character);
        character = byte >= 0x20 && byte < 0x7F ? character : '.';
    }
    return line.size() <= kQuoteLimit ? line : line.substr(0, kQuoteLimit) + "...";
}

bool HasControl(const CSeenWindow& window, int id)
{
    return std::any_of(window.controls.begin(), window.controls.end(),
                       [=](const auto& control) { return control.first == id; });
}

bool IsTelling(const std::string& line)
{
    for (const char* const part : {" Caught ", "exception thrown", "httpStatus"})
    {
        if (line.find(part) != std::string::npos)
        {
            return true;
        }
    }
    return false;
}

std::string YesOrNo(bool isSo)
{
    return isSo ? "yes" : "no";
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

std::string TellingLines(const std::vector<std::string>& log)
{
    std::string text;
    for (size_t i = 0; i < log.size(); ++i)
    {
        const std::string line = Quoted(log[i]);
        if (!line.empty() && (IsTelling(log[i]) || i + 1 == log.size()))
        {
            text += (text.empty() ? "" : " | ") + line;
        }
    }
    return text.empty() ? "nothing" : text;
}

std::string FaultLabel(int number, const std::string& name)
{
    std::string text = std::to_string(number);
    text.insert(0, text.size() < 3 ? 3 - text.size() : 0, '0');
    char before = 'A';
    for (const char character : name)
    {
        const bool isDigit = std::isdigit(character) != 0;
        const bool startsWord = std::isupper(character) || (isDigit && !std::isdigit(before));
        text += startsWord ? " " : "";
        text += static_cast<char>(std::tolower(character));
        before = character;
    }
    return text;
}

std::string JoinTexts(const std::vector<std::wstring>& texts)
{
    std::string joined;
    for (const std::wstring& text : texts)
    {
        joined += (joined.empty() ? "" : " / ") + (text.empty() ? "(empty)" : Utf8(text));
    }
    return joined.empty() ? "nothing" : joined;
}

std::vector<std::string> CObservedFault::Cells() const
{
    return {mode == CheckMode::StartUp ? "start-up" : "explicit",
            JoinTexts(shown),
            TellingLines(log),
            leftText,
            YesOrNo(isHostEnabled),
            YesOrNo(worksAgain)};
}

FaultFixture::FaultFixture() : m_removeFault([this] { Publish(g_latestInfo); }) {}

void FaultFixture::AnswerWhateverComes()
{
    m_isTolerant = true;
    for (int i = 0; i < kMostWindows; ++i)
    {
        m_user.OnAnyDialog([](HWND dialog) {
            for (const int button : {kLaterButton, IDOK, IDCANCEL})
            {
                if (ClickButton(dialog, button))
                {
                    return;
                }
            }
        });
    }
}

std::string FaultFixture::DescribeTempFiles() const
{
    const std::vector<std::wstring> paths = ListFolder(m_temp.Path());
    std::vector<std::wstring> texts = TempFiles();
    // A test may create Outlook's temporary folder inside its own.
    static const std::wregex own(L"^orva-test-[0-9-]+");
    for (std::wstring& text : texts)
    {
        text = std::regex_replace(text, own, L"(made by the test)");
    }
    for (size_t i = 0; i < paths.size() && i < texts.size(); ++i)
    {
        if (const auto bytes = ReadFileBytes(m_temp.Path() + L"\\" + paths[i]))
        {
            texts[i] += L" (" + std::to_wstring(bytes->size()) + L" bytes)";
        }
    }
    return JoinTexts(texts);
}

bool FaultFixture::IsHostEnabled() const
{
    return m_outlook->IsRunning() && IsWindowEnabled(MainWindow());
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

bool FaultFixture::RunSecondCheck(CheckMode mode)
{
    NoteTestPart("the second check");
    m_removeFault();
    CUserScript user;
    user.AnswerBox(kLatest);
    user.StartFor(m_outlook->Id());
    CheckExplicitly(mode == CheckMode::StartUp ? 1 : 2);
    const std::vector<std::string> failures = user.FinishQuietly();
    for (const std::string& failure : failures)
    {
        ADD_FAILURE() << "second check: " << failure;
    }
    return failures.empty() && !HasFatalFailure() && IsHostEnabled();
}

void FaultFixture::Observe(CheckMode mode)
{
    m_observed.isHostEnabled = IsHostEnabled();
    EXPECT_TRUE(m_observed.isHostEnabled);
    for (const std::string& failure : m_user.FinishQuietly())
    {
        // After AnswerWhateverComes, unused steps are no failure.
        EXPECT_TRUE(m_isTolerant) << failure;
    }
    m_seen = m_user.Seen();
    m_observed.shown = Shown();
    for (size_t i = 0; i < m_seen.size(); ++i)
    {
        // The caption changes with the progress.
        if (HasControl(m_seen[i], kProgressBar))
        {
            m_observed.shown[i] = L"(progress of the download)";
        }
        else if (HasControl(m_seen[i], kBoxText) && m_seen[i].caption != kProduct &&
                 !m_seen[i].caption.empty())
        {
            m_observed.shown[i] = m_seen[i].caption + L": " + m_seen[i].text;
        }
    }
    m_observed.log.clear();
    if (!ReadLog().empty())
    {
        m_observed.log = mode == CheckMode::StartUp ? StartCheckLog() : ExplicitCheckLog();
    }
    m_observed.left = TempFiles();
    m_observed.leftText = DescribeTempFiles();
}

void FaultFixture::RunBothChecks(CheckMode mode)
{
    m_observed = CObservedFault();
    m_observed.mode = mode;
    RunFirstCheck(mode);
    Observe(mode);
    m_observed.worksAgain = m_outlook->IsRunning() && RunSecondCheck(mode);
    EXPECT_TRUE(m_observed.worksAgain);
    ExpectOutlookGoesOn();
}

void FaultFixture::EndOutlookWithoutAddIn()
{
    PostMessageW(MainWindow(), WM_CLOSE, 0, 0);
    EXPECT_EQ(m_outlook->WaitForExit(), 0u) << DescribeWindows(m_outlook->Id());
    EXPECT_THAT(Trace(), testing::Contains("Outlook: ended"));
}

void FaultFixture::RunFaultyStart(const std::string& table, const std::string& fault, bool isLoaded)
{
    m_observed = CObservedFault();
    if (isLoaded)
    {
        if (m_triggerFault)
        {
            m_observed.mode = CheckMode::Explicit;
            StartWithBackstage();
            m_triggerFault();
        }
        else
        {
            RunFirstCheck(CheckMode::StartUp);
        }
        Observe(m_observed.mode);
        ExpectOutlookGoesOn();
    }
    else
    {
        StartOutlook({L"--backstage"});
        EXPECT_TRUE(WaitForTrace("start-up complete"));
        Observe(CheckMode::StartUp);
        EndOutlookWithoutAddIn();
    }
    m_removeFault();
    StartWithBackstage();
    // The second check has a user of its own.
    m_user.FinishQuietly();
    m_observed.worksAgain = m_outlook->IsRunning() && RunSecondCheck(CheckMode::StartUp);
    EXPECT_TRUE(m_observed.worksAgain);
    ExpectOutlookGoesOn();
    AddRow(table, fault);
}

void FaultFixture::RunFault(const std::string& table, const std::string& fault, CheckMode mode)
{
    RunBothChecks(mode);
    AddRow(table, fault);
}

void FaultFixture::AddRow(const std::string& table, const std::string& fault) const
{
    std::vector<std::string> row = m_observed.Cells();
    row.insert(row.begin(), fault);
    AddReportRow(table, row);
}

} // namespace orva::test
