#include "ui/RacingDownload.h"

#include "harness/Files.h"
#include "harness/Watchdog.h"
#include "harness/WindowDriver.h"
#include "ui/DownloadFixture.h"

#include <array>
#include <thread>

namespace orva::test
{
namespace
{

// A download that takes longer hangs: the servers answer at once, the dialog adds one second.
constexpr ULONGLONG kRunDeadline = 25'000;
// How long a worker is held up at most so that an event comes first.
constexpr DWORD kHoldUp = 5'000;

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

} // namespace

CRacingDownload::CRacingDownload(int run, const RacePlan& plan, CLoopbackServer& server, CWorkerWatch& watch)
    : m_run(run), m_plan(plan), m_watch(watch), m_uiThread(GetCurrentThreadId()),
      m_handled(CreateEventW(nullptr, TRUE, FALSE, nullptr))
{
    m_download.path = "/" + std::to_string(run) + "/setup.bin";
    m_download.onPhase = [this](WorkerPhase phase) { OnPhase(phase); };
    server.On(m_download.path, ScriptOf(plan.server, m_gate));
    m_url = server.WideUrl(m_download.path);
    if (plan.aim)
    {
        m_gate.Open();
    }
    watch.Watch(m_download);
}

CRacingDownload::~CRacingDownload()
{
    m_watch.Forget(m_download);
}

RaceOutcome CRacingDownload::Run()
{
    RaceOutcome outcome;
    {
        AFX_MANAGE_STATE(AfxGetStaticModuleState());
        CObservedDownload dialog;
        dialog.m_url = m_url.c_str();
        dialog.m_filePath = m_path.c_str();
        dialog.before = [this](HWND window, UINT message, WPARAM wParam) { Before(window, message, wParam); };
        dialog.after = [this](HWND, UINT message, WPARAM wParam) { After(message, wParam); };
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

void CRacingDownload::Before(HWND window, UINT message, WPARAM wParam)
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

void CRacingDownload::After(UINT message, WPARAM wParam)
{
    if (message == WM_CLOSE || IsCancelCommand(message, wParam))
    {
        SetEvent(m_handled.get());
    }
}

void CRacingDownload::Note(UserEvent event)
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
void CRacingDownload::OnPhase(WorkerPhase phase)
{
    if (m_plan.aim != static_cast<Moment>(static_cast<int>(phase)))
    {
        return;
    }
    Act();
    if (m_plan.held && m_plan.action != RaceAction::None)
    {
        WaitForSingleObject(m_handled.get(), kHoldUp);
    }
}

void CRacingDownload::Act()
{
    if (m_acted.exchange(true))
    {
        return;
    }
    const auto cancel = [&] { PostMessageW(m_dialog, WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED), 0); };
    const auto close = [&] { PostMessageW(m_dialog, WM_CLOSE, 0, 0); };
    switch (m_plan.action)
    {
    case RaceAction::Cancel:
        cancel();
        break;
    case RaceAction::Close:
        close();
        break;
    case RaceAction::CancelThenClose:
        cancel();
        close();
        break;
    case RaceAction::CloseThenCancel:
        close();
        cancel();
        break;
    case RaceAction::Destroy:
        CDownloadOwner::DestroyDialog(m_owner.Handle(), m_dialog);
        break;
    default:
        break;
    }
}

// Left to chance is when to act, but a worker that waits for a late end is to be met there.
bool CRacingDownload::IsWorthIt() const
{
    return m_plan.server != RaceServer::LateEnd ||
           FileSize(m_path.c_str()) == static_cast<long long>(kRaceBodySize);
}

// If the moment is left to chance, acts and then lets the server go on; presses OK in every message box
// that comes up.
void CRacingDownload::PlayUser()
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
            NoteTestPart(Describe(m_run, m_plan) + ", phase " +
                         std::to_string(static_cast<int>(m_download.phase.load())) +
                         (m_acted ? ", acted" : ", not acted"));
            SetTestDeadline(1);
            return;
        }
        Sleep(10);
    }
}

} // namespace orva::test
