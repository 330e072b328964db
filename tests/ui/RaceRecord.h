// What the race test's downloads did: in which order events came, how often, and what came of it.
#pragma once

#include "ui/WorkerWatch.h"

#include <windows.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace orva::test
{

enum class UserEvent
{
    Cancel,
    Close,
    Destruction,
};

/// Where a download was when its dialog took an event up: the worker's phases, then the dialog's own.
enum class Moment
{
    BeforeRequest = static_cast<int>(WorkerPhase::BeforeRequest),
    Connecting = static_cast<int>(WorkerPhase::Connecting),
    WaitingForHeaders = static_cast<int>(WorkerPhase::WaitingForHeaders),
    Body = static_cast<int>(WorkerPhase::Body),
    DataEnded = static_cast<int>(WorkerPhase::DataEnded),
    Failed = static_cast<int>(WorkerPhase::Failed),
    /// The dialog shows the message about a failure.
    Told,
};

struct RaceOutcome
{
    /// In the order in which the dialog took them up.
    std::vector<std::pair<UserEvent, Moment>> events;
    /// What the user was going to do, whether or not the dialog lived to see it.
    std::optional<UserEvent> intended;
    WorkerPhase last = WorkerPhase::BeforeRequest;
    /// The last error of the call that failed, if one did.
    DWORD error = 0;
    INT_PTR result = 0;
    /// The file that is left; absent if there is none.
    std::optional<std::string> file;
};

/// Counts outcomes by order.
class CRaceRecord
{
public:
    /// Knows every order that is to be met.
    CRaceRecord();
    /// `whole`: the bytes of the complete file.
    void Add(const RaceOutcome& outcome, const std::string& whole);
    /// The counts, a line each, for Add in another process.
    std::vector<std::string> Lines() const;
    /// Adds what another process counted. Throws std::runtime_error if the line is not one of Lines.
    void Add(const std::string& line);
    /// Writes the table "races".
    void Report() const;
    /// The orders that never came.
    std::vector<std::string> Unmet() const;

private:
    void Count(const std::string& order, const std::string& end);

    std::map<std::string, std::map<std::string, int>> m_counts;
};

} // namespace orva::test
