#include "harness/ServerConnection.h"

#include <algorithm>

namespace orva::test
{

namespace
{

// A head that has no end by this size is taken as complete.
constexpr size_t kMaxHead = 1 << 20;
// Milliseconds after which a wait polls the socket: Wine sometimes misses an event when many sockets are
// busy.
constexpr DWORD kPollInterval = 250;
// Milliseconds that a graceful close waits for the client to close; longer than any client needs.
constexpr DWORD kLinger = 2'000;

} // namespace

CServerConnection::CServerConnection(SOCKET socket, HANDLE stop, size_t number)
    : m_socket(socket), m_stop(stop), m_number(number), m_event(WSACreateEvent())
{
    WSAEventSelect(m_socket, m_event.get(), FD_READ | FD_WRITE | FD_CLOSE);
}

CServerConnection::~CServerConnection()
{
    closesocket(m_socket);
}

// Waits for an event of the socket. May return true without one, so callers must poll the socket. False when
// the server stops or after `timeout` milliseconds.
bool CServerConnection::WaitForEvent(DWORD timeout)
{
    const HANDLE events[] = {m_stop, m_event.get()};
    const DWORD woken = WSAWaitForMultipleEvents(2, events, FALSE, std::min(timeout, kPollInterval), FALSE);
    return woken == WSA_WAIT_EVENT_0 + 1 || (woken == WSA_WAIT_TIMEOUT && timeout > kPollInterval);
}

// Receives at least one byte. False when the connection has ended or the server stops.
bool CServerConnection::Receive()
{
    char buffer[16'384];
    while (!m_peerClosed)
    {
        WSAResetEvent(m_event.get());
        const int count = recv(m_socket, buffer, sizeof buffer, 0);
        if (count > 0)
        {
            m_pending.append(buffer, static_cast<size_t>(count));
            return true;
        }
        if (count < 0 && WSAGetLastError() == WSAEWOULDBLOCK)
        {
            if (WaitForEvent())
            {
                continue;
            }
            return false;
        }
        m_peerClosed = true;
    }
    return false;
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
    record.connection = m_number;
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
        WSAResetEvent(m_event.get());
        const int count = send(m_socket, bytes.data() + sent, static_cast<int>(bytes.size() - sent), 0);
        if (count > 0)
        {
            sent += static_cast<size_t>(count);
            continue;
        }
        if (WSAGetLastError() != WSAEWOULDBLOCK || !WaitForEvent())
        {
            return false;
        }
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
    const ULONGLONG end = GetTickCount64() + kLinger;
    char buffer[16'384];
    for (;;)
    {
        WSAResetEvent(m_event.get());
        const int count = recv(m_socket, buffer, sizeof buffer, 0);
        const ULONGLONG now = GetTickCount64();
        if (count == 0 || (count < 0 && WSAGetLastError() != WSAEWOULDBLOCK) || now >= end)
        {
            return;
        }
        if (count < 0 && !WaitForEvent(static_cast<DWORD>(end - now)))
        {
            return;
        }
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
