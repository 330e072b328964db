#include "end_to_end/OutlookFixture.h"

#include "end_to_end/Texts.h"
#include "harness/Files.h"
#include "harness/HostTrace.h"
#include "harness/Watchdog.h"
#include "host/MainWindow.h"
#include "host/StoredControls.h"

#include <algorithm>
#include <regex>

namespace orva::test
{

namespace
{

using testing::Contains;

constexpr char kAddIn[] = "Outlook -> OrvaOscAddin.Connect: ";

// The entries between `first` and the next of `last`, both left out; up to the log's end if there is none.
std::vector<std::string> Between(const std::vector<std::string>& texts, const std::string& first,
                                 const std::vector<std::string>& last)
{
    auto begin = std::find(texts.begin(), texts.end(), first);
    if (begin == texts.end())
    {
        return {"(no entry \"" + first + "\")"};
    }
    ++begin;
    return std::vector<std::string>(begin, std::find_first_of(begin, texts.end(), last.begin(), last.end()));
}

HWND ButtonWithText(HWND window, const std::wstring& text)
{
    for (const HWND child : ChildWindows(window))
    {
        if (WindowClassName(child) == L"Button" && IsWindowVisible(child) && WindowText(child) == text)
        {
            return child;
        }
    }
    return nullptr;
}

} // namespace

std::string UpdateInfo(const std::string& major, const std::string& minor, const std::string& build,
                       const std::string& link)
{
    return R"({"x64":{"majorVersion":)" + major + R"(,"minorVersion":)" + minor + R"(,"buildNumber":)" +
           build + R"(,"downloadLink":")" + link + R"(","description":{"default":"Better than ever."}}})";
}

std::string NewerBuild(const std::string& link)
{
    return UpdateInfo("1", "3", "0", link);
}

CInstalledAddIn::CInstalledAddIn(const std::wstring& module) : m_path(BuiltFile(module)) {}

void CInstalledAddIn::SetUp()
{
    m_guard.emplace();
    m_guard->Remove();
    const CProcessResult result = RunProcess(L"regsvr32.exe", {L"/s", m_path});
    ASSERT_EQ(result.exitCode, 0u) << result.output;
}

void CInstalledAddIn::TearDown()
{
    RunProcess(L"regsvr32.exe", {L"/s", L"/u", m_path});
    m_guard.reset();
}

OutlookFixture::OutlookFixture()
    : m_storedControls(HKEY_CURRENT_USER, host::kStoredControlsKey), m_proxy(m_server.Port())
{
    m_storedControls.Remove();
}

void OutlookFixture::StartOutlook(const std::vector<std::wstring>& options)
{
    m_tracePath = m_folder.File(L"trace" + std::to_wstring(++m_starts));
    CProcessOptions process = {.program = BuiltFile(kHost), .arguments = options};
    process.arguments.insert(process.arguments.end(), {L"--trace", m_tracePath});
    m_outlook = std::make_unique<CChildProcess>(process);
    m_user.StartFor(m_outlook->Id());
}

void OutlookFixture::StartWithBackstage()
{
    StartOutlook({L"--mode", L"after-startup", L"--backstage"});
    WaitForStart();
}

void OutlookFixture::ClickUpdate()
{
    HWND button = nullptr;
    ASSERT_TRUE(WaitUntil([&] { return (button = ButtonWithText(MainWindow(), L"Update")) != nullptr; }))
        << DescribeWindows(m_outlook->Id());
    PostMessageW(button, BM_CLICK, 0, 0);
}

void OutlookFixture::CheckExplicitly(int time)
{
    ClickUpdate();
    ASSERT_TRUE(WaitForTrace("Invoke 42000 ButtonClicked(btnCheckUpdate) = 0x00000000", time))
        << DescribeWindows(m_outlook->Id());
}

void OutlookFixture::WaitForStart()
{
    NoteTestPart("Outlook's start");
    ASSERT_TRUE(WaitForTrace("OnAddInsUpdate = 0x00000000")) << DescribeWindows(m_outlook->Id());
    EXPECT_THAT(Trace(), Contains(testing::AllOf(
                             testing::StartsWith(std::string(kAddIn) + "OnConnection(ConnectMode "),
                             testing::EndsWith(" = 0x00000000"))));
}

void OutlookFixture::ExpectOutlookGoesOn()
{
    NoteTestPart("Outlook's going on");
    const HWND window = MainWindow();
    ASSERT_NE(window, nullptr);
    EXPECT_TRUE(IsWindowEnabled(window));
    EXPECT_EQ(FindTopLevelWindow({.process = m_outlook->Id(), .className = kDialogClass}), nullptr)
        << DescribeWindows(m_outlook->Id());
    m_seen = m_user.Finish();

    NoteTestPart("Outlook's end");
    PostMessageW(window, WM_CLOSE, 0, 0);
    EXPECT_EQ(m_outlook->WaitForExit(), 0u) << DescribeWindows(m_outlook->Id());
    const std::vector<std::string> trace = Trace();
    EXPECT_THAT(trace, Contains("Outlook: references to OrvaOscAddin.Connect left: 0"));
    EXPECT_THAT(trace, Contains(std::string(kAddIn) + "DllCanUnloadNow = 0x00000000"));
    EXPECT_THAT(trace, Contains("Outlook: ended"));
}

void OutlookFixture::RunToTheEnd(const std::vector<std::wstring>& options)
{
    StartOutlook(options);
    WaitForStart();
    if (!HasFatalFailure())
    {
        ExpectOutlookGoesOn();
    }
}

std::vector<std::string> OutlookFixture::StartCheckLog() const
{
    return Between(ReadLogTexts(), "CConnect::OnConnection() check for updates ",
                   {"CConnect::GetCustomUI", "CConnect::OnStartupComplete", "CConnect::OnDisconnection"});
}

std::vector<std::string> OutlookFixture::ExplicitCheckLog() const
{
    return Between(ReadLogTexts(), "CheckForUpdateExplicit", {"CConnect::OnDisconnection"});
}

HWND OutlookFixture::MainWindow() const
{
    return WaitForWindow({.process = m_outlook->Id(), .className = host::kMainWindowClass});
}

std::vector<std::string> OutlookFixture::Trace() const
{
    return ReadHostTrace(m_tracePath);
}

bool OutlookFixture::WaitForTrace(const std::string& part, int count) const
{
    const auto isThere = [&] {
        const std::vector<std::string> lines = Trace();
        return std::count_if(lines.begin(), lines.end(), [&](const std::string& line) {
                   return line.find(part) != std::string::npos;
               }) >= count;
    };
    bool found = false;
    // Asked before the trace is read: what Outlook wrote before its end counts.
    WaitUntil([&] {
        const bool isRunning = m_outlook->IsRunning();
        found = isThere();
        return found || !isRunning;
    });
    return found;
}

void OutlookFixture::ExpectOffer()
{
    m_user.OnDialog(kOfferCaption, [](HWND dialog) { EXPECT_TRUE(ClickButton(dialog, kLaterButton)); });
}

void OutlookFixture::OfferAndInstall(const std::string& link)
{
    Publish(NewerBuild(link));
    m_user.OnDialog(kOfferCaption, [](HWND dialog) { EXPECT_TRUE(ClickButton(dialog, kInstallButton)); });
}

void OutlookFixture::ExpectDownloadDialog()
{
    m_user.OnDialogWith(kProgressBar, [](HWND) {});
}

std::vector<std::wstring> OutlookFixture::TempFiles() const
{
    static const std::wregex fresh(L"^osc[A-Za-z0-9_]{6}\\\\");
    std::vector<std::wstring> paths = ListFolder(m_temp.Path());
    for (std::wstring& path : paths)
    {
        path = std::regex_replace(path, fresh, L"osc??????\\");
    }
    return paths;
}

} // namespace orva::test
