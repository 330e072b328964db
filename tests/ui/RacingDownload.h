// One download of the race test: its dialog on the calling thread, its user on another.
#pragma once

#include "harness/LoopbackServer.h"
#include "harness/TempFolder.h"
#include "harness/Waiting.h"
#include "ui/ObservedDownload.h"
#include "ui/RacePlan.h"
#include "ui/WorkerWatch.h"

#include <atomic>
#include <string>
#include <utility>
#include <vector>

namespace orva::test
{

class CRacingDownload
{
public:
    CRacingDownload(int run, const RacePlan& plan, CLoopbackServer& server, CWorkerWatch& watch);
    ~CRacingDownload();
    CRacingDownload(const CRacingDownload&) = delete;
    CRacingDownload& operator=(const CRacingDownload&) = delete;

    /// Downloads once. If that takes too long, the test program is ended as one that hangs.
    RaceOutcome Run();

private:
    void Before(HWND window, UINT message, WPARAM wParam);
    void After(UINT message, WPARAM wParam);
    void Note(UserEvent event);
    void OnPhase(WorkerPhase phase);
    void Act();
    bool IsWorthIt() const;
    void PlayUser();

    const int m_run;
    const RacePlan m_plan;
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

} // namespace orva::test
