#include "harness/MachineWitness.h"

#include "harness/Waiting.h"

#include <algorithm>
#include <utility>

namespace orva::test
{

CMachineWitness::CMachineWitness(std::function<void()> work)
    : m_work(work ? std::move(work) : [this] { UseTheMachine(); }), m_thread([this] { Run(); })
{
}

CMachineWitness::~CMachineWitness()
{
    m_stop = true;
    m_thread.join();
}

void CMachineWitness::Run()
{
    while (!m_stop)
    {
        Sleep(kRest);
        m_work();
        const std::scoped_lock lock(m_mutex);
        const Clock::time_point now = Clock::now();
        const HeldUp part = PartBeyondUsual(m_turnStart, now);
        if (part.from < part.to)
        {
            m_heldUp.push_back(part);
        }
        m_turnStart = now;
    }
}

void CMachineWitness::UseTheMachine() const
{
    const UniqueHandle object = MakeEvent();
    // Whether it can be made does not matter here; how long that takes does.
    const UniqueHandle file(CreateFileW(m_folder.File(L"witness").c_str(), GENERIC_WRITE, 0, nullptr,
                                        CREATE_ALWAYS, FILE_FLAG_DELETE_ON_CLOSE, nullptr));
    DWORD written = 0;
    WriteFile(file.get(), "x", 1, &written, nullptr);
}

CMachineWitness::HeldUp CMachineWitness::PartBeyondUsual(Clock::time_point turnStart,
                                                         Clock::time_point turnEnd)
{
    const std::chrono::duration<double, std::milli> usual(kRest + kUsual);
    return {turnStart + std::chrono::duration_cast<Clock::duration>(usual), turnEnd};
}

double CMachineWitness::Since(Clock::time_point start)
{
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

double CMachineWitness::HeldUpSince(Clock::time_point start) const
{
    const std::scoped_lock lock(m_mutex);
    std::vector<HeldUp> parts = m_heldUp;
    parts.push_back(PartBeyondUsual(m_turnStart, Clock::now()));
    Clock::duration sum{};
    for (const HeldUp& part : parts)
    {
        sum += std::max(Clock::duration::zero(), part.to - std::max(part.from, start));
    }
    return std::chrono::duration<double, std::milli>(sum).count();
}

} // namespace orva::test
