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

class CServerConnection
{
public:
    /// Owns the socket and makes it non-blocking. `stop` is a manual-reset event that ends every wait; it
    /// must outlive the object. `number` is stored in the records of the requests.
    CServerConnection(SOCKET socket, HANDLE stop, size_t number);
    ~CServerConnection();
    CServerConnection(const CServerConnection&) = delete;
    CServerConnection& operator=(const CServerConnection&) = delete;

    /// The next request; nothing once the client has ended the connection or the server stops.
    std::optional<CHttpRecord> ReadRequest();
    /// Runs the script. True if the next request may be read from the connection.
    bool Play(const CServerScript& script);

private:
    bool WaitForEvent(DWORD timeout = INFINITE);
    bool Receive();
    bool SendAll(const std::string& bytes);
    bool Send(const CServerScript::Action& action);
    bool IsStopping(DWORD wait);
    void CloseGracefully();

    const SOCKET m_socket;
    const HANDLE m_stop;
    const size_t m_number;
    const UniqueHandle m_event;
    bool m_peerClosed = false;
    /// Received and not yet parsed.
    std::string m_pending;
};

} // namespace orva::test
