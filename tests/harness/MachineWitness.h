// Tells a slow product from a machine that stood still while the product was measured.
#pragma once

#include "harness/TempFolder.h"

#include <windows.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace orva::test
{

/// A thread that, for the object's lifetime and at rests of kRest milliseconds, does a little of what any
/// program needs of the machine: to be woken, a kernel object from Wine's server, a file written and
/// deleted. When one such turn takes much longer than all of them do, the processors, the disk or Wine's
/// server were not to be had, for the measured program as little as for this thread.
class CMachineWitness
{
public:
    using Clock = std::chrono::steady_clock;

    static constexpr DWORD kRest = 50;
    /// What a turn may take beyond its rest before the machine counts as standing still, in milliseconds:
    /// far more than it takes with eight busy programs a processor.
    static constexpr double kUsual = 50;

    /// `work` is what a turn does after its rest, on the witness's thread; without it, what is said above.
    explicit CMachineWitness(std::function<void()> work = {});
    ~CMachineWitness();
    CMachineWitness(const CMachineWitness&) = delete;
    CMachineWitness& operator=(const CMachineWitness&) = delete;

    /// Milliseconds since `start`.
    static double Since(Clock::time_point start);

    /// For how many milliseconds since `start` the thread was held up, the turn that it is in included. At
    /// most the time since `start`.
    double HeldUpSince(Clock::time_point start) const;

private:
    struct HeldUp
    {
        Clock::time_point from;
        Clock::time_point to;
    };

    void Run();
    void UseTheMachine() const;
    static HeldUp PartBeyondUsual(Clock::time_point turnStart, Clock::time_point turnEnd);

    const CTempFolder m_folder;
    const std::function<void()> m_work;
    mutable std::mutex m_mutex;
    // Under m_mutex.
    std::vector<HeldUp> m_heldUp;
    Clock::time_point m_turnStart = Clock::now();
    std::atomic<bool> m_stop = false;
    /// The last member: the thread uses the others from its start.
    std::thread m_thread;
};

} // namespace orva::test
