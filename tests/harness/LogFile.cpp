#include "harness/LogFile.h"

#include "harness/Files.h"

#include <shlobj.h>

#include <algorithm>
#include <string_view>

namespace orva::test
{

namespace
{

constexpr wchar_t kLogName[] = L"logfile_OrvaAddIn.txt";

// Whether a text has the form of a time stamp. A "0" in the pattern stands for any digit.
bool IsTime(std::string_view text)
{
    constexpr std::string_view kPattern = "0000-00-00 00:00:00";
    return text.size() == kPattern.size() &&
           std::equal(text.begin(), text.end(), kPattern.begin(), [](char character, char pattern) {
               return pattern == '0' ? character >= '0' && character <= '9' : character == pattern;
           });
}

CLogEntry ParseLine(std::string_view line)
{
    constexpr size_t kTimeLength = 19;
    if (line.size() >= kTimeLength + 3 && line[0] == '[' && IsTime(line.substr(1, kTimeLength)) &&
        line.substr(kTimeLength + 1, 2) == "] " && line.ends_with('\r'))
    {
        line.remove_suffix(1);
        return {std::string(line.substr(1, kTimeLength)), std::string(line.substr(kTimeLength + 3))};
    }
    return {"", std::string(line)};
}

} // namespace

std::wstring LogFolder()
{
    wchar_t folder[MAX_PATH] = L"";
    SHGetSpecialFolderPathW(nullptr, folder, CSIDL_LOCAL_APPDATA, FALSE);
    return std::wstring(folder) + L"\\ORVA Connector";
}

std::wstring LogPath()
{
    return LogFolder() + L"\\" + kLogName;
}

void DeleteLog()
{
    RemovePath(LogFolder());
}

std::string ReadLog()
{
    return ReadFileBytes(LogPath()).value_or("");
}

std::vector<CLogEntry> ReadLogEntries()
{
    const std::string log = ReadLog();
    std::vector<CLogEntry> entries;
    std::string_view rest = log;
    while (!rest.empty())
    {
        const size_t end = rest.find('\n');
        entries.push_back(ParseLine(rest.substr(0, end)));
        rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    }
    return entries;
}

std::vector<std::string> ReadLogTexts()
{
    std::vector<std::string> texts;
    for (CLogEntry& entry : ReadLogEntries())
    {
        texts.push_back(std::move(entry.text));
    }
    return texts;
}

bool WaitForLogText(const std::string& text, DWORD timeout)
{
    return WaitUntil(
        [&] {
            const std::vector<std::string> texts = ReadLogTexts();
            return std::find(texts.begin(), texts.end(), text) != texts.end();
        },
        timeout);
}

std::vector<std::string> CLogMark::TextsFrom(size_t first)
{
    std::vector<std::string> texts = ReadLogTexts();
    texts.erase(texts.begin(), texts.begin() + static_cast<std::ptrdiff_t>(std::min(first, texts.size())));
    return texts;
}

bool CLogMark::Has(const std::string& text) const
{
    const std::vector<std::string> texts = Texts();
    return std::find(texts.begin(), texts.end(), text) != texts.end();
}

std::vector<std::string> CLogMark::NewLines()
{
    std::vector<std::string> texts = TextsFrom(m_read);
    m_read += texts.size();
    return texts;
}

CDebugLogOn::CDebugLogOn() : m_switch(HKEY_CURRENT_USER, kLogSwitchKey, kLogSwitchValue)
{
    DeleteLog();
    m_switch.SetDword(1);
}

CDebugLogOn::~CDebugLogOn()
{
    DeleteLog();
}

} // namespace orva::test
