// The download dialog and its worker in random order: cancel, close, window destruction, data, end and
// failure.
#include "fixture/ProductFixture.h"
#include "harness/Files.h"
#include "harness/InterruptibleWinInet.h"
#include "harness/LoopbackServer.h"
#include "harness/ProxySetting.h"
#include "harness/Report.h"
#include "harness/TempFolder.h"
#include "harness/Watchdog.h"
#include "harness/WindowDriver.h"
#include "ui/DownloadFixture.h"
#include "ui/ObservedDownload.h"
#include "ui/RaceRecord.h"
#include "ui/WorkerWatch.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstdio>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace orva::test
{
namespace
{

// A dialog shows its final state for a second, so many of them run side by side, each on a UI thread of its
// own.
constexpr int kDialogsAtATime = 24;
// A multiple of what the worker reads at a time: the end of the data is a read of its own.
constexpr size_t kBodySize = size_t{6} * 1024;
// A download that takes longer hangs: the servers answer at once, the dialog adds one second.
constexpr ULONGLONG kRunDeadline = 25'000;
// How long a worker is held up at most so that an event comes first.
constexpr DWORD kHoldUp = 5'000;

enum class Server
{
    Whole,
    Slow,
    LateEnd,
    Held,
    Reset,
    NotFound,
    Count
};

enum class Action
{
    None,
    Cancel,
    Close,
    CancelThenClose,
    CloseThenCancel,
    Destroy,
    Count
};

constexpr int kPairs = static_cast<int>(Server::Count) * static_cast<int>(Action::Count);
// The moments that a run can aim at, with the moment left to chance.
constexpr int kAims = 6;
// So many runs meet each pair of server and action at each moment.
constexpr int kFewRuns = kPairs * kAims;
constexpr int kManyRuns = 2000;
constexpr int kMostPasses = 6;

struct Plan
{
    Server server;
    Action action;
    /// When to act; nothing: `delay` milliseconds after the dialog has come up.
    std::optional<Moment> aim;
    /// Whether the worker is held up at that moment until the dialog has taken the event up. Otherwise the
    /// two race.
    bool held;
    DWORD delay;
};

bool Fails(Server server)
{
    return server == Server::Reset || server == Server::NotFound;
}

Plan PlanOf(int run, unsigned seed)
{
    std::mt19937 random(seed + static_cast<unsigned>(run));
    const auto server = static_cast<Server>(run % static_cast<int>(Server::Count));
    const auto action =
        static_cast<Action>(run / static_cast<int>(Server::Count) % static_cast<int>(Action::Count));
    const bool isFirstPass = run < kFewRuns;
    const int aim = isFirstPass ? run / kPairs : static_cast<int>(random() % (2 * kAims));
    constexpr std::array kFailing{Moment::BeforeRequest, Moment::Connecting, Moment::WaitingForHeaders,
                                  Moment::Failed, Moment::Told};
    constexpr std::array kGood{Moment::BeforeRequest, Moment::Connecting, Moment::WaitingForHeaders,
                               Moment::Body, Moment::DataEnded};
    Plan plan{server, action, {}, isFirstPass || random() % 2 == 0, static_cast<DWORD>(random() % 60)};
    if (aim < static_cast<int>(kGood.size()))
    {
        plan.aim = (Fails(server) ? kFailing : kGood).at(static_cast<size_t>(aim));
    }
    else if (isFirstPass && server == Server::Whole)
    {
        // Nothing more is taken up then: an event that comes too late.
        plan.aim = Moment::Told;
    }
    return plan;
}

CServerScript ScriptOf(Server server, const CGate& gate)
{
    const CHttpReply reply(200, std::string(kBodySize, 'x'));
    switch (server)
    {
    case Server::Slow:
        return CServerScript().SendSlowly(reply.Bytes(), 300, 4);
    case Server::LateEnd:
        return CServerScript()
            .SendSlowly(CHttpReply(reply).Without("Content-Length").Bytes(), 1500, 3)
            .WaitFor(gate)
            .Close();
    case Server::Reset:
        return CServerScript().WaitFor(gate).Reset();
    case Server::NotFound:
        return CServerScript(CHttpReply(404, "no"));
    case Server::Held:
        return CServerScript()
            .Send(reply.Bytes().substr(0, reply.Bytes().size() / 2))
            .WaitFor(gate)
            .Send(reply.Bytes().substr(reply.Bytes().size() / 2));
    default:
        return CServerScript(reply);
    }
}

std::optional<UserEvent> FirstEvent(Action action)
{
    switch (action)
    {
    case Action::Cancel:
    case Action::CancelThenClose:
        return UserEvent::Cancel;
    case Action::Close:
    case Action::CloseThenCancel:
        return UserEvent::Close;
    case Action::Destroy:
        return UserEvent::Destruction;
    default:
        return {};
    }
}

struct Windows
{
    HWND dialog = nullptr;
    HWND box = nullptr;
};

BOOL CALLBACK CollectDialogs(HWND window, LPARAM windows)
{
    std::array<wchar_t, 16> className{};
    GetClassNameW(window, className.data(), static_cast<int>(className.size()));
    if (std::wstring(className.data()) == kDialogClass && IsWindowVisible(window))
    {
        auto& found = *reinterpret_cast<Windows*>(windows);
        (GetDlgItem(window, kProgressBar) != nullptr ? found.dialog : found.box) = window;
    }
    return TRUE;
}

/// One download: its dialog on the calling thread, its user on another.
class CRun
{
public:
    CRun(int number, const Plan& plan, CLoopbackServer& server, CWorkerWatch& watch)
        : m_number(number), m_plan(plan), m_watch(watch), m_uiThread(GetCurrentThreadId()),
          m_handled(CreateEventW(nullptr, TRUE, FALSE, nullptr))
    {
        m_download.path = "/" + std::to_string(number) + "/setup.bin";
        m_download.onPhase = [this](WorkerPhase phase) { OnPhase(phase); };
        server.On(m_download.path, ScriptOf(plan.server, m_gate));
        m_url = server.WideUrl(m_download.path);
        if (plan.aim)
        {
            m_gate.Open();
        }
        watch.Watch(m_download);
    }
    ~CRun() { m_watch.Forget(m_download); }
    CRun(const CRun&) = delete;
    CRun& operator=(const CRun&) = delete;

    RaceOutcome Run()
    {
        RaceOutcome outcome;
        {
            AFX_MANAGE_STATE(AfxGetStaticModuleState());
            CObservedDownload dialog;
            dialog.m_url = m_url.c_str();
            dialog.m_filePath = m_path.c_str();
            dialog.before = [this](HWND window, UINT message, WPARAM wParam) {
                Before(window, message, wParam);
            };
            dialog.after = [this](HWND, UINT message, WPARAM wParam) {
                if (message == WM_CLOSE || IsCancelCommand(message, wParam))
                {
                    SetEvent(m_handled.get());
                }
            };
            SetActiveWindow(m_owner.Handle());
            std::thread user([this] { PlayUser(); });
            outcome.result = dialog.DoModal();
            m_ended = true;
            user.join();
        }
        outcome.events = m_events;
        outcome.intended = FirstEvent(m_plan.action);
        outcome.last = m_download.phase;
        outcome.error = m_download.error;
        outcome.file = ReadFileBytes(m_path);
        return outcome;
    }

private:
    void Before(HWND window, UINT message, WPARAM wParam)
    {
        m_dialog = window;
        if (IsCancelCommand(message, wParam))
        {
            Note(UserEvent::Cancel);
        }
        else if (message == WM_CLOSE)
        {
            Note(UserEvent::Close);
        }
        else if (message == WM_DESTROY && CDownloadOwner::IsTakenDown(window))
        {
            Note(UserEvent::Destruction);
            // The dialog waits for the worker now, which must not wait for the dialog.
            SetEvent(m_handled.get());
        }
        else if (message == WM_DOWNLOAD_FINISHED)
        {
            m_told = true;
            if (m_plan.aim == Moment::Told)
            {
                Act();
            }
        }
    }

    void Note(UserEvent event)
    {
        const auto phase = static_cast<Moment>(static_cast<int>(m_download.phase.load()));
        m_events.emplace_back(event, m_told ? Moment::Told : phase);
        if (phase == Moment::WaitingForHeaders)
        {
            // Held up within a call, which is to be interrupted now and so has to go on.
            SetEvent(m_handled.get());
        }
    }

    // On the worker's thread.
    void OnPhase(WorkerPhase phase)
    {
        if (m_plan.aim != static_cast<Moment>(static_cast<int>(phase)))
        {
            return;
        }
        Act();
        if (m_plan.held && m_plan.action != Action::None)
        {
            WaitForSingleObject(m_handled.get(), kHoldUp);
        }
    }

    void Act()
    {
        if (m_acted.exchange(true))
        {
            return;
        }
        const auto cancel = [&] { PostMessageW(m_dialog, WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED), 0); };
        const auto close = [&] { PostMessageW(m_dialog, WM_CLOSE, 0, 0); };
        switch (m_plan.action)
        {
        case Action::Cancel:
            cancel();
            break;
        case Action::Close:
            close();
            break;
        case Action::CancelThenClose:
            cancel();
            close();
            break;
        case Action::CloseThenCancel:
            close();
            cancel();
            break;
        case Action::Destroy:
            CDownloadOwner::DestroyDialog(m_owner.Handle(), m_dialog);
            break;
        default:
            break;
        }
    }

    // Left to chance is when to act, but a worker that waits for a late end is to be met there.
    bool IsWorthIt() const
    {
        return m_plan.server != Server::LateEnd ||
               FileSize(m_path.c_str()) == static_cast<long long>(kBodySize);
    }

    // If the moment is left to chance, acts and then lets the server go on; presses OK in every message box
    // that comes up.
    void PlayUser()
    {
        const ULONGLONG start = GetTickCount64();
        while (!m_ended)
        {
            Windows windows;
            EnumThreadWindows(m_uiThread, CollectDialogs, reinterpret_cast<LPARAM>(&windows));
            if (windows.dialog != nullptr && !m_plan.aim && !m_acted && IsWorthIt())
            {
                Sleep(m_plan.delay);
                Act();
                m_gate.Open();
            }
            if (windows.box != nullptr)
            {
                PostMessageW(windows.box, WM_COMMAND, IDOK, 0);
            }
            if (GetTickCount64() - start > kRunDeadline)
            {
                NoteTestPart(Describe(m_number, m_plan) + ", phase " +
                             std::to_string(static_cast<int>(m_download.phase.load())) +
                             (m_acted ? ", acted" : ", not acted"));
                SetTestDeadline(1);
                return;
            }
            Sleep(10);
        }
    }

public:
    static std::string Describe(int number, const Plan& plan)
    {
        return "run " + std::to_string(number) + ", server " + std::to_string(static_cast<int>(plan.server)) +
               ", action " + std::to_string(static_cast<int>(plan.action)) + ", aimed at " +
               std::to_string(plan.aim ? static_cast<int>(*plan.aim) : -1) + (plan.held ? ", held" : "") +
               ", delay " + std::to_string(plan.delay);
    }

private:
    const int m_number;
    const Plan m_plan;
    CWorkerWatch& m_watch;
    const DWORD m_uiThread;
    const UniqueHandle m_handled;
    const CTempFolder m_folder;
    const std::wstring m_path = m_folder.File(L"setup.bin");
    const CDownloadOwner m_owner;
    CGate m_gate;
    std::wstring m_url;
    WatchedDownload m_download;
    std::atomic<HWND> m_dialog = nullptr;
    std::atomic<bool> m_acted = false;
    std::atomic<bool> m_ended = false;
    // The UI thread's.
    std::vector<std::pair<UserEvent, Moment>> m_events;
    bool m_told = false;
};

// What must hold whatever came first. Empty: it holds.
std::string Fault(const Plan& plan, const RaceOutcome& outcome, const std::string& wholeFile)
{
    const bool whole = outcome.file == wholeFile;
    if (outcome.result == IDOK)
    {
        return whole ? "" : "IDOK without the whole file";
    }
    // Cancelled before the first byte, the empty file stays; cancelled after the last, the whole one.
    if (outcome.file && !outcome.file->empty() && !whole)
    {
        return "a part of the file is left";
    }
    if (outcome.events.empty() && !Fails(plan.server))
    {
        return "failed though nothing was in the way";
    }
    return outcome.events.empty() && outcome.file ? "a failed download left a file" : "";
}

int Setting(const wchar_t* name, int otherwise)
{
    wchar_t value[16] = L"";
    const DWORD length = GetEnvironmentVariableW(name, value, ARRAYSIZE(value));
    return length != 0 && length < ARRAYSIZE(value) ? std::stoi(value) : otherwise;
}

/// Makes the runs, many at a time.
void RunAll(int runs, unsigned seed, CLoopbackServer& server, CRaceRecord& record)
{
    CWorkerWatch watch;
    const std::string whole(kBodySize, 'x');
    std::atomic<int> next{0};
    std::vector<std::thread> threads;
    threads.reserve(kDialogsAtATime);
    for (int number = 0; number < kDialogsAtATime; ++number)
    {
        threads.emplace_back([&] {
            CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
            for (int run = next++; run < runs; run = next++)
            {
                const Plan plan = PlanOf(run, seed);
                const RaceOutcome outcome = CRun(run, plan, server, watch).Run();
                EXPECT_EQ(Fault(plan, outcome, whole), "")
                    << CRun::Describe(run, plan) << ", seed " << seed << ", phase "
                    << static_cast<int>(outcome.last) << ", error " << outcome.error << ", file of "
                    << (outcome.file ? static_cast<int>(outcome.file->size()) : -1);
                record.Add(outcome, whole);
            }
            CoUninitialize();
        });
    }
    for (std::thread& thread : threads)
    {
        thread.join();
    }
}

// ORVA_RACE_RUNS and ORVA_RACE_SEED set the number of downloads and the seed.
TEST(DownloadRaceTest, NoOrderOfCancelCloseDestructionDataAndFailureHangsOrCrashes)
{
    const int runs = Setting(L"ORVA_RACE_RUNS", Repetitions(kFewRuns, kManyRuns));
    const auto seed =
        static_cast<unsigned>(Setting(L"ORVA_RACE_SEED", static_cast<int>(std::random_device{}() >> 1)));
    std::printf("ORVA_RACE_SEED=%u\n", seed);
    SetTestDeadline(60'000 + static_cast<DWORD>(runs) * 1'000);
    const COfficeLanguage language(1033);
    const CNoProxy noProxy;
    CLoopbackServer server;
    CRaceRecord record;
    // Wine frees a connection whose handle is closed under the call that uses it, and another download
    // may get its socket: several in one process need a WinINet that ends the call first, as Windows'
    // does.
    const CInterruptibleWinInet interruptible;
    RunAll(runs, seed, server, record);
    int made = runs;
    // "Close, then the data ended" is the one order that no run can be made to meet: few runs may miss it on
    // a busy machine, and then more are made.
    for (int pass = 1; pass < kMostPasses && runs >= kFewRuns && !record.Unmet().empty(); ++pass)
    {
        RunAll(kFewRuns, seed + static_cast<unsigned>(made), server, record);
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
