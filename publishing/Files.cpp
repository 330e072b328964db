#include "publishing/Files.h"

#include "publishing/CheckOptions.h"
#include "publishing/Text.h"

#include <windows.h>

#include <array>
#include <filesystem>
#include <fstream>

namespace publishing
{

void FileCloser::operator()(void* file) const noexcept
{
    CloseHandle(file);
}

UniqueFile OpenForReading(const std::wstring& path)
{
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                    OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE)
    {
        return nullptr;
    }
    return UniqueFile(file);
}

std::string ReadWholeFile(const std::wstring& path)
{
    const UniqueFile file = OpenForReading(path);
    LARGE_INTEGER size{};
    if (file == nullptr || !GetFileSizeEx(file.get(), &size))
    {
        throw CUsageError(Utf8(path) + " cannot be read");
    }
    if (static_cast<ULONGLONG>(size.QuadPart) > kLargestFile)
    {
        throw CUsageError(Utf8(path) + " cannot be read: it has 2 GiB or more");
    }
    std::string bytes(static_cast<std::size_t>(size.QuadPart), '\0');
    DWORD read = 0;
    for (std::size_t done = 0; done < bytes.size(); done += read)
    {
        if (!ReadFile(file.get(), bytes.data() + done, static_cast<DWORD>(bytes.size() - done), &read,
                      nullptr) ||
            read == 0)
        {
            throw CUsageError(Utf8(path) + " cannot be read to its end");
        }
    }
    return bytes;
}

CTemporaryFile::CTemporaryFile(const std::string& bytes)
{
    std::array<wchar_t, MAX_PATH + 1> folder{};
    std::array<wchar_t, MAX_PATH + 1> path{};
    GetTempPathW(static_cast<DWORD>(folder.size()), folder.data());
    if (GetTempFileNameW(folder.data(), L"osc", 0, path.data()) != 0)
    {
        m_path = path.data();
    }
    std::ofstream file(std::filesystem::path(m_path), std::ios::binary);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    file.close();
    if (!file)
    {
        DeleteFileW(m_path.c_str());
        throw CUsageError("no temporary file can be written");
    }
}

CTemporaryFile::~CTemporaryFile()
{
    DeleteFileW(m_path.c_str());
}

} // namespace publishing
