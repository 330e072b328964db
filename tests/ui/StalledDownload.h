// A download whose server says nothing more, and the user who has had enough of it.
#pragma once

#include "harness/LoopbackServer.h"
#include "harness/MachineWitness.h"
#include "harness/TempFolder.h"
#include "ui/ObservedDownload.h"
#include "ui/WorkerWatch.h"

#include <atomic>
#include <memory>
#include <span>
#include <string>

namespace orva::test
{

/// What the user does.
enum class EndingAction
{
    Cancel,
    Destroy,
    /// With the close box. After kServerSilence the server goes on.
    Close,
};

/// How long the server stays silent after a close, which interrupts nothing, in milliseconds.
inline constexpr DWORD kServerSilence = 500;

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

/// From connecting to data in plenty.
std::span<const Stall> Stalls();

/// Sends a reply's headers, waits as long as the test wants, and then sends its body.
CServerScript HoldAfterHeaders(const CGate& goOn);

/// In milliseconds since the user acted.
struct EndingTimes
{
    double worker = 0;
    double dialog = 0;
    /// For how much of that the machine stood still.
    double heldUp = 0;
};

/// One download on the calling thread, and its user on another.
class CStalledDownload
{
public:
    CStalledDownload(CLoopbackServer& server, CWorkerWatch& watch, const CMachineWitness& witness,
                     const Stall& stall, EndingAction action, const std::string& path);
    ~CStalledDownload();
    CStalledDownload(const CStalledDownload&) = delete;
    CStalledDownload& operator=(const CStalledDownload&) = delete;

    /// Downloads until the user ends it.
    EndingTimes Run();

private:
    bool IsStalled() const;
    void PlayUser();

    const Stall& m_stall;
    const EndingAction m_action;
    CWorkerWatch& m_watch;
    const CMachineWitness& m_witness;
    const CTempFolder m_folder;
    const std::wstring m_path;
    const CDownloadOwner m_owner;
    std::unique_ptr<CUnansweringPort> m_nobody;
    std::wstring m_url;
    CGate m_goOn;
    WatchedDownload m_download;
    std::atomic<HWND> m_dialog = nullptr;
    CMachineWitness::Clock::time_point m_start;
    EndingTimes m_times;
};

} // namespace orva::test
