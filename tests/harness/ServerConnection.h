// One connection of the scripted server: reads requests and plays scripts.
#pragma once

#include "harness/HttpRecord.h"
#include "harness/ServerScript.h"
#include "harness/Waiting.h"

#include <winsock2.h>

#include <optional>
#include <string>

namespace orva::test
{

/// Waits for changes of a socket. Its events are used instead of select(), which under Wine now and then does
/// not return.
class CSocketEvents
{
public:
    /// Makes the socket non-blocking. `events` are those of WSAEventSelect. `stop` is a manual-reset event
    /// that ends every wait; it must outlive the object.
    CSocketEvents(SOCKET socket, HANDLE stop, long events);

    /// Waits for an event, but at most for a moment, so that the caller tries the socket again and again.
    /// False when `stop` is set.
    bool Wait() const;

private:
    const HANDLE m_stop;
    const UniqueHandle m_event;
};

class CServerConnection
{
public:
    /// Owns the socket and makes it non-blocking. `stop` is a manual-reset event that ends every wait; it
    /// must outlive the object.
    CServerConnection(SOCKET socket, HANDLE stop);
    ~CServerConnection();
    CServerConnection(const CServerConnection&) = delete;
    CServerConnection& operator=(const CServerConnection&) = delete;

    /// The next request; nothing once the connection has ended or the server stops.
    std::optional<CHttpRecord> ReadRequest();
    /// Runs the script. True if the next request may be read from the connection.
    bool Play(const CServerScript& script);

private:
    bool Receive(DWORD timeout = INFINITE);
    bool SendAll(const std::string& bytes);
    bool Send(const CServerScript::Action& action);
    bool IsStopping(DWORD wait);
    void CloseGracefully();

    const SOCKET m_socket;
    const HANDLE m_stop;
    const CSocketEvents m_events;
    /// Received and not yet parsed.
    std::string m_pending;
};

} // namespace orva::test
