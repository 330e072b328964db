#include "harness/LoopbackServer.h"

#include "harness/ServerConnection.h"
#include "harness/Text.h"

#include <winsock2.h>
#include <process.h>

#include <algorithm>
#include <deque>
#include <map>
#include <mutex>
#include <stdexcept>

namespace orva::test
{

// The server's state, its accepting thread and one thread per connection.
class CLoopbackServer::Impl
{
public:
    Impl() : m_stop(MakeEvent()), m_refuse(MakeEvent())
    {
        m_listener = static_cast<SOCKET>(BindLoopbackSocket(port));
        // A connection may be gone by the time it is accepted.
        u_long isNonBlocking = 1;
        if (listen(m_listener, SOMAXCONN) != 0 ||
            ioctlsocket(m_listener, static_cast<long>(FIONBIO), &isNonBlocking) != 0)
        {
            throw std::runtime_error("cannot listen");
        }
        m_accepting.reset(
            reinterpret_cast<HANDLE>(_beginthreadex(nullptr, 0, AcceptEntry, this, 0, nullptr)));
    }

    ~Impl()
    {
        Refuse();
        SetEvent(m_stop.get());
        for (const UniqueHandle& thread : m_threads)
        {
            WaitForSingleObject(thread.get(), INFINITE);
        }
    }

    void Refuse()
    {
        SetEvent(m_refuse.get());
        WaitForSingleObject(m_accepting.get(), INFINITE);
    }

    unsigned short port = 0;
    mutable std::mutex mutex;
    std::map<std::string, CServerScript> scripts;
    std::map<std::string, std::deque<CServerScript>> nextScripts;
    CServerScript otherScript = CHttpReply(404, "not found");
    std::optional<CServerScript> connectionScript;
    std::vector<CHttpRecord> requests;
    size_t openConnections = 0;

private:
    // The argument of a connection's thread.
    struct ConnectionStart
    {
        Impl* server;
        std::unique_ptr<CServerConnection> connection;
        std::optional<CServerScript> script;
    };

    static unsigned __stdcall AcceptEntry(void* self)
    {
        static_cast<Impl*>(self)->Accept();
        return 0;
    }

    static unsigned __stdcall ConnectionEntry(void* argument)
    {
        const std::unique_ptr<ConnectionStart> start(static_cast<ConnectionStart*>(argument));
        Impl& server = *start->server;
        server.Serve(*start->connection, start->script);
        start->connection.reset();
        const std::lock_guard lock(server.mutex);
        --server.openConnections;
        return 0;
    }

    void Accept()
    {
        while (WaitForSocket(m_listener, m_refuse.get()))
        {
            if (const SOCKET socket = accept(m_listener, nullptr, nullptr); socket != INVALID_SOCKET)
            {
                StartConnection(socket);
            }
        }
        closesocket(m_listener);
    }

    void StartConnection(SOCKET socket)
    {
        KeepSocketToThisProcess(socket);
        const std::lock_guard lock(mutex);
        auto start = std::make_unique<ConnectionStart>(ConnectionStart{
            this, std::make_unique<CServerConnection>(socket, m_stop.get()), connectionScript});
        ++openConnections;
        m_threads.emplace_back(reinterpret_cast<HANDLE>(
            _beginthreadex(nullptr, 0, ConnectionEntry, start.release(), 0, nullptr)));
    }

    void Serve(CServerConnection& connection, const std::optional<CServerScript>& script)
    {
        if (script && !connection.Play(*script))
        {
            return;
        }
        while (const std::optional<CHttpRecord> request = connection.ReadRequest())
        {
            CServerScript answer;
            {
                const std::lock_guard lock(mutex);
                requests.push_back(*request);
                answer = ScriptFor(request->path);
            }
            if (!connection.Play(answer))
            {
                return;
            }
        }
    }

    CServerScript ScriptFor(const std::string& path)
    {
        if (const auto queue = nextScripts.find(path); queue != nextScripts.end() && !queue->second.empty())
        {
            CServerScript script = std::move(queue->second.front());
            queue->second.pop_front();
            return script;
        }
        const auto script = scripts.find(path);
        return script == scripts.end() ? otherScript : script->second;
    }

    UniqueHandle m_stop;
    UniqueHandle m_refuse;
    SOCKET m_listener = INVALID_SOCKET;
    UniqueHandle m_accepting;
    std::vector<UniqueHandle> m_threads;
};

CLoopbackServer::CLoopbackServer() : m_impl(std::make_unique<Impl>()) {}

CLoopbackServer::~CLoopbackServer() = default;

unsigned short CLoopbackServer::Port() const
{
    return m_impl->port;
}

std::string CLoopbackServer::Url(const std::string& path) const
{
    return "http://127.0.0.1:" + std::to_string(Port()) + path;
}

std::wstring CLoopbackServer::WideUrl(const std::string& path) const
{
    return Widen(Url(path));
}

void CLoopbackServer::On(const std::string& path, CServerScript script)
{
    const std::lock_guard lock(m_impl->mutex);
    m_impl->scripts[path] = std::move(script);
}

void CLoopbackServer::OnNext(const std::string& path, CServerScript script)
{
    const std::lock_guard lock(m_impl->mutex);
    m_impl->nextScripts[path].push_back(std::move(script));
}

void CLoopbackServer::OnOther(CServerScript script)
{
    const std::lock_guard lock(m_impl->mutex);
    m_impl->otherScript = std::move(script);
}

void CLoopbackServer::OnConnection(std::optional<CServerScript> script)
{
    const std::lock_guard lock(m_impl->mutex);
    m_impl->connectionScript = std::move(script);
}

void CLoopbackServer::Refuse()
{
    m_impl->Refuse();
}

std::vector<CHttpRecord> CLoopbackServer::Requests() const
{
    const std::lock_guard lock(m_impl->mutex);
    return m_impl->requests;
}

std::vector<CHttpRecord> CLoopbackServer::RequestsFor(const std::string& path) const
{
    std::vector<CHttpRecord> requests = Requests();
    std::erase_if(requests, [&](const CHttpRecord& record) { return record.path != path; });
    return requests;
}

bool CLoopbackServer::WaitForRequests(size_t count, DWORD timeout) const
{
    return WaitUntil(
        [&] {
            const std::lock_guard lock(m_impl->mutex);
            return m_impl->requests.size() >= count;
        },
        timeout);
}

bool CLoopbackServer::WaitUntilIdle(DWORD timeout) const
{
    return WaitUntil(
        [&] {
            const std::lock_guard lock(m_impl->mutex);
            return m_impl->openConnections == 0;
        },
        timeout);
}

} // namespace orva::test
