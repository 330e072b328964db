#include "support/FileUtilities.h"

#include "support/TextUtilities.h"

#include <windows.h>
#include <shlobj.h>
#include <shlwapi.h>

#include <algorithm>
#include <cstdio>
#include <limits>
#include <memory>

namespace
{
constexpr wchar_t kFolder[] = L"\\ORVA Connector\\";

struct FileCloser
{
    void operator()(std::FILE* file) const noexcept { static_cast<void>(std::fclose(file)); }
};
} // namespace

std::wstring GetAppDataFolder()
{
    wchar_t folder[MAX_PATH] = {};
    if (!SHGetSpecialFolderPathW(nullptr, folder, CSIDL_LOCAL_APPDATA, FALSE))
    {
        return {};
    }
    return std::wstring(folder) + kFolder;
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): texts come by value here, as in TextUtilities.h
bool CreateDirectoriesForPath(std::wstring path, bool isFile)
{
    for (std::size_t at = path.find(L'\\', 1); at != std::wstring::npos; at = path.find(L'\\', at + 1))
    {
        CreateDirectoryW(path.substr(0, at).c_str(), nullptr);
    }
    if (isFile)
    {
        return PathFileExistsW(path.c_str()) != FALSE;
    }

    CreateDirectoryW(path.c_str(), nullptr);
    return PathFileExistsW(path.substr(0, path.rfind(L'\\')).c_str()) != FALSE;
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): texts come by value here, as in TextUtilities.h
std::int32_t GetExistingFileSize(std::wstring path)
{
    if (!PathFileExistsW(path.c_str()))
    {
        return 0;
    }
    const std::unique_ptr<std::FILE, FileCloser> file(std::fopen(WideToNarrow(path).c_str(), "rb"));
    if (file == nullptr || _fseeki64(file.get(), 0, SEEK_END) != 0)
    {
        return 0;
    }
    constexpr long long kLargest = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(std::clamp<long long>(_ftelli64(file.get()), 0, kLargest));
}
