#include "addin/PeImage.h"

#include "harness/Text.h"
#include "harness/Waiting.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <stdexcept>

namespace orva::test
{
namespace
{

const char* Map(const std::wstring& path)
{
    const UniqueHandle file(
        CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
    const UniqueHandle mapping(
        CreateFileMappingW(file.get(), nullptr, PAGE_READONLY | SEC_IMAGE, 0, 0, nullptr));
    const void* const base = mapping ? MapViewOfFile(mapping.get(), FILE_MAP_READ, 0, 0, 0) : nullptr;
    if (base == nullptr)
    {
        throw std::runtime_error("cannot map " + Utf8(path));
    }
    return static_cast<const char*>(base);
}

} // namespace

CPeImage::CPeImage(const std::wstring& path) : m_base(Map(path))
{
    if (Headers().OptionalHeader.Magic != IMAGE_NT_OPTIONAL_HDR64_MAGIC)
    {
        UnmapViewOfFile(m_base);
        throw std::runtime_error(Utf8(path) + " is no 64-bit image");
    }
}

std::vector<CPeImage::Export> CPeImage::Exports() const
{
    std::vector<Export> exports;
    const auto* const directory =
        At<IMAGE_EXPORT_DIRECTORY>(Directory(IMAGE_DIRECTORY_ENTRY_EXPORT).VirtualAddress);
    for (DWORD i = 0; i < directory->NumberOfFunctions; ++i)
    {
        if (At<DWORD>(directory->AddressOfFunctions)[i] == 0)
        {
            continue;
        }
        Export entry = {static_cast<WORD>(directory->Base + i), ""};
        for (DWORD name = 0; name < directory->NumberOfNames; ++name)
        {
            if (At<WORD>(directory->AddressOfNameOrdinals)[name] == i)
            {
                entry.name = At<char>(At<DWORD>(directory->AddressOfNames)[name]);
            }
        }
        exports.push_back(std::move(entry));
    }
    return exports;
}

std::map<std::string, std::set<std::string>> CPeImage::Imports() const
{
    std::map<std::string, std::set<std::string>> imports;
    for (const auto* entry =
             At<IMAGE_IMPORT_DESCRIPTOR>(Directory(IMAGE_DIRECTORY_ENTRY_IMPORT).VirtualAddress);
         entry->Name != 0; ++entry)
    {
        std::string dll = At<char>(entry->Name);
        std::ranges::transform(dll, dll.begin(),
                               [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
        std::set<std::string>& functions = imports[dll];
        for (const auto* thunk = At<ULONGLONG>(entry->OriginalFirstThunk); *thunk != 0; ++thunk)
        {
            functions.insert((*thunk & IMAGE_ORDINAL_FLAG64) != 0
                                 ? "#" + std::to_string(IMAGE_ORDINAL64(*thunk))
                                 : At<IMAGE_IMPORT_BY_NAME>(static_cast<DWORD>(*thunk))->Name);
        }
    }
    return imports;
}

size_t CPeImage::CountTlsCallbacks() const
{
    if (Directory(IMAGE_DIRECTORY_ENTRY_TLS).Size == 0)
    {
        return 0;
    }
    const auto* const directory =
        At<IMAGE_TLS_DIRECTORY64>(Directory(IMAGE_DIRECTORY_ENTRY_TLS).VirtualAddress);
    const auto* const callbacks =
        At<ULONGLONG>(static_cast<DWORD>(directory->AddressOfCallBacks - Headers().OptionalHeader.ImageBase));
    size_t count = 0;
    while (callbacks[count] != 0)
    {
        ++count;
    }
    return count;
}

std::vector<std::string> CPeImage::Sections(DWORD characteristics) const
{
    std::vector<std::string> names;
    const IMAGE_NT_HEADERS64& headers = Headers();
    const auto* const first = reinterpret_cast<const IMAGE_SECTION_HEADER*>(
        reinterpret_cast<const char*>(&headers.OptionalHeader) + headers.FileHeader.SizeOfOptionalHeader);
    for (WORD i = 0; i < headers.FileHeader.NumberOfSections; ++i)
    {
        if ((first[i].Characteristics & characteristics) == characteristics)
        {
            const auto* const name = reinterpret_cast<const char*>(first[i].Name);
            names.emplace_back(name, strnlen(name, IMAGE_SIZEOF_SHORT_NAME));
        }
    }
    return names;
}

} // namespace orva::test
