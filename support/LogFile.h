// The debug log's file.
#pragma once

#include <string_view>

/// A text file that is only appended to. Each line is one write to the system, so the file is complete up to
/// the last line even if the host crashes.
class CLogFile
{
public:
    /// Opens the file, which other processes may read and write meanwhile, if the registry switches the log
    /// on. It stays closed if the switch is off or anything fails; nothing is created while the switch is
    /// off.
    CLogFile() noexcept;
    ~CLogFile();
    CLogFile(const CLogFile&) = delete;
    CLogFile& operator=(const CLogFile&) = delete;

    bool IsOpen() const { return m_file != kClosed; }

    /// Adds `text` at the end of the file, with line ends as Windows has them. After a failure nothing is
    /// written any more.
    void Write(std::string_view text);

private:
    static constexpr int kClosed = -1;

    void Open();

    int m_file = kClosed;
    bool m_hasFailed = false;
};
