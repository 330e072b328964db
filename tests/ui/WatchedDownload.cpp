#include "ui/WatchedDownload.h"

#include "harness/Files.h"
#include "harness/Report.h"
#include "harness/Text.h"

#include <algorithm>

namespace orva::test
{

namespace
{

constexpr char kTable[] = "file-names";
constexpr char kDownloaded[] = "data";

void AddFolder(CSnapshot& snapshot, const std::wstring& folder)
{
    WIN32_FIND_DATAW data;
    const HANDLE find = FindFirstFileW((folder + L"*").c_str(), &data);
    if (find == INVALID_HANDLE_VALUE)
    {
        return;
    }
    do
    {
        const bool isFolder = (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
        snapshot[folder + data.cFileName] =
            isFolder ? std::nullopt : std::optional<size_t>(data.nFileSizeLow);
    } while (FindNextFileW(find, &data));
    FindClose(find);
}

} // namespace

CWatchedDownload::CWatchedDownload()
{
    std::wstring folder = Outer();
    for (const wchar_t* const name : {L"a", L"b", L"temp"})
    {
        WriteFileBytes(folder + L"\\evil.bin", kKept);
        folder += std::wstring(L"\\") + name;
        CreateDirectoryW(folder.c_str(), nullptr);
    }
    CreateDirectoryW((Outer() + L"\\current").c_str(), nullptr);
    WriteFileBytes(Outer() + L"\\current\\evil.bin", kKept);
    SetEnvironmentVariableW(L"TMP", Temp().c_str());
    SetEnvironmentVariableW(L"TEMP", Temp().c_str());
    wchar_t current[MAX_PATH];
    m_current.assign(current, GetCurrentDirectoryW(MAX_PATH, current));
    SetCurrentDirectoryW((Outer() + L"\\current").c_str());
}

CWatchedDownload::~CWatchedDownload()
{
    SetCurrentDirectoryW(m_current.c_str());
}

CSnapshot CWatchedDownload::TakeSnapshot() const
{
    CSnapshot snapshot;
    for (const std::wstring& path : ListFolder(Outer()))
    {
        const auto bytes = ReadFileBytes(Outer() + L"\\" + path);
        snapshot[path] = bytes ? std::optional(bytes->size()) : std::nullopt;
    }
    for (const wchar_t* const folder : {L"C:\\", L"C:\\windows\\", L"Z:\\"})
    {
        AddFolder(snapshot, folder);
    }
    return snapshot;
}

std::vector<std::wstring> CWatchedDownload::Differences(const CSnapshot& before, const CSnapshot& after)
{
    static const std::wstring temp = L"a\\b\\temp\\";
    std::vector<std::wstring> paths;
    for (const auto& [path, size] : after)
    {
        const auto old = before.find(path);
        if (old == before.end() || old->second != size)
        {
            paths.push_back(path.starts_with(temp) ? path.substr(temp.size()) : L"OUTSIDE " + path);
        }
    }
    for (const auto& [path, size] : before)
    {
        if (!after.contains(path))
        {
            paths.push_back(L"GONE " + path);
        }
    }
    return paths;
}

void CWatchedDownload::Try(const std::wstring& url)
{
    CGate gate;
    m_server.OnOther(CServerScript().WaitFor(gate).Send(CHttpReply(200, kDownloaded).Bytes()));
    DownloadWhateverComes(url, gate);
}

std::vector<std::wstring> CWatchedDownload::Shown() const
{
    std::vector<std::wstring> shown;
    for (const CSeenWindow& seen : m_seen)
    {
        const bool isProgress =
            std::any_of(seen.controls.begin(), seen.controls.end(),
                        [](const auto& control) { return control.first == kProgressBar; });
        shown.push_back(isProgress ? L"(progress)" : seen.text);
    }
    return shown;
}

void CWatchedDownload::Report(int number, const std::string& kind, const std::string& segment,
                              const std::string& made, bool isInside) const
{
    std::string seen;
    for (const std::wstring& shown : Shown())
    {
        seen += (seen.empty() ? "" : " / ") + Utf8(shown);
    }
    // A row is written into the program's own folder.
    SetCurrentDirectoryW(m_current.c_str());
    AddReportRow(kTable, {(number < 10 ? "0" : "") + std::to_string(number) + " " + kind, segment, made, seen,
                          isInside ? "no" : "YES"});
}

} // namespace orva::test
