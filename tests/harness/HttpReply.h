// Builds the bytes of an HTTP response, well-formed by default, with every part open to change.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace orva::test
{

/// The date that replies carry unless told otherwise.
inline constexpr char kReplyDate[] = "Thu, 20 Jan 2011 14:03:07 GMT";

/// A response: by default HTTP/1.1, with Date, Content-Type text/plain, Content-Length and "Connection:
/// close".
class CHttpReply
{
public:
    explicit CHttpReply(int status = 200, std::string body = {});

    CHttpReply& Reason(std::string reason);
    CHttpReply& Body(std::string body);
    /// Sets a header, in place of one of that name (compared without case).
    CHttpReply& Header(const std::string& name, std::string value);
    /// Adds a header even if there is one of that name.
    CHttpReply& AddHeader(std::string name, std::string value);
    /// Leaves a header out, the default ones included.
    CHttpReply& Without(const std::string& name);
    CHttpReply& WithoutDate() { return Without("Date"); }
    /// Announces another length than the body has.
    CHttpReply& ContentLength(unsigned long long length);
    /// Sends the body in chunks of `chunkSize` bytes (and no Content-Length).
    CHttpReply& Chunked(size_t chunkSize);
    /// Keeps the connection open for a further request.
    CHttpReply& KeepAlive();

    bool IsKeepAlive() const { return m_keepAlive; }
    /// Status line and headers, the empty line included.
    std::string Head() const;
    /// The body as it goes over the wire (chunked if asked for).
    std::string WireBody() const;
    /// The whole response.
    std::string Bytes() const { return Head() + WireBody(); }

private:
    int m_status;
    std::string m_reason;
    std::string m_body;
    std::vector<std::pair<std::string, std::string>> m_headers;
    bool m_hasLength = true;
    size_t m_chunkSize = 0;
    bool m_keepAlive = false;
};

} // namespace orva::test
