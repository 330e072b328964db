// What an HTTP request brought back: status, date, content type and body.
#pragma once

#include <cstdint>
#include <ctime>
#include <memory>
#include <string>

class CHttpResponse
{
public:
    /// The status of a request that failed before a response was read.
    static constexpr std::uint32_t kStatusFailed = 0xFFFFFFFF;

    /// The body, m_length bytes and a zero byte after them; null when no body was read.
    std::unique_ptr<char[]> m_data;

    /// The number of body bytes, after decoding.
    std::uint32_t m_length = 0;

    /// The HTTP status code or kStatusFailed.
    std::uint32_t m_status = kStatusFailed;

    /// The Content-Type header, the low byte of each character; empty unless the status was accepted.
    std::string m_contentType;

    /// The Date header as ParseHttpDate reads it.
    struct tm m_date = {};
};
