#include "demo/Timeline.h"

#include <cstdio>

namespace orva::demo
{

void CTimeline::Tell(const std::string& who, const std::string& text)
{
    const ULONGLONG now = GetTickCount64();
    m_start = m_start.value_or(now);
    const ULONGLONG tenths = (now - *m_start) / 100;
    std::printf("%4llu.%llu s  %-9s %s\n", tenths / 10, tenths % 10, who.c_str(), text.c_str());
    static_cast<void>(std::fflush(stdout));
}

void CTimeline::Ask(bool isAsked, const std::string& fact, const std::string& text)
{
    if (isAsked)
    {
        m_asked.emplace_back(fact, text);
    }
}

void CTimeline::See(const std::string& fact, bool isSeen)
{
    if (isSeen)
    {
        m_seen.insert(fact);
    }
}

bool CTimeline::End() const
{
    auto missing = m_asked;
    std::erase_if(missing, [this](const auto& asked) { return IsSeen(asked.first); });
    std::printf("\n%s\n", missing.empty() ? "Seen to happen:" : "NOT seen to happen:");
    for (const auto& [fact, text] : missing.empty() ? m_asked : missing)
    {
        std::printf("  - %s\n", text.c_str());
    }
    return missing.empty();
}

} // namespace orva::demo
