// What a scripted server does with a connection: a list of actions, such as a reply, a pause or a reset.
#pragma once

#include "harness/HttpReply.h"
#include "harness/Waiting.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace orva::test
{

/// A point at which a script waits for the test. Copies share one gate.
class CGate
{
public:
    CGate();

    /// Lets scripts pass, from now on.
    void Open();
    /// Waits until a script has reached the gate; false if that did not happen in time.
    bool WaitUntilReached(DWORD timeout = kPatience) const;

    HANDLE OpenedEvent() const { return m_state->opened.get(); }
    HANDLE ReachedEvent() const { return m_state->reached.get(); }

private:
    struct State
    {
        UniqueHandle opened;
        UniqueHandle reached;
    };
    std::shared_ptr<State> m_state;
};

/// A list of actions; each call appends one and returns the script, so that calls can be chained.
///
/// A script that ends without Stall, Reset, Close or NextRequest closes the connection gracefully. Every wait
/// ends when the server is destroyed.
class CServerScript
{
public:
    enum class Kind
    {
        Send,
        Wait,
        Pause,
        Stall,
        Reset,
        Close,
        NextRequest,
    };

    struct Action
    {
        Kind kind = Kind::Close;
        std::string bytes = {};
        /// Bytes sent at a time; 0: all at once.
        size_t chunk = 0;
        /// Milliseconds between two chunks, or of a pause.
        DWORD pause = 0;
        std::optional<CGate> gate = {};
    };

    CServerScript() = default;
    /// Sends the reply, then closes the connection (or, with KeepAlive, reads the next request).
    CServerScript(const CHttpReply& reply);

    /// Sends these bytes.
    CServerScript& Send(std::string bytes);
    /// Sends these bytes, `chunk` at a time, with `pause` milliseconds after each: a slow server.
    CServerScript& SendSlowly(std::string bytes, size_t chunk, DWORD pause);
    /// Waits until the test opens the gate.
    CServerScript& WaitFor(const CGate& gate);
    CServerScript& Pause(DWORD milliseconds);
    /// Sends nothing more and waits until the client closes.
    CServerScript& Stall();
    /// Ends the connection with a reset.
    CServerScript& Reset();
    /// Closes the connection gracefully.
    CServerScript& Close();
    /// Reads the next request on the same connection.
    CServerScript& NextRequest();

    const std::vector<Action>& Actions() const { return m_actions; }

private:
    CServerScript& Append(Action action);

    std::vector<Action> m_actions;
};

} // namespace orva::test
