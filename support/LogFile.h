// The debug log's output file stream.
#pragma once

#include <string>
#include <string_view>

/// A file of narrow text that is only ever added to, each line in one write to the system. Not the C++
/// library's stream, whose buffer, conversions and formatting would be there only to be bypassed, at each
/// start of the host.
class CLogStream
{
public:
    CLogStream() = default;
    ~CLogStream();
    CLogStream(const CLogStream&) = delete;
    CLogStream& operator=(const CLogStream&) = delete;

    /// Opens `path` for text, emptied unless `keep`; other processes may read and write it meanwhile. It
    /// stays closed if that fails.
    void Open(const std::wstring& path, bool keep);
    bool IsOpen() const { return m_file != kClosed; }

    /// Adds `text` at the end of the file, with line ends as Windows has them, in one piece. After a failure
    /// nothing is written any more.
    void Write(std::string_view text);

    /// Puts the stream into the state that a failed write leaves.
    void Fail() { m_hasFailed = true; }

private:
    static constexpr int kClosed = -1;

    int m_file = kClosed;
    bool m_hasFailed = false;
};
