// A scripted HTTP server on 127.0.0.1 inside the test process, which can also be WinINet's proxy.
#pragma once

#include "harness/FaultyPorts.h"
#include "harness/HttpRecord.h"
#include "harness/ServerScript.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace orva::test
{

/// Listens during its lifetime. Every connection has a thread of its own. The script of a request's path
/// answers it; scripts may be changed at any time from any thread.
class CLoopbackServer
{
public:
    /// Listens on a free port of 127.0.0.1. Throws std::runtime_error if that fails.
    CLoopbackServer();
    /// Cancels all scripts, closes all connections and waits for its threads.
    ~CLoopbackServer();
    CLoopbackServer(const CLoopbackServer&) = delete;
    CLoopbackServer& operator=(const CLoopbackServer&) = delete;

    unsigned short Port() const;
    /// "http://127.0.0.1:PORT" and the path.
    std::string Url(const std::string& path) const;
    std::wstring WideUrl(const std::string& path) const;

    /// Answers every request for this path, whatever its host and query, with the script. Paths without a
    /// script get a 404.
    void On(const std::string& path, CServerScript script);
    /// Answers one request for this path with the script, before the script of On. Several calls queue up.
    void OnNext(const std::string& path, CServerScript script);
    /// Answers requests for all other paths.
    void OnOther(CServerScript script);
    /// Runs the script on every new connection instead of reading a request from it. An empty script closes
    /// at once; std::nullopt goes back to reading requests.
    void OnConnection(std::optional<CServerScript> script);
    /// Stops listening; later connections are refused.
    void Refuse();

    std::vector<CHttpRecord> Requests() const;
    std::vector<CHttpRecord> RequestsFor(const std::string& path) const;
    /// Waits until `count` requests have been received with their bodies.
    bool WaitForRequests(size_t count, DWORD timeout = kPatience) const;
    /// Waits until no connection is open.
    bool WaitUntilIdle(DWORD timeout = kPatience) const;

private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace orva::test
