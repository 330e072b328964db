// The download dialog and its worker in random order: cancel, close, window destruction, data, end and
// failure.
#include "ui/UpdateDownloadDlg.h"

#include "fixture/ProductFixture.h"
#include "harness/Files.h"
#include "harness/LoopbackServer.h"
#include "harness/ProxySetting.h"
#include "harness/TempFolder.h"
#include "harness/Watchdog.h"
#include "harness/WindowDriver.h"
#include "ui/DownloadFixture.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstdlib>
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
constexpr int kDialogsAtATime = 12;
constexpr int kDefaultRuns = 204;
constexpr size_t kBodySize = 6000;
constexpr UINT kDestroyDialog = WM_APP + 100;

enum class Server
{
    Whole,
    Slow,
    NoLength,
    Reset,
    NotFound,
    Held,
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

struct Plan
{
    Server server;
    Action action;
    DWORD delay;
};

// Stands for the host's window: the dialog's owner, which can be told to take the dialog down.
LRESULT CALLBACK OwnerProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == kDestroyDialog)
    {
        DestroyWindow(reinterpret_cast<HWND>(wParam));
        return 0;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

class COwner
{
public:
    COwner()
        : m_window(CreateWindowExW(0, L"STATIC", L"Owner", WS_OVERLAPPEDWINDOW, 0, 0, 100, 100, nullptr,
                                   nullptr, GetModuleHandleW(nullptr), nullptr))
    {
        SetWindowLongPtrW(m_window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&OwnerProcedure));
    }
    ~COwner() { DestroyWindow(m_window); }
    COwner(const COwner&) = delete;
    COwner& operator=(const COwner&) = delete;
    HWND Handle() const { return m_window; }

private:
    HWND m_window;
};

CServerScript ScriptOf(Server server, const CGate& gate)
{
    const CHttpReply reply(200, std::string(kBodySize, 'x'));
    switch (server)
    {
    case Server::Slow:
        return CServerScript().SendSlowly(reply.Bytes(), 300, 4);
    case Server::NoLength:
        return CServerScript()
            .SendSlowly(CHttpReply(reply).Without("Content-Length").Bytes(), 1500, 3)
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

void Act(HWND dialog, HWND owner, Action action)
{
    const auto cancel = [&] { PostMessageW(dialog, WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED), 0); };
    const auto close = [&] { PostMessageW(dialog, WM_CLOSE, 0, 0); };
    switch (action)
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
        PostMessageW(owner, kDestroyDialog, reinterpret_cast<WPARAM>(dialog), 0);
        break;
    default:
        break;
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

// Acts once on the thread's dialog, then lets the server go on, and presses OK in every message box that
// comes up.
void PlayUser(DWORD uiThread, HWND owner, const Plan& plan, CGate gate, const std::atomic<bool>& ended)
{
    bool acted = false;
    while (!ended)
    {
        Windows windows;
        EnumThreadWindows(uiThread, CollectDialogs, reinterpret_cast<LPARAM>(&windows));
        if (windows.dialog != nullptr && !acted)
        {
            Sleep(plan.delay);
            Act(windows.dialog, owner, plan.action);
            gate.Open();
            acted = true;
        }
        if (windows.box != nullptr)
        {
            PostMessageW(windows.box, WM_COMMAND, IDOK, 0);
        }
        Sleep(5);
    }
}

struct Outcome
{
    INT_PTR result = 0;
    std::optional<std::string> file;
};

Outcome RunDialog(CLoopbackServer& server, const std::string& path, const Plan& plan)
{
    const CTempFolder folder;
    const COwner owner;
    CGate gate;
    server.On(path, ScriptOf(plan.server, gate));
    std::atomic<bool> ended{false};
    Outcome outcome;
    {
        AFX_MANAGE_STATE(AfxGetStaticModuleState());
        CUpdateDownloadDlg dialog;
        dialog.m_url = server.WideUrl(path).c_str();
        dialog.m_filePath = folder.File(L"setup.bin").c_str();
        SetActiveWindow(owner.Handle());
        std::thread user(PlayUser, GetCurrentThreadId(), owner.Handle(), plan, gate, std::cref(ended));
        outcome.result = dialog.DoModal();
        ended = true;
        user.join();
    }
    outcome.file = ReadFileBytes(folder.File(L"setup.bin"));
    return outcome;
}

// What must hold whatever came first. Empty: it holds.
std::string Fault(const Plan& plan, const Outcome& outcome)
{
    const bool whole = outcome.file && *outcome.file == std::string(kBodySize, 'x');
    if (outcome.result == IDOK)
    {
        return whole ? "" : "IDOK without the whole file";
    }
    // Cancelled before the first byte, the empty file stays; cancelled after the last, the whole one.
    if (outcome.file && !outcome.file->empty() && !whole)
    {
        return "a part of the file is left";
    }
    const bool mustSucceed =
        plan.action == Action::None && plan.server != Server::Reset && plan.server != Server::NotFound;
    return mustSucceed ? "failed though nothing was in the way" : "";
}

TEST(DownloadRaceTest, NoOrderOfCancelCloseDestructionDataAndFailureHangsOrCrashes)
{
    const char* const wanted = std::getenv("ORVA_RACE_RUNS");
    const int runs = wanted != nullptr ? std::atoi(wanted) : kDefaultRuns;
    SetTestDeadline(static_cast<DWORD>(60'000 + runs * 1'000));
    const COfficeLanguage language(1033);
    const CNoProxy noProxy;
    CLoopbackServer server;
    const unsigned seed = std::random_device{}();
    std::atomic<int> next{0};
    std::array<std::atomic<int>, static_cast<size_t>(Action::Count) * static_cast<size_t>(Server::Count)>
        met{};
    std::atomic<int> completed{0};

    std::vector<std::thread> threads;
    for (int number = 0; number < kDialogsAtATime; ++number)
    {
        threads.emplace_back([&, number] {
            CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
            std::mt19937 random(seed + static_cast<unsigned>(number));
            for (int run = next++; run < runs; run = next++)
            {
                // Every pair of server and action is met; only the moment is left to chance.
                const Plan plan{static_cast<Server>(run % static_cast<int>(Server::Count)),
                                static_cast<Action>(run / static_cast<int>(Server::Count) %
                                                    static_cast<int>(Action::Count)),
                                static_cast<DWORD>(random() % 60)};
                const Outcome outcome = RunDialog(server, "/" + std::to_string(run) + "/setup.bin", plan);
                const std::string fault = Fault(plan, outcome);
                EXPECT_EQ(fault, "") << "run " << run << ", seed " << seed << ", server "
                                     << static_cast<int>(plan.server) << ", action "
                                     << static_cast<int>(plan.action) << ", delay " << plan.delay;
                ++met[static_cast<size_t>(plan.server) * static_cast<size_t>(Action::Count) +
                      static_cast<size_t>(plan.action)];
                ++completed;
            }
            CoUninitialize();
        });
    }
    for (std::thread& thread : threads)
    {
        thread.join();
    }
    EXPECT_EQ(completed, runs);
    for (const auto& count : met)
    {
        EXPECT_GT(count, 0) << "an order of events was never tried";
    }
}

} // namespace
} // namespace orva::test
