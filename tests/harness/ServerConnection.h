// One connection of the scripted server: reads requests and plays scripts.
#pragma once

// Before anything that includes windows.h, which brings the old sockets otherwise.
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
    /// Takes over the socket, which is told not to wait. `stop` is an event that ends every wait for good; it
    /// must outlive the object. `number` goes into the records of the requests.
    CServerConnection(SOCKET socket, HANDLE stop, size_t number);
    ~CServerConnection();
    CServerConnection(const CServerConnection&) = delete;
    CServerConnection& operator=(const CServerConnection&) = delete;

    /// The next request; nothing once the client has ended the connection or the server stops.
    std::optional<CHttpRecord> ReadRequest();
    /// Runs the script's actions. True if the connection goes on with the next request.
    bool Play(const CServerScript& script);

private:
    bool WaitForNews(DWORD timeout = INFINITE);
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
    /// Received and not yet used.
    std::string m_pending;
};

} // namespace orva::test
