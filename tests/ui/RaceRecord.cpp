#include "ui/RaceRecord.h"

#include "harness/Report.h"

#include <sstream>
#include <stdexcept>

namespace orva::test
{
namespace
{

constexpr UserEvent kEvents[] = {UserEvent::Cancel, UserEvent::Close, UserEvent::Destruction};
constexpr Moment kMoments[] = {Moment::BeforeRequest, Moment::Connecting, Moment::WaitingForHeaders,
                               Moment::Body,          Moment::DataEnded,  Moment::Failed,
                               Moment::Told};

// Between the cells of a line.
constexpr char kSeparator = '|';

constexpr char kNothing[] = "90 nothing done";
constexpr char kCloseAfterCancel[] = "70 cancel, then close";
constexpr char kCancelAfterClose[] = "71 close, then cancel";

std::string Ordinal(int tens, int ones)
{
    return std::to_string(tens) + std::to_string(ones) + " ";
}

std::string Name(UserEvent event)
{
    switch (event)
    {
    case UserEvent::Cancel:
        return "cancel";
    case UserEvent::Close:
        return "close";
    default:
        return "window destroyed";
    }
}

std::string First(UserEvent event, Moment moment)
{
    const std::string start = Ordinal(1 + static_cast<int>(event), static_cast<int>(moment)) + Name(event);
    switch (moment)
    {
    case Moment::BeforeRequest:
        return start + " before the request";
    case Moment::Connecting:
        return start + " before it is connected";
    case Moment::WaitingForHeaders:
        return start + " before the headers";
    case Moment::Body:
        return start + " during the body";
    case Moment::DataEnded:
        return start + " after the end of the data, before the dialog knows";
    case Moment::Failed:
        return start + " after a failure, before the dialog knows";
    default:
        return start + " while the dialog tells of a failure";
    }
}

std::string TooLate(UserEvent event)
{
    return Ordinal(1 + static_cast<int>(event), 9) + Name(event) + " when the dialog had ended by itself";
}

// How the worker came to its end after an event that did not find it there.
std::string Then(UserEvent event, WorkerPhase last)
{
    const std::string start = Ordinal(4 + static_cast<int>(event), static_cast<int>(last)) + Name(event);
    switch (last)
    {
    case WorkerPhase::DataEnded:
        return start + ", then the data ended";
    case WorkerPhase::Failed:
        return start + ", then a call failed";
    default:
        return start + ", then the worker stopped at its next step";
    }
}

std::string End(const RaceOutcome& outcome, const std::string& whole)
{
    const bool isTakenDown = !outcome.events.empty() && outcome.events.back().first == UserEvent::Destruction;
    const std::string result = isTakenDown ? "destroyed" : outcome.result == IDOK ? "IDOK" : "IDCANCEL";
    if (!outcome.file)
    {
        return result + ", no file";
    }
    return result + (outcome.file->empty()    ? ", empty file"
                     : *outcome.file == whole ? ", whole file"
                                              : ", part of the file");
}

} // namespace

CRaceRecord::CRaceRecord()
{
    for (const UserEvent event : kEvents)
    {
        for (const Moment moment : kMoments)
        {
            m_counts[First(event, moment)];
        }
        m_counts[TooLate(event)];
        m_counts[Then(event, WorkerPhase::Body)];
        m_counts[Then(event, WorkerPhase::Failed)];
    }
    // The other two events close the handles: a pending read fails then, whatever the server did.
    m_counts[Then(UserEvent::Close, WorkerPhase::DataEnded)];
    m_counts[kCloseAfterCancel];
    m_counts[kCancelAfterClose];
    m_counts[kNothing];
}

void CRaceRecord::Add(const RaceOutcome& outcome, const std::string& whole)
{
    const std::string end = End(outcome, whole);
    if (outcome.events.empty())
    {
        Count(outcome.intended ? TooLate(*outcome.intended) : kNothing, end);
        return;
    }
    const auto [event, moment] = outcome.events.front();
    Count(First(event, moment), end);
    if (moment < Moment::DataEnded)
    {
        Count(Then(event, outcome.last < WorkerPhase::Body ? WorkerPhase::Body : outcome.last), end);
    }
    if (outcome.events.size() > 1 && event != outcome.events[1].first)
    {
        Count(event == UserEvent::Cancel ? kCloseAfterCancel : kCancelAfterClose, end);
    }
}

std::vector<std::string> CRaceRecord::Lines() const
{
    std::vector<std::string> lines;
    for (const auto& [order, ends] : m_counts)
    {
        for (const auto& [end, times] : ends)
        {
            lines.push_back(order + kSeparator + end + kSeparator + std::to_string(times));
        }
    }
    return lines;
}

void CRaceRecord::Add(const std::string& line)
{
    std::istringstream cells(line);
    std::string order;
    std::string end;
    int times = 0;
    if (!std::getline(cells, order, kSeparator) || !std::getline(cells, end, kSeparator) || !(cells >> times))
    {
        throw std::runtime_error("not a count of races: " + line);
    }
    m_counts[order][end] += times;
}

void CRaceRecord::Report() const
{
    for (const auto& [order, ends] : m_counts)
    {
        int count = 0;
        std::string what;
        for (const auto& [end, times] : ends)
        {
            count += times;
            what += (what.empty() ? "" : "; ") + std::to_string(times) + " " + end;
        }
        AddReportRow("races", {order, std::to_string(count), what});
    }
}

std::vector<std::string> CRaceRecord::Unmet() const
{
    std::vector<std::string> unmet;
    for (const auto& [order, ends] : m_counts)
    {
        if (ends.empty())
        {
            unmet.push_back(order);
        }
    }
    return unmet;
}

void CRaceRecord::Count(const std::string& order, const std::string& end)
{
    ++m_counts[order][end];
}

} // namespace orva::test
