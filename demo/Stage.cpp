#include "demo/Stage.h"

#include "harness/Files.h"
#include "harness/Text.h"

#include <stdexcept>

namespace orva::demo
{

using namespace test;

namespace
{

// Milliseconds for which a new window is awaited before the logs are read again.
constexpr DWORD kLookTime = 100;

std::wstring TempFolder()
{
    wchar_t folder[MAX_PATH] = L"";
    GetTempPathW(MAX_PATH, folder);
    return folder;
}

std::wstring TraceFile(const CSettings& settings)
{
    return settings.out + L"\\host.log";
}

} // namespace

std::vector<std::string> CTail::NewLines()
{
    const std::string bytes = ReadFileBytes(m_path).value_or("");
    const size_t end = bytes.rfind('\n') + 1;
    if (end <= m_read)
    {
        return {};
    }
    std::vector<std::string> lines = SplitLines(bytes.substr(m_read, end - m_read));
    m_read = end;
    return lines;
}

CStage::CStage(const CSettings& settings, CTimeline& timeline)
    : m_settings(settings), m_timeline(timeline), m_texts(settings.language), m_camera(settings.camera),
      m_website(settings.server), m_language(LanguageId(settings.language)), m_proxy(settings.port),
      m_trace(TraceFile(settings)), m_requests(settings.server + L"\\requests.log")
{
    if (RunProcess(L"regsvr32.exe", {L"/s", BuiltFile(L"OrvaOscAddin.dll")}).exitCode != 0)
    {
        throw std::runtime_error("regsvr32 could not register the add-in");
    }
    for (const std::wstring& path : Downloads())
    {
        RemovePath(path);
    }
}

void CStage::StartOutlook(int office)
{
    m_main = nullptr;
    RemovePath(TraceFile(m_settings));
    m_trace = CTail(TraceFile(m_settings));
    m_outlook = std::make_unique<CChildProcess>(
        CProcessOptions{.program = BuiltFile(L"OutlookHost.exe"),
                        .arguments = {L"--office", std::to_wstring(office), L"--mode", L"startup", L"--trace",
                                      TraceFile(m_settings)}});
}

bool CStage::Watch(DWORD timeout, const std::function<bool()>& condition)
{
    const ULONGLONG end = GetTickCount64() + timeout;
    CatchUp();
    while (!condition())
    {
        if (IsOver() || GetTickCount64() >= end)
        {
            return false;
        }
        if (const auto window = m_desktop.Next(kLookTime))
        {
            Meet(*window);
        }
        CatchUp();
    }
    return true;
}

void CStage::CatchUp()
{
    for (const std::string& line : m_requests.NewLines())
    {
        OnRequest(line);
    }
    for (const std::string& line : m_trace.NewLines())
    {
        // Without the trace's own times, whose clock starts a little later than ours.
        const size_t time = line.find_first_not_of(' ');
        OnTrace(line.substr(line.find(' ', time) + 1));
    }
}

std::vector<std::wstring> CStage::Downloads()
{
    std::vector<std::wstring> paths;
    for (const std::wstring& path : ListFolder(TempFolder()))
    {
        if (path.starts_with(L"osc"))
        {
            paths.push_back(TempFolder() + path);
        }
    }
    return paths;
}

} // namespace orva::demo
