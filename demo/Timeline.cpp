#include "demo/Timeline.h"

#include <algorithm>
#include <cstdio>

namespace orva::demo
{

void CTimeline::Tell(const std::string& who, const std::string& text)
{
    const ULONGLONG now = GetTickCount64();
    const ULONGLONG tenths = (now - m_start.value_or(now)) / 100;
    m_start = m_start.value_or(now);
    std::printf("%4llu.%llu s  %-9s %s\n", tenths / 10, tenths % 10, who.c_str(), text.c_str());
    std::fflush(stdout);
}

void CTimeline::Ask(const std::string& fact, const std::string& text)
{
    m_asked.emplace_back(fact, text);
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
    std::fflush(stdout);
    return missing.empty();
}

} // namespace orva::demo
