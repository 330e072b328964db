// How soon a download ends when it is cancelled, closed or destroyed while its server says nothing more.
#include "harness/InterruptibleWinInet.h"
#include "harness/Report.h"
#include "harness/TestProcesses.h"
#include "harness/Watchdog.h"
#include "harness/WindowDriver.h"
#include "ui/DownloadSettings.h"
#include "ui/StalledDownload.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <sstream>
#include <string_view>
#include <thread>
#include <vector>

namespace orva::test
{
namespace
{

// What a user may be made to wait for, in milliseconds. The dialog shows its last state for one second.
constexpr double kWorkerLimit = 1000;
constexpr double kDialogLimit = 2500;

// So often a stall's rounds may be measured again because the machine stood still.
constexpr int kMostRepeats = 20;

// What a process tells: the index of its stall follows, then two times in milliseconds, or a count.
constexpr std::string_view kTimes = "times";
constexpr std::string_view kRepeated = "repeated";
constexpr std::string_view kInterrupted = "interrupted";

// All rounds of one stall.
struct Measurement
{
    std::vector<double> worker;
    std::vector<double> dialog;
    int repeated = 0;
};

// By how many milliseconds the worse of the two limits was missed; not above 0 if both were kept.
double MissedBy(const EndingTimes& times)
{
    return std::max(times.worker - kWorkerLimit, times.dialog - kDialogLimit);
}

// Whether the machine stood still for as long as the limit was missed by: such a round tells nothing of the
// product.
bool IsTheMachines(const EndingTimes& times)
{
    return MissedBy(times) > 0 && times.heldUp >= MissedBy(times);
}

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

void ReportTimes(const std::string& name, const Measurement& measured, const char* limit)
{
    AddReportRow("cancel", {name, std::to_string(measured.worker.size()), Text(Median(measured.worker)),
                            Text(Slowest(measured.worker)), Text(Median(measured.dialog)),
                            Text(Slowest(measured.dialog)), limit, std::to_string(measured.repeated)});
}

class DownloadCancelTest : public testing::Test
{
protected:
    // Runs every stall at the same time, each in a process of its own as in Outlook, and reports it. With
    // `limited` the limits are asserted.
    void Measure(EndingAction action, const char* what, char first, const char* limit, bool limited)
    {
        const int rounds = Repetitions(3, 25);
        const DWORD time = 60'000 + static_cast<DWORD>(rounds + kMostRepeats) * 5'000;
        SetTestDeadline(2 * time);
        if (const auto index = ProcessNumber())
        {
            RunRounds(*index, action, rounds, limited);
            return;
        }
        std::vector<int> indexes;
        for (int index = 0; index < static_cast<int>(Stalls().size()); ++index)
        {
            // A close interrupts nothing: these take as long as the server pleases.
            if (action != EndingAction::Close || Stalls()[static_cast<size_t>(index)].readEndsSoon)
            {
                indexes.push_back(index);
            }
        }
        std::vector<Measurement> measurements(Stalls().size());
        int interrupted = 0;
        for (const std::string& line : RunInProcesses(indexes, time))
        {
            std::istringstream cells(line);
            std::string kind;
            size_t index = 0;
            cells >> kind >> index;
            Measurement& measured = measurements.at(index);
            if (kind == kTimes)
            {
                cells >> measured.worker.emplace_back() >> measured.dialog.emplace_back();
            }
            else
            {
                int count = 0;
                cells >> count;
                (kind == kRepeated ? measured.repeated : interrupted) += count;
            }
            ASSERT_TRUE(cells) << line;
        }
        if (limited)
        {
            // All but the worker that data keeps busy, which may be between two reads.
            EXPECT_GE(interrupted, rounds * static_cast<int>(Stalls().size() - 1));
        }
        for (const int index : indexes)
        {
            const Measurement& measured = measurements.at(static_cast<size_t>(index));
            const std::string name = std::string(what) + ": " + Stalls()[static_cast<size_t>(index)].name;
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
    // Makes the rounds of one stall and tells their times.
    static void RunRounds(int index, EndingAction action, int rounds, bool limited)
    {
        const CInterruptibleWinInet interruptible;
        const CMachineWitness witness;
        CWorkerWatch watch;
        CLoopbackServer server;
        const std::string number = " " + std::to_string(index) + " ";
        int made = 0;
        int repeated = 0;
        while (made < rounds)
        {
            const std::string path = "/" + std::to_string(made + repeated) + "/setup.bin";
            const EndingTimes times =
                CStalledDownload(server, watch, witness, Stalls()[static_cast<size_t>(index)], action, path)
                    .Run();
            if (limited && IsTheMachines(times) && repeated < kMostRepeats)
            {
                ++repeated;
                continue;
            }
            ++made;
            TellStarter(std::string(kTimes) + number + std::to_string(times.worker) + " " +
                        std::to_string(times.dialog));
        }
        TellStarter(std::string(kRepeated) + number + std::to_string(repeated));
        TellStarter(std::string(kInterrupted) + number + std::to_string(interruptible.Interrupted()));
    }

    const CDownloadSettings m_settings;
    Measurement m_slowest;
    std::string m_slowestName;
};

TEST_F(DownloadCancelTest, CancelEndsTheWorkerWithinASecondAndTheDialogWithinTwoAndAHalf)
{
    Measure(EndingAction::Cancel, "Cancel", '0', "1000 and 2500", true);
    ReportSlowest('0');
}

TEST_F(DownloadCancelTest, DestroyingTheWindowEndsTheWorkerWithinASecond)
{
    Measure(EndingAction::Destroy, "window destroyed", '1', "1000 and 2500", true);
    ReportSlowest('1');
}

// The close box interrupts nothing: the worker goes on until its read returns.
TEST_F(DownloadCancelTest, ClosingWaitsForTheServerToGoOn)
{
    Measure(EndingAction::Close, "close, the server goes on after 500 ms", '2', "none", false);
}

// A known difference: on Windows the click ends the read at once.
TEST_F(DownloadCancelTest, WineItselfLetsARequestWaitOnThatWasCancelled)
{
    CWorkerWatch watch;
    CLoopbackServer server;
    CGate goOn;
    server.On("/setup.bin", HoldAfterHeaders(goOn));
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
