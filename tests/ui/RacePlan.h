// What one of the race test's downloads is to meet: what its server does, what its user does, and when.
#pragma once

#include "harness/ServerScript.h"
#include "ui/RaceRecord.h"

#include <optional>
#include <string>

namespace orva::test
{

/// What the server does with the request.
enum class RaceServer
{
    Whole,
    Slow,
    LateEnd,
    Held,
    Reset,
    NotFound,
    Count
};

/// What the user does.
enum class RaceAction
{
    None,
    Cancel,
    Close,
    CancelThenClose,
    CloseThenCancel,
    Destroy,
    Count
};

struct RacePlan
{
    RaceServer server;
    RaceAction action;
    /// When to act; nothing: `delay` milliseconds after the dialog has come up.
    std::optional<Moment> aim;
    /// Whether the worker is held up at that moment until the dialog has taken the event up. Otherwise the
    /// two race.
    bool held;
    DWORD delay;
};

/// So many runs meet each pair of server and action at each moment.
inline constexpr int kFewRuns = static_cast<int>(RaceServer::Count) * static_cast<int>(RaceAction::Count) * 6;

/// The size of a whole file in bytes. A multiple of what the worker reads at a time: the end of the data is a
/// read of its own.
inline constexpr size_t kRaceBodySize = size_t{6} * 1024;

/// The plan of a run, the same for the same number and seed.
RacePlan PlanOf(int run, unsigned seed);

/// How the server answers. It waits at the gate where its plan says so.
CServerScript ScriptOf(RaceServer server, const CGate& gate);

/// What the user does first, if anything.
std::optional<UserEvent> FirstEvent(RaceAction action);

std::string Describe(int run, const RacePlan& plan);

/// What is wrong with the outcome, whatever came first; empty if nothing is.
std::string Fault(const RacePlan& plan, const RaceOutcome& outcome, const std::string& wholeFile);

} // namespace orva::test
