#include "harness/HttpReply.h"

#include <strings.h>

#include <algorithm>
#include <cstdio>

namespace orva::test
{

namespace
{

constexpr char kLengthHeader[] = "Content-Length";

} // namespace

CHttpReply::CHttpReply(int status, std::string body)
    : m_status(status), m_body(std::move(body)),
      m_headers{{"Date", kReplyDate}, {"Content-Type", "text/plain"}, {"Connection", "close"}}
{
}

CHttpReply& CHttpReply::Header(const std::string& name, std::string value)
{
    Without(name);
    return AddHeader(name, std::move(value));
}

CHttpReply& CHttpReply::AddHeader(std::string name, std::string value)
{
    if (strcasecmp(name.c_str(), kLengthHeader) == 0)
    {
        m_hasLength = false;
    }
    m_headers.emplace_back(std::move(name), std::move(value));
    return *this;
}

CHttpReply& CHttpReply::Without(const std::string& name)
{
    std::erase_if(m_headers,
                  [&](const auto& header) { return strcasecmp(header.first.c_str(), name.c_str()) == 0; });
    if (strcasecmp(name.c_str(), kLengthHeader) == 0)
    {
        m_hasLength = false;
    }
    return *this;
}

CHttpReply& CHttpReply::ContentLength(unsigned long long length)
{
    return Header(kLengthHeader, std::to_string(length));
}

CHttpReply& CHttpReply::Chunked(size_t chunkSize)
{
    m_chunkSize = chunkSize;
    Without(kLengthHeader);
    return Header("Transfer-Encoding", "chunked");
}

CHttpReply& CHttpReply::KeepAlive()
{
    m_keepAlive = true;
    return Header("Connection", "keep-alive");
}

std::string CHttpReply::Head() const
{
    // Clients look at the number, not at the words.
    std::string head = "HTTP/1.1 " + std::to_string(m_status) + (m_status == 200 ? " OK\r\n" : " Not OK\r\n");
    for (const auto& [name, value] : m_headers)
    {
        head += name + ": " + value + "\r\n";
    }
    if (m_hasLength)
    {
        head += std::string(kLengthHeader) + ": " + std::to_string(m_body.size()) + "\r\n";
    }
    return head + "\r\n";
}

std::string CHttpReply::WireBody() const
{
    if (m_chunkSize == 0)
    {
        return m_body;
    }
    std::string wire;
    for (size_t at = 0; at < m_body.size(); at += m_chunkSize)
    {
        const size_t length = std::min(m_chunkSize, m_body.size() - at);
        char size[20];
        std::snprintf(size, sizeof size, "%zx\r\n", length);
        wire += size + m_body.substr(at, length) + "\r\n";
    }
    return wire + "0\r\n\r\n";
}

} // namespace orva::test
