// What the logs and the disk tell of the play.
#include "demo/Play.h"
#include "harness/Files.h"
#include "harness/LogFile.h"
#include "harness/Text.h"

#include <algorithm>
#include <initializer_list>
#include <iomanip>
#include <sstream>
#include <string_view>

namespace orva::demo
{

using namespace test;

namespace
{

bool HasAny(const std::string& line, std::initializer_list<const char*> parts)
{
    return std::any_of(parts.begin(), parts.end(),
                       [&](const char* part) { return line.find(part) != std::string::npos; });
}

// Whether it is the path of an installer in one of the add-in's temporary folders.
bool IsInFreshFolder(const std::string& path)
{
    const std::string_view folder = std::string_view(path).substr(0, path.rfind("\\OrvaSetup"));
    constexpr size_t kNameLength = 9;
    return folder.size() < path.size() && folder.size() - folder.rfind('\\') - 1 == kNameLength &&
           folder.substr(folder.size() - kNameLength).starts_with("osc");
}

struct CTraceFact
{
    const char* part;
    const char* fact;
};

constexpr CTraceFact kTraceFacts[] = {
    {"OnConnection(ConnectMode 1) = 0x00000000", "connected"},
    {"Outlook: start-up complete", "started"},
    {"Outlook: custom UI of OrvaOscAddin.Connect refused: ", "parse-report"},
    {"Outlook: custom UI of OrvaOscAddin.Connect: 0 characters", "no-tab"},
    {"Outlook: File view shows ", "file-view"},
    {"Invoke 42000 ButtonClicked(", "update-pressed"},
};

} // namespace

void CPlay::OnTrace(const std::string& line)
{
    constexpr std::string_view kFromOutlook = "Outlook -> ";
    constexpr std::string_view kEvent = "Outlook: ";
    constexpr std::string_view kFromAddIn = "add-in -> ";
    const bool isFromAddIn = line.starts_with(kFromAddIn);
    if (HasAny(line,
               {"QueryInterface", "GetIDsOfNames", "CLSIDFromProgID", "references to", "Outlook: menu &"}))
    {
        // Nothing that a reader of the play needs.
    }
    else if (line.starts_with(kFromOutlook))
    {
        m_timeline.Tell("Outlook", "called " + line.substr(line.find(": ") + 2));
    }
    else if (line.starts_with(kEvent))
    {
        m_timeline.Tell("Outlook", line.substr(kEvent.size()));
    }
    else if (isFromAddIn)
    {
        m_timeline.Tell("add-in", "called " + line.substr(kFromAddIn.size()));
    }
    else
    {
        m_timeline.Tell("", line);
    }
    for (const CTraceFact& known : kTraceFacts)
    {
        if (HasAny(line, {known.part}))
        {
            See(known.fact);
        }
    }
    if (isFromAddIn && HasAny(line, {"Add("}))
    {
        See("command");
    }
}

void CPlay::OnRequest(const std::string& line)
{
    std::string time;
    std::string status;
    std::string size;
    std::string encoding;
    std::string target;
    std::string word;
    std::istringstream fields(line);
    fields >> time >> status >> size >> word >> word >> std::quoted(encoding) >> word >> std::quoted(target);
    if (!fields)
    {
        return;
    }
    m_timeline.Tell("server", target + ": " + status + ", " + size + " bytes" +
                                  (encoding == "-" ? "" : " in " + encoding));
    if (HasAny(target, {kUpdateInfoPath}))
    {
        // A file of the caller's may be too short to be worth compressing.
        if (status == "200" && (encoding == "gzip" || m_settings.outcome == Outcome::Any))
        {
            See(m_phase + "-fetched");
        }
        See(m_phase + "-asked");
    }
    else if (HasAny(target, {".exe"}))
    {
        See("downloaded");
        See(std::stoull(size) < m_website.Installer().size() ? "downloaded-part" : "downloaded-whole");
    }
}

// What the download has left on disk.
void CPlay::ExamineDownload()
{
    bool isKept = false;
    bool isStarted = false;
    for (const std::wstring& path : Downloads())
    {
        const std::string bytes = ReadFileBytes(path).value_or("");
        if (path.ends_with(L".exe"))
        {
            isKept = true;
            if (bytes == m_website.Installer())
            {
                See("installer-same");
            }
        }
        else if (path.ends_with(L".trace.txt"))
        {
            isStarted = true;
            const std::string ran = SplitLines(bytes).at(0);
            if (ran.starts_with("path C:") && IsInFreshFolder(ran))
            {
                m_timeline.Tell("installer", "says: ran from " + ran.substr(5));
                See("installer-ran");
            }
        }
    }
    if (!isKept && IsSeen("progress"))
    {
        See("partial-deleted");
    }
    if (!isStarted)
    {
        See("installer-not-run");
    }
    if (!IsSeen("downloaded"))
    {
        See("nothing-downloaded");
    }
}

void CPlay::ExamineLog()
{
    const std::string log = ReadLog();
    if (log.empty())
    {
        m_timeline.Tell("", "the add-in wrote no log");
        return;
    }
    WriteFileBytes(m_settings.out + L"\\orva.log", log);
    if (HasAny(log, {"CConnect::OnConnection() check for updates "}) &&
        HasAny(log, {"CheckForUpdate() TextRequest succeeded "}))
    {
        See("logged");
    }
}

} // namespace orva::demo
