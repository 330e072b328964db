#include "harness/ServerScript.h"

#include <utility>

namespace orva::test
{

CGate::CGate() : m_state(std::make_shared<State>(State{MakeEvent(), MakeEvent()})) {}

void CGate::Open()
{
    SetEvent(OpenedEvent());
}

bool CGate::WaitUntilReached(DWORD timeout) const
{
    return WaitForSingleObject(ReachedEvent(), timeout) == WAIT_OBJECT_0;
}

CServerScript::CServerScript(const CHttpReply& reply)
{
    Send(reply.Bytes());
    if (reply.IsKeepAlive())
    {
        NextRequest();
    }
}

CServerScript& CServerScript::Append(Action action)
{
    m_actions.push_back(std::move(action));
    return *this;
}

CServerScript& CServerScript::Send(std::string bytes)
{
    return Append({.kind = Kind::Send, .bytes = std::move(bytes)});
}

CServerScript& CServerScript::SendSlowly(std::string bytes, size_t chunk, DWORD pause)
{
    return Append({.kind = Kind::Send, .bytes = std::move(bytes), .chunk = chunk, .pause = pause});
}

CServerScript& CServerScript::WaitFor(const CGate& gate)
{
    return Append({.kind = Kind::Wait, .gate = gate});
}

CServerScript& CServerScript::Pause(DWORD milliseconds)
{
    return Append({.kind = Kind::Pause, .pause = milliseconds});
}

CServerScript& CServerScript::Stall()
{
    return Append({.kind = Kind::Stall});
}

CServerScript& CServerScript::Reset()
{
    return Append({.kind = Kind::Reset});
}

CServerScript& CServerScript::Close()
{
    return Append({.kind = Kind::Close});
}

CServerScript& CServerScript::NextRequest()
{
    return Append({.kind = Kind::NextRequest});
}

} // namespace orva::test
