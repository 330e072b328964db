// Builds the bytes of an HTTP response. It is well-formed by default, and every part can be changed.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace orva::test
{

/// The default Date header.
inline constexpr char kReplyDate[] = "Thu, 20 Jan 2011 14:03:07 GMT";

/// A response: by default HTTP/1.1, with Date, Content-Type text/plain, Content-Length and "Connection:
/// close".
class CHttpReply
{
public:
    explicit CHttpReply(int status = 200, std::string body = {});

    /// Sets a header and replaces those of the same name (compared without case).
    CHttpReply& Header(const std::string& name, std::string value);
    /// Adds a header even if there is one of that name.
    CHttpReply& AddHeader(std::string name, std::string value);
    /// Removes a header, default ones included.
    CHttpReply& Without(const std::string& name);
    CHttpReply& WithoutDate() { return Without("Date"); }
    /// Sends a Content-Length other than the body's.
    CHttpReply& ContentLength(unsigned long long length);
    /// Sends the body in chunks of `chunkSize` bytes (and no Content-Length).
    CHttpReply& Chunked(size_t chunkSize);
    /// Keeps the connection open for a further request.
    CHttpReply& KeepAlive();

    bool IsKeepAlive() const { return m_keepAlive; }
    /// Status line, headers and the empty line.
    std::string Head() const;
    /// The body as it is sent, in chunks after Chunked.
    std::string WireBody() const;
    /// The whole response.
    std::string Bytes() const { return Head() + WireBody(); }

private:
    int m_status;
    std::string m_body;
    std::vector<std::pair<std::string, std::string>> m_headers;
    bool m_hasLength = true;
    size_t m_chunkSize = 0;
    bool m_keepAlive = false;
};

} // namespace orva::test
