#include "bench/Turns.h"

#include "bench/Samples.h"

#include <windows.h>

#include <algorithm>
#include <utility>

namespace orva::bench
{

namespace
{

constexpr double kMicroseconds = 1e6;

// How often a round repeats `work`.
int Repetitions(const TimedWork& work, const Effort& effort)
{
    int count = 0;
    const double start = Now();
    while (count == 0 || Now() - start < effort.roundSeconds)
    {
        work();
        ++count;
    }
    return count;
}

double Round(const TimedWork& work, int repetitions)
{
    double seconds = 0;
    for (int i = 0; i < repetitions; ++i)
    {
        seconds += work();
    }
    return seconds / repetitions * kMicroseconds;
}

} // namespace

double Now()
{
    static const double ticksPerSecond = [] {
        LARGE_INTEGER frequency{};
        QueryPerformanceFrequency(&frequency);
        return static_cast<double>(frequency.QuadPart);
    }();
    LARGE_INTEGER ticks{};
    QueryPerformanceCounter(&ticks);
    return static_cast<double>(ticks.QuadPart) / ticksPerSecond;
}

TimedWork Timed(std::function<void()> work)
{
    return [work = std::move(work)] {
        const double start = Now();
        work();
        return Now() - start;
    };
}

void TakeTurns(const std::string& row, const TimedWork& product, const TimedWork& baseline,
               const Effort& effort)
{
    const int productRepetitions = Repetitions(product, effort);
    const int baselineRepetitions = Repetitions(baseline, effort);
    for (int round = 0; round < effort.rounds; ++round)
    {
        AddSample(row, kProduct, Round(product, productRepetitions));
        AddSample(row, kBaseline, Round(baseline, baselineRepetitions));
    }
}

} // namespace orva::bench
