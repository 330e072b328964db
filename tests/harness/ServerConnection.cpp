#include "harness/ServerConnection.h"

#include <algorithm>

namespace orva::test
{

namespace
{

// A head that has no end by this size is taken as complete.
constexpr size_t kMaxHead = 1 << 20;
// Milliseconds that a graceful close waits for the client to close; longer than any client needs.
constexpr DWORD kLinger = 2'000;

} // namespace

bool WaitForSocket(SOCKET socket, HANDLE stop, bool toSend, DWORD timeout)
{
    const ULONGLONG start = GetTickCount64();
    while (WaitForSingleObject(stop, 0) == WAIT_TIMEOUT && GetTickCount64() - start < timeout)
    {
        fd_set sockets = {1, {socket}};
        // The time after which `stop` is looked at again, in microseconds.
        timeval moment = {0, 20'000};
        // Fails for a socket with an error, which the caller's next call shows.
        if (select(0, toSend ? nullptr : &sockets, toSend ? &sockets : nullptr, nullptr, &moment) != 0)
        {
            return true;
        }
    }
    return false;
}

CServerConnection::CServerConnection(SOCKET socket, HANDLE stop) : m_socket(socket), m_stop(stop)
{
    u_long isNonBlocking = 1;
    ioctlsocket(m_socket, static_cast<long>(FIONBIO), &isNonBlocking);
}

CServerConnection::~CServerConnection()
{
    closesocket(m_socket);
}

// Receives at least one byte. False when the connection has ended, the server stops or the time is over.
bool CServerConnection::Receive(DWORD timeout)
{
    char buffer[16'384];
    if (!WaitForSocket(m_socket, m_stop, false, timeout))
    {
        return false;
    }
    const int count = recv(m_socket, buffer, sizeof buffer, 0);
    m_pending.append(buffer, static_cast<size_t>(std::max(count, 0)));
    return count > 0;
}

std::optional<CHttpRecord> CServerConnection::ReadRequest()
{
    constexpr char kHeadEnd[] = "\r\n\r\n";
    size_t head;
    while ((head = m_pending.find(kHeadEnd)) == std::string::npos && m_pending.size() < kMaxHead)
    {
        if (!Receive())
        {
            return std::nullopt;
        }
    }
    head = std::min(head, m_pending.size() - 4) + 4;
    CHttpRecord record = ParseRequestHead(m_pending.substr(0, head));
    m_pending.erase(0, head);
    const size_t length = AnnouncedLength(record);
    while (m_pending.size() < length)
    {
        if (!Receive())
        {
            break;
        }
    }
    record.body = m_pending.substr(0, length);
    record.raw += record.body;
    m_pending.erase(0, record.body.size());
    return record;
}

bool CServerConnection::SendAll(const std::string& bytes)
{
    for (size_t sent = 0; sent < bytes.size();)
    {
        if (!WaitForSocket(m_socket, m_stop, true))
        {
            return false;
        }
        const int count = send(m_socket, bytes.data() + sent, static_cast<int>(bytes.size() - sent), 0);
        if (count <= 0)
        {
            return false;
        }
        sent += static_cast<size_t>(count);
    }
    return true;
}

bool CServerConnection::Send(const CServerScript::Action& action)
{
    if (action.chunk == 0)
    {
        return SendAll(action.bytes);
    }
    for (size_t at = 0; at < action.bytes.size(); at += action.chunk)
    {
        if (!SendAll(action.bytes.substr(at, action.chunk)) || IsStopping(action.pause))
        {
            return false;
        }
    }
    return true;
}

bool CServerConnection::IsStopping(DWORD wait)
{
    return WaitForSingleObject(m_stop, wait) == WAIT_OBJECT_0;
}

void CServerConnection::CloseGracefully()
{
    // Closing a socket with unread data sends a reset, which could cost the client the end of the reply. So
    // the client's close is awaited.
    shutdown(m_socket, SD_SEND);
    while (Receive(kLinger))
    {
    }
}

bool CServerConnection::Play(const CServerScript& script)
{
    for (const CServerScript::Action& action : script.Actions())
    {
        switch (action.kind)
        {
        case CServerScript::Kind::Send:
            if (!Send(action))
            {
                return false;
            }
            break;
        case CServerScript::Kind::Wait: {
            SetEvent(action.gate->ReachedEvent());
            const HANDLE events[] = {m_stop, action.gate->OpenedEvent()};
            if (WaitForMultipleObjects(2, events, FALSE, INFINITE) != WAIT_OBJECT_0 + 1)
            {
                return false;
            }
            break;
        }
        case CServerScript::Kind::Pause:
            if (IsStopping(action.pause))
            {
                return false;
            }
            break;
        case CServerScript::Kind::Stall:
            while (Receive())
            {
            }
            return false;
        case CServerScript::Kind::Reset: {
            const linger hard = {1, 0};
            setsockopt(m_socket, SOL_SOCKET, SO_LINGER, reinterpret_cast<const char*>(&hard), sizeof hard);
            return false;
        }
        case CServerScript::Kind::Close:
            CloseGracefully();
            return false;
        case CServerScript::Kind::NextRequest:
            return true;
        }
    }
    CloseGracefully();
    return false;
}

} // namespace orva::test
