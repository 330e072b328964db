// Sees how far the workers of several downloads have come, from the WinINet calls that they make.
#pragma once

#include <windows.h>

#include <atomic>
#include <functional>
#include <memory>
#include <string>

namespace orva::test
{

/// Where a download's worker is. The values ascend with time, the two last exclude each other.
enum class WorkerPhase
{
    BeforeRequest,
    Connecting,
    WaitingForHeaders,
    Body,
    DataEnded,
    Failed,
};

/// One download that is watched, known by the path that it requests.
struct WatchedDownload
{
    std::string path;
    std::atomic<WorkerPhase> phase = WorkerPhase::BeforeRequest;
    /// The worker's thread, with the right to wait for it; null until it has made its request.
    std::atomic<HANDLE> thread = nullptr;
    /// What the failed call set as the thread's last error; 0 for a status that is not 200.
    std::atomic<DWORD> error = 0;
    /// Called on the worker's thread when it enters a phase, before it goes on. BeforeRequest: when it is
    /// about to make the request's handle.
    std::function<void(WorkerPhase)> onPhase = {};

    WatchedDownload() = default;
    ~WatchedDownload();
    WatchedDownload(const WatchedDownload&) = delete;
    WatchedDownload& operator=(const WatchedDownload&) = delete;
    void Enter(WorkerPhase next);
};

/// Watches for its lifetime by hooks in this program's imports of WinINet and in WinINet's of the sockets.
/// One object at a time.
class CWorkerWatch
{
public:
    CWorkerWatch();
    ~CWorkerWatch();
    CWorkerWatch(const CWorkerWatch&) = delete;
    CWorkerWatch& operator=(const CWorkerWatch&) = delete;

    /// The download must live until Forget, and its worker must have ended by then.
    void Watch(WatchedDownload& download);
    void Forget(WatchedDownload& download);

private:
    struct Hooks;
    std::unique_ptr<Hooks> m_hooks;
};

} // namespace orva::test
