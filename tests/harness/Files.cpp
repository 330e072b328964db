#include "harness/Files.h"

#include "harness/Text.h"

#include <algorithm>
#include <stdexcept>

namespace orva::test
{

namespace
{

bool IsDots(const wchar_t* name)
{
    return wcscmp(name, L".") == 0 || wcscmp(name, L"..") == 0;
}

template <typename Visit> void VisitFolder(const std::wstring& folder, Visit visit)
{
    WIN32_FIND_DATAW data;
    const HANDLE find = FindFirstFileW((folder + L"\\*").c_str(), &data);
    if (find == INVALID_HANDLE_VALUE)
    {
        return;
    }
    do
    {
        if (!IsDots(data.cFileName))
        {
            visit(data);
        }
    } while (FindNextFileW(find, &data));
    FindClose(find);
}

bool IsRealFolder(DWORD attributes)
{
    return (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0 && (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0;
}

void List(std::vector<std::wstring>& paths, const std::wstring& folder, const std::wstring& prefix)
{
    VisitFolder(folder, [&](const WIN32_FIND_DATAW& data) {
        const std::wstring name = prefix + data.cFileName;
        const bool isFolder = (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
        paths.push_back(isFolder ? name + L"\\" : name);
        if (IsRealFolder(data.dwFileAttributes))
        {
            List(paths, folder + L"\\" + data.cFileName, name + L"\\");
        }
    });
}

} // namespace

std::optional<std::string> ReadFileBytes(const std::wstring& path)
{
    const UniqueHandle file(CreateFileW(path.c_str(), GENERIC_READ,
                                        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                        OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (file.get() == INVALID_HANDLE_VALUE)
    {
        return std::nullopt;
    }
    std::string bytes;
    char buffer[65'536];
    DWORD count = 0;
    while (ReadFile(file.get(), buffer, sizeof buffer, &count, nullptr) && count > 0)
    {
        bytes.append(buffer, count);
    }
    return bytes;
}

void WriteFileBytes(const std::wstring& path, std::string_view bytes)
{
    const UniqueHandle file(CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_ALWAYS,
                                        FILE_ATTRIBUTE_NORMAL, nullptr));
    DWORD count = 0;
    if (file.get() == INVALID_HANDLE_VALUE ||
        !WriteFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &count, nullptr) ||
        count != bytes.size())
    {
        throw std::runtime_error("cannot write " + Utf8(path) + ": " + std::to_string(GetLastError()));
    }
}

bool FileExists(const std::wstring& path)
{
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

bool FolderExists(const std::wstring& path)
{
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

void RemovePath(const std::wstring& path)
{
    const DWORD attributes = GetFileAttributesW(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES)
    {
        return;
    }
    if ((attributes & FILE_ATTRIBUTE_READONLY) != 0)
    {
        SetFileAttributesW(path.c_str(), attributes & ~static_cast<DWORD>(FILE_ATTRIBUTE_READONLY));
    }
    if ((attributes & FILE_ATTRIBUTE_DIRECTORY) == 0)
    {
        DeleteFileW(path.c_str());
        return;
    }
    if (IsRealFolder(attributes))
    {
        VisitFolder(path, [&](const WIN32_FIND_DATAW& data) { RemovePath(path + L"\\" + data.cFileName); });
    }
    RemoveDirectoryW(path.c_str());
}

std::vector<std::wstring> ListFolder(const std::wstring& folder)
{
    std::vector<std::wstring> paths;
    List(paths, folder, L"");
    std::sort(paths.begin(), paths.end());
    return paths;
}

bool WaitForFile(const std::wstring& path, size_t size, DWORD timeout)
{
    return WaitUntil(
        [&] {
            WIN32_FILE_ATTRIBUTE_DATA data;
            return GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data) &&
                   (static_cast<unsigned long long>(data.nFileSizeHigh) << 32 | data.nFileSizeLow) >= size;
        },
        timeout);
}

std::wstring BuiltFile(const std::wstring& name)
{
    wchar_t program[MAX_PATH];
    const std::wstring path(program, GetModuleFileNameW(nullptr, program, MAX_PATH));
    return path.substr(0, path.rfind(L'\\') + 1) + name;
}

} // namespace orva::test
