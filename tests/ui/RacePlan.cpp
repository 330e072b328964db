#include "ui/RacePlan.h"

#include "harness/HttpReply.h"

#include <array>
#include <random>

namespace orva::test
{
namespace
{

constexpr int kPairs = static_cast<int>(RaceServer::Count) * static_cast<int>(RaceAction::Count);
// The moments that a run can aim at, with the moment left to chance.
constexpr int kAims = kFewRuns / kPairs;

bool Fails(RaceServer server)
{
    return server == RaceServer::Reset || server == RaceServer::NotFound;
}

} // namespace

RacePlan PlanOf(int run, unsigned seed)
{
    std::mt19937 random(seed + static_cast<unsigned>(run));
    const auto server = static_cast<RaceServer>(run % static_cast<int>(RaceServer::Count));
    const auto action = static_cast<RaceAction>(run / static_cast<int>(RaceServer::Count) %
                                                static_cast<int>(RaceAction::Count));
    const bool isFirstPass = run < kFewRuns;
    const int aim = isFirstPass ? run / kPairs : static_cast<int>(random() % (2 * kAims));
    constexpr std::array kFailing{Moment::BeforeRequest, Moment::Connecting, Moment::WaitingForHeaders,
                                  Moment::Failed, Moment::Told};
    constexpr std::array kGood{Moment::BeforeRequest, Moment::Connecting, Moment::WaitingForHeaders,
                               Moment::Body, Moment::DataEnded};
    RacePlan plan{server, action, {}, isFirstPass || random() % 2 == 0, static_cast<DWORD>(random() % 60)};
    if (aim < static_cast<int>(kGood.size()))
    {
        plan.aim = (Fails(server) ? kFailing : kGood).at(static_cast<size_t>(aim));
    }
    else if (isFirstPass && server == RaceServer::Whole)
    {
        // Nothing more is taken up then: an event that comes too late.
        plan.aim = Moment::Told;
    }
    return plan;
}

CServerScript ScriptOf(RaceServer server, const CGate& gate)
{
    const CHttpReply reply(200, std::string(kRaceBodySize, 'x'));
    switch (server)
    {
    case RaceServer::Slow:
        return CServerScript().SendSlowly(reply.Bytes(), 300, 4);
    case RaceServer::LateEnd:
        return CServerScript()
            .SendSlowly(CHttpReply(reply).Without("Content-Length").Bytes(), 1500, 3)
            .WaitFor(gate)
            .Close();
    case RaceServer::Reset:
        return CServerScript().WaitFor(gate).Reset();
    case RaceServer::NotFound:
        return CServerScript(CHttpReply(404, "no"));
    case RaceServer::Held:
        return CServerScript()
            .Send(reply.Bytes().substr(0, reply.Bytes().size() / 2))
            .WaitFor(gate)
            .Send(reply.Bytes().substr(reply.Bytes().size() / 2));
    default:
        return CServerScript(reply);
    }
}

std::optional<UserEvent> FirstEvent(RaceAction action)
{
    switch (action)
    {
    case RaceAction::Cancel:
    case RaceAction::CancelThenClose:
        return UserEvent::Cancel;
    case RaceAction::Close:
    case RaceAction::CloseThenCancel:
        return UserEvent::Close;
    case RaceAction::Destroy:
        return UserEvent::Destruction;
    default:
        return {};
    }
}

std::string Describe(int run, const RacePlan& plan)
{
    return "run " + std::to_string(run) + ", server " + std::to_string(static_cast<int>(plan.server)) +
           ", action " + std::to_string(static_cast<int>(plan.action)) + ", aimed at " +
           std::to_string(plan.aim ? static_cast<int>(*plan.aim) : -1) + (plan.held ? ", held" : "") +
           ", delay " + std::to_string(plan.delay);
}

std::string Fault(const RacePlan& plan, const RaceOutcome& outcome, const std::string& wholeFile)
{
    const bool whole = outcome.file == wholeFile;
    if (outcome.result == IDOK)
    {
        return whole ? "" : "IDOK without the whole file";
    }
    // Cancelled before the first byte, the empty file stays; cancelled after the last, the whole one.
    if (outcome.file && !outcome.file->empty() && !whole)
    {
        return "a part of the file is left";
    }
    if (outcome.events.empty() && !Fails(plan.server))
    {
        return "failed though nothing was in the way";
    }
    return outcome.events.empty() && outcome.file ? "a failed download left a file" : "";
}

} // namespace orva::test
