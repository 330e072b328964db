#include "publishing/Files.h"

#include "publishing/CheckOptions.h"
#include "publishing/Text.h"

#include <windows.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace publishing
{

std::string ReadWholeFile(const std::wstring& path)
{
    std::ifstream file(std::filesystem::path(path), std::ios::binary);
    std::string bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    if (!file.is_open() || file.bad())
    {
        throw CUsageError(Utf8(path) + " cannot be read");
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
