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

/// Waits until the socket can be read from (a listening one: has a connection) or, with `toSend`, written to.
/// False when the event `stop` is set or after `timeout` milliseconds.
bool WaitForSocket(SOCKET socket, HANDLE stop, bool toSend = false, DWORD timeout = INFINITE);

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
    /// Received and not yet parsed.
    std::string m_pending;
};

} // namespace orva::test
