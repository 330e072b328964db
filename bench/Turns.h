// Measures two ways of doing the same by turns, so that other load on the machine slows both alike.
#pragma once

#include <functional>
#include <string>

namespace orva::bench
{

/// Seconds on the performance counter, from an arbitrary start.
double Now();

/// Does its work once and returns how many seconds the part to be measured took.
using TimedWork = std::function<double()>;

/// Work that is to be measured as a whole.
TimedWork Timed(std::function<void()> work);

/// How many samples, and how long a round lasts. A round repeats its work until it is far longer than the
/// clock's step.
struct Effort
{
    int rounds = 15;
    double roundSeconds = 0.03;
};

/// Takes turns, product, baseline, product, baseline, and writes for each round the mean time of one piece of
/// work in microseconds. One more round before them warms up, finds out how often to repeat, and is thrown
/// away.
void TakeTurns(const std::string& row, const TimedWork& product, const TimedWork& baseline,
               const Effort& effort = {});

} // namespace orva::bench
