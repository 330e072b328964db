// How soon a download ends when it is cancelled, closed or destroyed while its server says nothing more.
#include "harness/Files.h"
#include "harness/InterruptibleWinInet.h"
#include "harness/LoopbackServer.h"
#include "harness/Report.h"
#include "harness/TempFolder.h"
#include "harness/TestProcesses.h"
#include "harness/Watchdog.h"
#include "harness/WindowDriver.h"
#include "ui/DownloadFixture.h"
#include "ui/DownloadSettings.h"
#include "ui/ObservedDownload.h"
#include "ui/WorkerWatch.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <sstream>
#include <string_view>
#include <thread>

namespace orva::test
{
namespace
{

using Clock = std::chrono::steady_clock;

// What a user may be made to wait for, in milliseconds. The dialog shows its last state for one second.
constexpr double kWorkerLimit = 1000;
constexpr double kDialogLimit = 2500;

// After a close that interrupts nothing, the server goes on after so many milliseconds.
constexpr DWORD kServerSilence = 500;

constexpr size_t kChunk = 1024;
constexpr size_t kBodySize = 8'192'000;

enum class Action
{
    Cancel,
    Destroy,
    Close,
};

/// What the server is doing when the user has had enough.
struct Stall
{
    const char* name;
    bool unanswering;
    /// Whether one read returns soon once the server goes on. At 10 bytes a second it takes 100 s to fill.
    bool readEndsSoon;
    WorkerPhase phase;
    /// The file has this size then.
    long long received;
    CServerScript (*script)(const CGate& goOn);
};

const std::string& Response()
{
    static const std::string bytes = CHttpReply(200, std::string(kBodySize, 'x')).Bytes();
    return bytes;
}

size_t HeaderSize()
{
    return Response().size() - kBodySize;
}

// Sends so much, waits as long as the test wants, and then sends the rest.
CServerScript Hold(size_t bytes, const CGate& goOn)
{
    return CServerScript().Send(Response().substr(0, bytes)).WaitFor(goOn).Send(Response().substr(bytes));
}

const Stall kStalls[] = {
    {"connecting, nobody answers", true, false, WorkerPhase::Connecting, 0, nullptr},
    {"connected, not a byte", false, true, WorkerPhase::WaitingForHeaders, 0,
     [](const CGate& goOn) { return Hold(0, goOn); }},
    {"half a header line", false, true, WorkerPhase::WaitingForHeaders, 0,
     [](const CGate& goOn) { return Hold(20, goOn); }},
    {"headers, no body", false, true, WorkerPhase::Body, 0,
     [](const CGate& goOn) { return Hold(HeaderSize(), goOn); }},
    {"1,024,000 of 8,192,000 bytes", false, true, WorkerPhase::Body, 1'024'000,
     [](const CGate& goOn) { return Hold(HeaderSize() + 1'024'000, goOn); }},
    {"10 bytes a second", false, false, WorkerPhase::Body, 0,
     [](const CGate& goOn) {
         return CServerScript()
             .Send(Response().substr(0, HeaderSize()))
             .SendSlowly(Response().substr(HeaderSize(), 200), 1, 100)
             .WaitFor(goOn)
             .Send(Response().substr(HeaderSize() + 200));
     }},
    {"data in plenty", false, true, WorkerPhase::Body, kChunk * 100,
     [](const CGate& goOn) { return CServerScript().SendSlowly(Response(), 10'000, 10).WaitFor(goOn); }},
};

// What a process tells: the index of its stall follows, then two times in milliseconds, or a count.
constexpr std::string_view kTimes = "times";
constexpr std::string_view kInterrupted = "interrupted";

struct Times
{
    std::vector<double> worker;
    std::vector<double> dialog;
};

double Since(Clock::time_point start)
{
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

/// One download on the calling thread, and its user on another.
class CRound
{
public:
    CRound(CLoopbackServer& server, CWorkerWatch& watch, const Stall& stall, Action action,
           const std::string& path)
        : m_stall(stall), m_action(action), m_watch(watch), m_path(m_folder.File(L"setup.bin"))
    {
        m_download.path = path;
        watch.Watch(m_download);
        if (stall.unanswering)
        {
            m_nobody = std::make_unique<CUnansweringPort>();
            m_url = L"http://127.0.0.1:" + std::to_wstring(m_nobody->Port()) +
                    std::wstring(path.begin(), path.end());
        }
        else
        {
            server.On(path, stall.script(m_goOn));
            m_url = server.WideUrl(path);
        }
    }
    ~CRound() { m_watch.Forget(m_download); }
    CRound(const CRound&) = delete;
    CRound& operator=(const CRound&) = delete;

    void Run(Times& times)
    {
        INT_PTR result = 0;
        {
            AFX_MANAGE_STATE(AfxGetStaticModuleState());
            CObservedDownload dialog;
            dialog.m_url = m_url.c_str();
            dialog.m_filePath = m_path.c_str();
            dialog.before = [this](HWND window, UINT, WPARAM) { m_dialog = window; };
            SetActiveWindow(m_owner.Handle());
            std::thread user([this] { PlayUser(); });
            result = dialog.DoModal();
            m_dialogTime = Since(m_start);
            m_goOn.Open();
            user.join();
        }
        EXPECT_NE(result, IDOK) << m_stall.name;
        EXPECT_FALSE(FileExists(m_path)) << m_stall.name;
        times.worker.push_back(m_workerTime);
        times.dialog.push_back(m_dialogTime);
    }

private:
    bool IsStalled() const
    {
        return m_download.phase == m_stall.phase && FileSize(m_path.c_str()) >= m_stall.received &&
               IsWindowVisible(m_dialog);
    }

    void PlayUser()
    {
        EXPECT_TRUE(WaitUntil([this] { return IsStalled(); })) << m_stall.name;
        // The worker has come to where it waits; another moment, and it does.
        Sleep(30);
        m_start = Clock::now();
        switch (m_action)
        {
        case Action::Cancel:
            EXPECT_TRUE(ClickButton(m_dialog, IDCANCEL)) << m_stall.name;
            break;
        case Action::Destroy:
            CDownloadOwner::DestroyDialog(m_owner.Handle(), m_dialog);
            break;
        case Action::Close:
            PostMessageW(m_dialog, WM_CLOSE, 0, 0);
            Sleep(kServerSilence);
            m_goOn.Open();
            break;
        }
        EXPECT_EQ(WaitForSingleObject(m_download.thread, kPatience), WAIT_OBJECT_0) << m_stall.name;
        m_workerTime = Since(m_start);
    }

    const Stall& m_stall;
    const Action m_action;
    CWorkerWatch& m_watch;
    const CTempFolder m_folder;
    const std::wstring m_path;
    const CDownloadOwner m_owner;
    std::unique_ptr<CUnansweringPort> m_nobody;
    std::wstring m_url;
    CGate m_goOn;
    WatchedDownload m_download;
    std::atomic<HWND> m_dialog = nullptr;
    Clock::time_point m_start;
    double m_workerTime = 0;
    double m_dialogTime = 0;
};

double Median(std::vector<double> values)
{
    std::ranges::sort(values);
    return values.empty() ? 0 : values[values.size() / 2];
}

double Slowest(const std::vector<double>& values)
{
    return values.empty() ? 0 : std::ranges::max(values);
}

std::string Text(double milliseconds)
{
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.0f", milliseconds);
    return text.data();
}

void ReportTimes(const std::string& name, const Times& times, const char* limit)
{
    AddReportRow("cancel", {name, std::to_string(times.worker.size()), Text(Median(times.worker)),
                            Text(Slowest(times.worker)), Text(Median(times.dialog)),
                            Text(Slowest(times.dialog)), limit});
}

class DownloadCancelTest : public testing::Test
{
protected:
    // Runs every stall at the same time, each in a process of its own as in Outlook, and reports it. With
    // `limited` the limits are asserted.
    void Measure(Action action, const char* what, char first, const char* limit, bool limited)
    {
        const int rounds = Repetitions(3, 25);
        const DWORD time = 60'000 + static_cast<DWORD>(rounds) * 5'000;
        SetTestDeadline(2 * time);
        if (const auto index = ProcessNumber())
        {
            RunRounds(*index, action, rounds);
            return;
        }
        std::vector<int> indexes;
        for (int index = 0; index < static_cast<int>(std::size(kStalls)); ++index)
        {
            // A close interrupts nothing: these take as long as the server pleases.
            if (action != Action::Close || kStalls[index].readEndsSoon)
            {
                indexes.push_back(index);
            }
        }
        std::vector<Times> times(std::size(kStalls));
        int interrupted = 0;
        for (const std::string& line : RunInProcesses(indexes, time))
        {
            std::istringstream cells(line);
            std::string kind;
            size_t index = 0;
            cells >> kind >> index;
            if (kind == kInterrupted)
            {
                int count = 0;
                cells >> count;
                interrupted += count;
                continue;
            }
            cells >> times.at(index).worker.emplace_back() >> times.at(index).dialog.emplace_back();
            ASSERT_TRUE(cells) << line;
        }
        if (limited)
        {
            // All but the worker that data keeps busy, which may be between two reads.
            EXPECT_GE(interrupted, rounds * static_cast<int>(std::size(kStalls) - 1));
        }
        for (const int index : indexes)
        {
            const Times& measured = times.at(static_cast<size_t>(index));
            const std::string name = std::string(what) + ": " + kStalls[index].name;
            EXPECT_EQ(measured.worker.size(), static_cast<size_t>(rounds)) << name;
            ReportTimes(first + std::to_string(index + 1) + " " + name, measured, limit);
            if (limited)
            {
                EXPECT_LE(Slowest(measured.worker), kWorkerLimit) << name;
                EXPECT_LE(Slowest(measured.dialog), kDialogLimit) << name;
            }
            if (limited && Slowest(measured.dialog) > Slowest(m_slowest.dialog))
            {
                m_slowest = measured;
                m_slowestName = name;
            }
        }
    }

    void ReportSlowest(char first)
    {
        if (!ProcessNumber())
        {
            ReportTimes(std::string(1, first) + "9 the slowest: " + m_slowestName, m_slowest, "see above");
        }
    }

private:
    /// Makes the rounds of one stall and tells their times.
    static void RunRounds(int index, Action action, int rounds)
    {
        const CInterruptibleWinInet interruptible;
        CWorkerWatch watch;
        CLoopbackServer server;
        Times times;
        for (int round = 0; round < rounds; ++round)
        {
            CRound(server, watch, kStalls[index], action, "/" + std::to_string(round) + "/setup.bin")
                .Run(times);
        }
        for (int round = 0; round < rounds; ++round)
        {
            const auto at = static_cast<size_t>(round);
            TellStarter(std::string(kTimes) + " " + std::to_string(index) + " " +
                        std::to_string(times.worker.at(at)) + " " + std::to_string(times.dialog.at(at)));
        }
        TellStarter(std::string(kInterrupted) + " " + std::to_string(index) + " " +
                    std::to_string(interruptible.Interrupted()));
    }

    const CDownloadSettings m_settings;
    Times m_slowest;
    std::string m_slowestName;
};

TEST_F(DownloadCancelTest, CancelEndsTheWorkerWithinASecondAndTheDialogWithinTwoAndAHalf)
{
    Measure(Action::Cancel, "Cancel", '0', "1000 and 2500", true);
    ReportSlowest('0');
}

TEST_F(DownloadCancelTest, DestroyingTheWindowEndsTheWorkerWithinASecond)
{
    Measure(Action::Destroy, "window destroyed", '1', "1000 and 2500", true);
    ReportSlowest('1');
}

// The close box interrupts nothing: the worker goes on until its read returns.
TEST_F(DownloadCancelTest, ClosingWaitsForTheServerToGoOn)
{
    Measure(Action::Close, "close, the server goes on after 500 ms", '2', "none", false);
}

// A known difference: on Windows the click ends the read at once.
TEST_F(DownloadCancelTest, WineItselfLetsARequestWaitOnThatWasCancelled)
{
    CWorkerWatch watch;
    CLoopbackServer server;
    CGate goOn;
    server.On("/setup.bin", Hold(HeaderSize(), goOn));
    const CTempFolder folder;
    WatchedDownload download;
    download.path = "/setup.bin";
    watch.Watch(download);
    std::atomic<HWND> window = nullptr;
    std::thread user([&] {
        EXPECT_TRUE(
            WaitUntil([&] { return download.phase == WorkerPhase::Body && IsWindowVisible(window); }));
        Sleep(30);
        EXPECT_TRUE(ClickButton(window, IDCANCEL));
        EXPECT_EQ(WaitForSingleObject(download.thread, kServerSilence), static_cast<DWORD>(WAIT_TIMEOUT));
        goOn.Open();
    });
    {
        AFX_MANAGE_STATE(AfxGetStaticModuleState());
        CObservedDownload dialog;
        dialog.m_url = server.WideUrl("/setup.bin").c_str();
        dialog.m_filePath = folder.File(L"setup.bin").c_str();
        dialog.before = [&](HWND dialogWindow, UINT, WPARAM) { window = dialogWindow; };
        EXPECT_EQ(dialog.DoModal(), IDCANCEL);
        user.join();
    }
    watch.Forget(download);
}

} // namespace
} // namespace orva::test
