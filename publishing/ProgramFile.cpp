#include "publishing/ProgramFile.h"

#include <windows.h>
#include <winver.h>

#include <cstring>
#include <optional>
#include <vector>

namespace publishing
{
namespace
{

template <typename Record> std::optional<Record> ReadAt(const std::string& bytes, std::size_t offset)
{
    Record record;
    if (offset > bytes.size() || bytes.size() - offset < sizeof(record))
    {
        return std::nullopt;
    }
    std::memcpy(&record, bytes.data() + offset, sizeof(record));
    return record;
}

// Whether the file has all bytes of its sections.
bool HasAllSections(const std::string& bytes, std::size_t table, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i)
    {
        const auto section = ReadAt<IMAGE_SECTION_HEADER>(bytes, table + i * sizeof(IMAGE_SECTION_HEADER));
        if (!section || std::size_t{section->PointerToRawData} + section->SizeOfRawData > bytes.size())
        {
            return false;
        }
    }
    return true;
}

} // namespace

int ProgramBits(const std::string& bytes)
{
    const auto dos = ReadAt<IMAGE_DOS_HEADER>(bytes, 0);
    if (!dos || dos->e_magic != IMAGE_DOS_SIGNATURE || dos->e_lfanew < 0)
    {
        return 0;
    }
    const auto start = static_cast<std::size_t>(dos->e_lfanew);
    const auto signature = ReadAt<DWORD>(bytes, start);
    const auto head = ReadAt<IMAGE_FILE_HEADER>(bytes, start + sizeof(DWORD));
    if (!signature || *signature != IMAGE_NT_SIGNATURE || !head ||
        (head->Characteristics & IMAGE_FILE_DLL) != 0 ||
        (head->Characteristics & IMAGE_FILE_EXECUTABLE_IMAGE) == 0 ||
        !HasAllSections(bytes, start + sizeof(DWORD) + sizeof(*head) + head->SizeOfOptionalHeader,
                        head->NumberOfSections))
    {
        return 0;
    }
    switch (head->Machine)
    {
    case IMAGE_FILE_MACHINE_AMD64:
        return 64;
    case IMAGE_FILE_MACHINE_I386:
        return 32;
    default:
        return 0;
    }
}

std::wstring VersionResourceOf(const std::wstring& path)
{
    DWORD ignored = 0;
    std::vector<char> block(GetFileVersionInfoSizeW(path.c_str(), &ignored));
    VS_FIXEDFILEINFO* information = nullptr;
    UINT size = 0;
    if (block.empty() ||
        !GetFileVersionInfoW(path.c_str(), 0, static_cast<DWORD>(block.size()), block.data()) ||
        !VerQueryValueW(block.data(), L"\\", reinterpret_cast<void**>(&information), &size) ||
        size < sizeof(VS_FIXEDFILEINFO))
    {
        return {};
    }
    return std::to_wstring(HIWORD(information->dwFileVersionMS)) + L"." +
           std::to_wstring(LOWORD(information->dwFileVersionMS)) + L"." +
           std::to_wstring(HIWORD(information->dwFileVersionLS));
}

} // namespace publishing
