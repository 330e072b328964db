// A scripted HTTP server on 127.0.0.1 inside the test process; it also plays the proxy of WinINet.
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

/// Listens from construction to destruction. Every connection has a thread of its own. A request is answered
/// by the script of its path; scripts may be changed at any time from any thread.
class CLoopbackServer
{
public:
    /// Listens on a free port of 127.0.0.1. Throws std::runtime_error if that fails.
    CLoopbackServer();
    /// Breaks off what its scripts do, closes every connection and waits for its threads.
    ~CLoopbackServer();
    CLoopbackServer(const CLoopbackServer&) = delete;
    CLoopbackServer& operator=(const CLoopbackServer&) = delete;

    unsigned short Port() const;
    /// "http://127.0.0.1:PORT" and the path.
    std::string Url(const std::string& path) const;
    std::wstring WideUrl(const std::string& path) const;

    /// Answers every request for this path (without query; whatever the host) with the script. The initial
    /// answer to every path is 404.
    void On(const std::string& path, CServerScript script);
    /// Answers one request for this path with the script, before what On says; several queue up.
    void OnNext(const std::string& path, CServerScript script);
    /// Answers requests for all other paths.
    void OnOther(CServerScript script);
    /// Runs the script on every new connection instead of reading a request from it. An empty script closes
    /// at once; std::nullopt goes back to reading requests.
    void OnConnection(std::optional<CServerScript> script);
    /// Runs the script on the next connection only, before what OnConnection says.
    void OnNextConnection(CServerScript script);
    /// Stops listening: from now on connections are refused.
    void Refuse();

    std::vector<CHttpRecord> Requests() const;
    std::vector<CHttpRecord> RequestsFor(const std::string& path) const;
    /// Waits until `count` requests have come in (headers and body complete).
    bool WaitForRequests(size_t count, DWORD timeout = kPatience) const;
    /// Number of connections accepted so far.
    size_t Connections() const;
    bool WaitForConnections(size_t count, DWORD timeout = kPatience) const;
    /// Waits until no connection is open.
    bool WaitUntilIdle(DWORD timeout = kPatience) const;

private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace orva::test
