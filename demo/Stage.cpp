#include "demo/Stage.h"

#include "harness/CommandLine.h"
#include "harness/Files.h"
#include "harness/Registry.h"
#include "harness/Text.h"

#include <algorithm>
#include <stdexcept>

namespace orva::demo
{

using namespace test;

namespace
{

// The complete lines that another program has added to its log.
std::vector<std::string> NewLines(const std::wstring& path, size_t& read)
{
    const std::string log = ReadFileBytes(path).value_or("");
    const size_t begin = std::min(read, log.size());
    read = std::max(begin, log.rfind('\n') + 1);
    return SplitLines(std::string_view(log).substr(begin, read - begin));
}

// A path of drive Z:, which is the whole file system.
std::wstring OutsideWine(std::wstring path)
{
    std::replace(path.begin(), path.end(), L'\\', L'/');
    return path.substr(2);
}

} // namespace

CStage::CStage(const CSettings& settings, CTimeline& timeline)
    : m_settings(settings), m_timeline(timeline), m_texts(settings.language),
      m_language(m_texts.LanguageId()), m_proxy(L"127.0.0.1:" + settings.port)
{
    const DWORD exitCode = RunProcess(m_settings.setup, {L"/S"}).exitCode;
    if (exitCode != 0)
    {
        throw std::runtime_error("the setup could not install the add-in; its exit code is " +
                                 std::to_string(exitCode));
    }
    for (const std::wstring& path : Downloads())
    {
        RemovePath(path);
    }
    // Of the requests, only those of this stage count.
    NewLines(m_settings.requests, m_requestsRead);
}

void CStage::StartOutlook(const std::wstring& office, const std::wstring& trace)
{
    m_trace = m_settings.out + L"\\" + trace;
    RemovePath(m_trace);
    m_traceRead = 0;
    m_main = nullptr;
    m_outlook = std::make_unique<CChildProcess>(
        CProcessOptions{.program = BuiltFile(L"OutlookHost.exe"),
                        .arguments = {L"--office", office, L"--mode", L"startup", L"--trace", m_trace}});
}

bool CStage::Watch(DWORD timeout, const std::function<bool()>& condition, const char* otherwise)
{
    constexpr DWORD kLookTime = 100;
    const ULONGLONG end = GetTickCount64() + timeout;
    for (CatchUp(); !condition(); CatchUp())
    {
        if (IsOver() || GetTickCount64() >= end)
        {
            if (otherwise != nullptr)
            {
                m_timeline.Tell("", otherwise);
            }
            return false;
        }
        if (const auto window = m_desktop.Next(kLookTime))
        {
            Meet(*window);
        }
    }
    return true;
}

void CStage::CatchUp()
{
    for (const std::string& line : NewLines(m_settings.requests, m_requestsRead))
    {
        OnRequest(line);
    }
    for (const std::string& line : NewLines(m_trace, m_traceRead))
    {
        // Without the trace's own times, whose clock starts a little later than ours.
        OnTrace(line.substr(line.find(' ', line.find_first_not_of(' ')) + 1));
    }
}

// Only the X server has a window's frame, so a program outside Wine takes the picture. It has no handle here;
// its work is done when the file is there.
void CStage::TakePicture(HWND window, const std::wstring& file, bool isWantedNow) const
{
    constexpr DWORD kScriptTime = 30'000;
    // Wine's driver keeps the X11 window's number as a property.
    const HANDLE xWindow = window != nullptr ? GetPropW(window, L"__wine_x11_whole_window") : nullptr;
    if (window != nullptr && xWindow == nullptr)
    {
        return;
    }
    std::wstring command =
        JoinCommandLine(m_settings.camera, {std::to_wstring(reinterpret_cast<UINT_PTR>(xWindow)),
                                            OutsideWine(file), isWantedNow ? L"now" : L"drawn"});
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION none = {};
    CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &none);
    WaitForFile(file, 0, kScriptTime);
    if (ReadFileBytes(file) == "")
    {
        RemovePath(file);
    }
}

std::wstring CStage::InstalledVersion()
{
    constexpr wchar_t kEntry[] = L"Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\ORVA Connector";
    return RegistryString(HKEY_LOCAL_MACHINE, kEntry, L"DisplayVersion").value_or(L"");
}

std::vector<std::wstring> CStage::Downloads()
{
    wchar_t folder[MAX_PATH] = L"";
    GetTempPathW(MAX_PATH, folder);
    std::vector<std::wstring> paths = ListFolder(folder);
    std::erase_if(paths, [](const std::wstring& path) { return !path.starts_with(L"osc"); });
    for (std::wstring& path : paths)
    {
        path.insert(0, folder);
    }
    return paths;
}

} // namespace orva::demo
