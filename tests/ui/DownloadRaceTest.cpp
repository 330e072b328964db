// The download dialog and its worker in random order: cancel, close, window destruction, data, end and
// failure.
#include "harness/InterruptibleWinInet.h"
#include "harness/Report.h"
#include "harness/TestProcesses.h"
#include "harness/Watchdog.h"
#include "ui/DownloadSettings.h"
#include "ui/RacingDownload.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <numeric>
#include <random>
#include <string>
#include <vector>

namespace orva::test
{
namespace
{

// A dialog shows its final state for a second, so many of them are open side by side, each in a process of
// its own as in Outlook: with many UI threads in one process Wine 8 fails now and then, in Xlib and when a
// control's class is registered. A number that shares no factor with the servers and actions, so that each
// process meets them all.
constexpr int kProcesses = 17;
constexpr int kManyRuns = 2000;
constexpr int kMostPasses = 6;

constexpr wchar_t kSeedVariable[] = L"ORVA_RACE_SEED";
constexpr wchar_t kRunsVariable[] = L"ORVA_RACE_RUNS";

int Setting(const wchar_t* name, int otherwise)
{
    wchar_t value[16] = L"";
    const DWORD length = GetEnvironmentVariableW(name, value, ARRAYSIZE(value));
    return length != 0 && length < ARRAYSIZE(value) ? std::stoi(value) : otherwise;
}

// How long a process may take for so many runs, in milliseconds: far longer than it needs.
DWORD TimeFor(int runs)
{
    return 60'000 + static_cast<DWORD>(runs) * 5'000;
}

// Makes one process's part of the runs.
void RunPart(int process, int runs, unsigned seed)
{
    SetTestDeadline(TimeFor(runs / kProcesses));
    const CDownloadSettings settings;
    CLoopbackServer server;
    // Wine frees a connection whose handle is closed under the call that uses it; Windows ends the call
    // first.
    const CInterruptibleWinInet interruptible;
    CWorkerWatch watch;
    CRaceRecord record;
    const std::string whole(kRaceBodySize, 'x');
    for (int run = process; run < runs; run += kProcesses)
    {
        const RacePlan plan = PlanOf(run, seed);
        const RaceOutcome outcome = CRacingDownload(run, plan, server, watch).Run();
        EXPECT_EQ(Fault(plan, outcome, whole), "")
            << Describe(run, plan) << ", seed " << seed << ", result " << outcome.result << ", phase "
            << static_cast<int>(outcome.last) << ", error " << outcome.error << ", file of "
            << (outcome.file ? static_cast<int>(outcome.file->size()) : -1);
        record.Add(outcome, whole);
    }
    for (const std::string& line : record.Lines())
    {
        TellStarter(line);
    }
}

// Makes the runs, many at a time.
void RunAll(int runs, unsigned seed, CRaceRecord& record)
{
    std::vector<int> processes(kProcesses);
    std::iota(processes.begin(), processes.end(), 0);
    const DWORD time = TimeFor(runs / kProcesses);
    SetTestDeadline(2 * time);
    for (const std::string& line :
         RunInProcesses(processes, time,
                        {{kRunsVariable, std::to_wstring(runs)}, {kSeedVariable, std::to_wstring(seed)}}))
    {
        record.Add(line);
    }
}

// ORVA_RACE_RUNS and ORVA_RACE_SEED set the number of downloads and the seed.
TEST(DownloadRaceTest, NoOrderOfCancelCloseDestructionDataAndFailureHangsOrCrashes)
{
    const int runs = Setting(kRunsVariable, Repetitions(kFewRuns, kManyRuns));
    const auto seed =
        static_cast<unsigned>(Setting(kSeedVariable, static_cast<int>(std::random_device{}() >> 1)));
    if (const auto process = ProcessNumber())
    {
        RunPart(*process, runs, seed);
        return;
    }
    std::printf("ORVA_RACE_SEED=%u\n", seed);
    const CDownloadSettings settings;
    CRaceRecord record;
    RunAll(runs, seed, record);
    int made = runs;
    // "Close, then the data ended" is the one order that no run can be made to meet: few runs may miss it on
    // a busy machine, and then more are made.
    for (int pass = 1; pass < kMostPasses && runs >= kFewRuns && !record.Unmet().empty(); ++pass)
    {
        RunAll(kFewRuns, seed + static_cast<unsigned>(made), record);
        made += kFewRuns;
    }
    record.Report();
    AddReportRow("races", {"99 all", std::to_string(made), "seed " + std::to_string(seed)});
    if (runs >= kFewRuns)
    {
        EXPECT_EQ(record.Unmet(), std::vector<std::string>{}) << "seed " << seed;
    }
}

} // namespace
} // namespace orva::test
