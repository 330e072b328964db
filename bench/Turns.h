// Measures product and baseline in turns, so that other load on the machine slows both alike.
#pragma once

#include <functional>
#include <string>

namespace orva::bench
{

/// Seconds on the performance counter, from an arbitrary start.
double Now();

/// Does its work once and returns the seconds of the measured part.
using TimedWork = std::function<double()>;

/// Measures the whole of `work`.
TimedWork Timed(std::function<void()> work);

/// Number of samples and the least duration of a round. A round repeats its work until it is much longer than
/// the clock's resolution.
struct Effort
{
    int rounds = 15;
    double roundSeconds = 0.03;
};

/// Measures product and baseline in turns, and writes a sample for each round: the mean time of one
/// repetition in microseconds. A first round warms up, determines the number of repetitions, and is not
/// written.
void TakeTurns(const std::string& row, const TimedWork& product, const TimedWork& baseline,
               const Effort& effort = {});

} // namespace orva::bench
