// What is wrong with an update, or may be: errors and warnings in the order in which they were found.
#pragma once

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace publishing
{

enum class Severity
{
    /// Shows an error to a user or makes the update impossible.
    Error,
    Warning,
};

struct CFinding
{
    Severity severity;
    /// The kind, for scripts: lower-case words with hyphens, which do not change.
    std::string code;
    /// The member of the file, "x64.downloadLink", or another place; empty for the file as a whole.
    std::wstring path;
    /// In plain words, without a full stop.
    std::wstring text;
};

class CFindings
{
public:
    void Error(std::string code, std::wstring path, std::wstring text)
    {
        m_all.push_back({Severity::Error, std::move(code), std::move(path), std::move(text)});
    }
    void Warning(std::string code, std::wstring path, std::wstring text)
    {
        m_all.push_back({Severity::Warning, std::move(code), std::move(path), std::move(text)});
    }

    const std::vector<CFinding>& All() const { return m_all; }
    std::ptrdiff_t Count(Severity severity) const
    {
        return std::count_if(m_all.begin(), m_all.end(),
                             [=](const CFinding& finding) { return finding.severity == severity; });
    }
    bool HasErrors() const { return Count(Severity::Error) != 0; }

private:
    std::vector<CFinding> m_all;
};

} // namespace publishing
