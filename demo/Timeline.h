// Prints a play line by line as it happens, and checks that what was asked for was seen.
#pragma once

#include <windows.h>

#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace orva::demo
{

/// Texts are UTF-8. Its clock starts with the first line.
class CTimeline
{
public:
    /// Prints a line with its time.
    void Tell(const std::string& who, const std::string& text);
    /// Notes what must be seen to happen, if it must.
    void Ask(bool isAsked, const std::string& fact, const std::string& text);
    /// Notes that it was seen, if it was.
    void See(const std::string& fact, bool isSeen = true);
    bool IsSeen(const std::string& fact) const { return m_seen.contains(fact); }
    /// Prints what was asked for and not seen, or else everything that was. Whether all of it was seen.
    bool End() const;

private:
    std::optional<ULONGLONG> m_start;
    std::vector<std::pair<std::string, std::string>> m_asked;
    std::set<std::string> m_seen;
};

} // namespace orva::demo
