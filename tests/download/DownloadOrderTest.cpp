// Every order of Cancel, Escape, close, window destruction, end of data and failure in every phase of a
// download: each call of the worker is held, the user acts, and the call goes on.
#include "download/DownloadFixture.h"

#include <algorithm>

namespace orva::test
{
namespace
{

/// What is left of the file, and whether the status line says "Download started" after what the user did.
enum class End
{
    Gone,
    GoneStarted,
    Empty,
    Whole,
};

/// A call of the worker, the handles that the dialog holds by then, the handle that the call makes, and
/// whether the status line has said "Download started" before it. Then how the download ends.
struct Phase
{
    CallId call;
    CNames held;
    std::string makes;
    bool isStarted;
    /// The call fails, and nobody does anything. Whole: it does not matter.
    End failed;
    /// The user cancels before the call acts or while it is pending, ...
    End cancelledBefore;
    /// ... when it has succeeded, or when it has failed.
    End cancelledAfterSuccess;
    End cancelledAfterFailure;
    /// The dialog gets WM_CLOSE before the call returns, and the call succeeds, or it fails.
    End closedAndSucceeded;
    End closedAndFailed;

    /// Whether closing the handles makes it fail.
    bool IsInterruptible() const { return !held.empty() && !IsSystems(); }
    /// Whether it is not one of WinINet's.
    bool IsSystems() const { return call.function == "WriteFile" || call.function == "CloseHandle"; }
};

using enum End;

const CNames kSession{"session"};
const CNames kConnection{"connection", "session"};
const CNames kAll{"request", "connection", "session"};

// Cancelled before it has sent the request, the worker looks only at whether it is to go on, and leaves the
// empty file. So it does when it cannot query the status. Everywhere else it notices by a failure or at the
// end of its loop, and both delete the file.
const Phase kPhases[] = {
    // clang-format off
    // call                        holds        makes         started failed cancel, after, after failure | close, failure
    {{"InternetOpenW", 1},          {},          "session",    false, Gone,  Empty, Empty, Gone,  Empty, Gone},
    {{"InternetConnectW", 1},       kSession,    "connection", false, Gone,  Gone,  Empty, Gone,  Empty, Gone},
    {{"HttpOpenRequestW", 1},       kConnection, "request",    false, Gone,  Gone,  Empty, Gone,  Empty, Gone},
    {{"HttpAddRequestHeadersW", 1}, kAll,        "",           false, Whole, Gone,  Gone,  Gone,  GoneStarted, GoneStarted},
    {{"HttpAddRequestHeadersW", 2}, kAll,        "",           false, Whole, Gone,  Gone,  Gone,  GoneStarted, GoneStarted},
    {{"HttpSendRequestW", 1},       kAll,        "",           false, Gone,  Gone,  Empty, Gone,  GoneStarted, Gone},
    {{"HttpQueryInfoW", 1},         kAll,        "",           false, Empty, Empty, GoneStarted, Empty, GoneStarted, Empty},
    {{"HttpQueryInfoW", 2},         kAll,        "",           false, Whole, GoneStarted, GoneStarted, GoneStarted, GoneStarted, GoneStarted},
    {{"HttpQueryInfoW", 3},         kAll,        "",           false, Whole, GoneStarted, GoneStarted, GoneStarted, GoneStarted, GoneStarted},
    {{"InternetReadFile", 1},       kAll,        "",           true,  Gone,  Gone,  Gone,  Gone,  Gone, Gone},
    {{"WriteFile", 1},              kAll,        "",           true,  Gone,  Gone,  Gone,  Gone,  Gone, Gone},
    {{"InternetReadFile", 2},       kAll,        "",           true,  Gone,  Gone,  Gone,  Gone,  Gone, Gone},
    {{"InternetReadFile", 3},       kAll,        "",           true,  Gone,  Gone,  Gone,  Gone,  Gone, Gone},
    {{"CloseHandle", 1},            kAll,        "",           true,  Gone,  Gone,  Gone,  Gone,  Gone, Gone},
    // clang-format on
};

/// One order: what the user does when the call stands where, and how the call ends if nothing interrupts it.
struct Order
{
    Phase phase;
    UserEvent event;
    CallStage stage;
    bool fails;

    /// Whether the event closes the handles.
    bool Cancels() const { return event != UserEvent::None && event != UserEvent::Close; }
    bool Interrupts() const { return Cancels() && phase.IsInterruptible() && stage != CallStage::After; }

    std::string Name() const
    {
        return NameOf(event) + NameOf(stage) + phase.call.function + std::to_string(phase.call.number) +
               (Interrupts() ? ""
                : fails      ? "Fails"
                             : "Succeeds");
    }

    End Expected() const
    {
        if (event == UserEvent::None)
        {
            return phase.failed;
        }
        if (event == UserEvent::Close)
        {
            return fails ? phase.closedAndFailed : phase.closedAndSucceeded;
        }
        return Interrupts()                ? phase.cancelledBefore
               : fails                     ? phase.cancelledAfterFailure
               : stage == CallStage::After ? phase.cancelledAfterSuccess
                                           : phase.cancelledBefore;
    }

    /// The handles in the order in which they are closed, the latter with what comes of it.
    CNames ExpectedClosed() const
    {
        CNames closed = Cancels() || !phase.makes.empty() ? phase.held : kAll;
        if (phase.makes.empty() || fails || Interrupts())
        {
            return closed;
        }
        if (!Cancels())
        {
            closed.insert(closed.begin(), phase.makes);
        }
        else
        {
            // Made when its parent was being closed, which closed it too. The dialog closes it at its end.
            closed.push_back(phase.makes + (phase.held.empty() ? "" : ") = error 6"));
        }
        return closed;
    }
};

std::optional<std::string> FileOf(End end)
{
    return end == Whole ? kWholeFile : end == Empty ? std::optional(std::string()) : std::nullopt;
}

std::vector<Order> AllOrders()
{
    std::vector<Order> orders;
    for (const Phase& phase : kPhases)
    {
        orders.push_back({phase, UserEvent::None, CallStage::After, true});
        for (const UserEvent event :
             {UserEvent::Cancel, UserEvent::Escape, UserEvent::Close, UserEvent::Destroy})
        {
            for (const CallStage stage : {CallStage::Before, CallStage::Pending, CallStage::After})
            {
                for (const bool fails : {false, true})
                {
                    const Order order{phase, event, stage, fails};
                    // A call of the system's is not interrupted, so it is never pending. One that is
                    // interrupted fails anyway.
                    if (!(phase.IsSystems() && stage == CallStage::Pending) && !(order.Interrupts() && fails))
                    {
                        orders.push_back(order);
                    }
                }
            }
        }
    }
    return orders;
}

void PrintTo(const Order& order, std::ostream* stream)
{
    *stream << order.Name();
}

class DownloadOrderTest : public CFakeDownloadTest, public testing::WithParamInterface<Order>
{
};

TEST_P(DownloadOrderTest, EndsAsItMust)
{
    const Order& order = GetParam();
    const Phase& phase = order.phase;
    if (order.fails)
    {
        m_gates.Fail(phase.call, ERROR_INTERNET_TIMEOUT);
    }
    const End end = order.Expected();
    const bool isStarted = end == GoneStarted || end == Whole;
    m_gates.Hold(phase.call, order.stage);
    m_gates.Hold(kMessage, CallStage::Before);
    size_t writes = 0;
    size_t reads = 0;
    Download([&] {
        ASSERT_TRUE(m_gates.WaitUntilHeld(phase.call, order.stage));
        writes = Lines({"WriteFile"}).size();
        reads = Lines({"InternetReadFile"}).size();
        Act(order.event);
        if (order.Interrupts())
        {
            // A pending call needs no release: closing its handle ends it.
            m_gates.Release(phase.call, CallStage::Before);
            ExpectWorkerComesToItsEnd();
        }
        if (order.event != UserEvent::None && order.event != UserEvent::Destroy)
        {
            const SeenDownload seen = Look();
            EXPECT_FALSE(seen.isCancelEnabled);
            EXPECT_EQ(seen.status, order.Interrupts() && isStarted ? kStarted
                                   : order.Cancels()               ? kCanceled
                                   : phase.isStarted               ? kStarted
                                                                   : L"");
        }
    });

    EXPECT_EQ(FileLeft(), FileOf(end));
    ExpectClosed(order.ExpectedClosed());
    ExpectShown(order.event != UserEvent::None ? Cancellation()
                : end == Whole                 ? Installer()
                                               : ErrorAndCancellation());
    if (order.event != UserEvent::None)
    {
        // A worker that does not look before its first read makes that one, and writes nothing any more.
        EXPECT_LE(Lines({"InternetReadFile"}).size(), std::max(reads, size_t{1}));
        EXPECT_EQ(Lines({"WriteFile"}).size(), writes);
    }
    // A dialog that is destroyed has no last second.
    ASSERT_EQ(m_last.has_value(), order.event != UserEvent::Destroy);
    if (m_last)
    {
        EXPECT_EQ(m_last->status, isStarted         ? kStarted
                                  : order.Cancels() ? kCanceled
                                  : phase.isStarted ? kStarted
                                                    : L"");
        EXPECT_EQ(m_last->isCancelEnabled, order.event == UserEvent::None);
    }
}

INSTANTIATE_TEST_SUITE_P(Orders, DownloadOrderTest, testing::ValuesIn(AllOrders()), OrderName());

} // namespace
} // namespace orva::test
