#include "addin/PeImage.h"

#include "harness/Files.h"
#include "harness/Text.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace orva::test
{

CPeImage::CPeImage(const std::wstring& path)
{
    const auto bytes = ReadFileBytes(path);
    if (!bytes)
    {
        throw std::runtime_error("cannot read " + Utf8(path));
    }
    m_bytes = *bytes;
    const auto start = static_cast<size_t>(ReadAt<IMAGE_DOS_HEADER>(0).e_lfanew);
    m_headers = ReadAt<IMAGE_NT_HEADERS64>(start);
    if (m_headers.Signature != IMAGE_NT_SIGNATURE ||
        m_headers.OptionalHeader.Magic != IMAGE_NT_OPTIONAL_HDR64_MAGIC)
    {
        throw std::runtime_error(Utf8(path) + " is no 64-bit image");
    }
    const size_t table =
        start + offsetof(IMAGE_NT_HEADERS64, OptionalHeader) + m_headers.FileHeader.SizeOfOptionalHeader;
    for (size_t i = 0; i < m_headers.FileHeader.NumberOfSections; ++i)
    {
        m_sections.push_back(ReadAt<IMAGE_SECTION_HEADER>(table + i * sizeof(IMAGE_SECTION_HEADER)));
    }
}

std::vector<CPeImage::Export> CPeImage::Exports() const
{
    std::vector<Export> exports;
    if (Directory(IMAGE_DIRECTORY_ENTRY_EXPORT).Size == 0)
    {
        return exports;
    }
    const auto directory =
        Read<IMAGE_EXPORT_DIRECTORY>(Directory(IMAGE_DIRECTORY_ENTRY_EXPORT).VirtualAddress);
    constexpr DWORD kAddress = sizeof(DWORD);
    constexpr DWORD kOrdinal = sizeof(WORD);
    for (DWORD i = 0; i < directory.NumberOfFunctions; ++i)
    {
        if (Read<DWORD>(directory.AddressOfFunctions + i * kAddress) == 0)
        {
            continue;
        }
        Export entry = {static_cast<WORD>(directory.Base + i), ""};
        for (DWORD name = 0; name < directory.NumberOfNames; ++name)
        {
            if (Read<WORD>(directory.AddressOfNameOrdinals + name * kOrdinal) == i)
            {
                entry.name = Text(Read<DWORD>(directory.AddressOfNames + name * kAddress));
            }
        }
        exports.push_back(std::move(entry));
    }
    return exports;
}

std::map<std::string, std::set<std::string>> CPeImage::Imports() const
{
    std::map<std::string, std::set<std::string>> imports;
    DWORD at = Directory(IMAGE_DIRECTORY_ENTRY_IMPORT).VirtualAddress;
    for (auto entry = Read<IMAGE_IMPORT_DESCRIPTOR>(at); entry.Name != 0;
         entry = Read<IMAGE_IMPORT_DESCRIPTOR>(at += sizeof entry))
    {
        std::string dll = Text(entry.Name);
        std::transform(dll.begin(), dll.end(), dll.begin(),
                       [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
        std::set<std::string>& functions = imports[dll];
        const DWORD thunks = entry.OriginalFirstThunk != 0 ? entry.OriginalFirstThunk : entry.FirstThunk;
        constexpr DWORD kThunk = sizeof(ULONGLONG);
        for (DWORD i = 0;; ++i)
        {
            const auto thunk = Read<ULONGLONG>(thunks + i * kThunk);
            if (thunk == 0)
            {
                break;
            }
            functions.insert((thunk & IMAGE_ORDINAL_FLAG64) != 0
                                 ? "#" + std::to_string(IMAGE_ORDINAL64(thunk))
                                 : Text(static_cast<DWORD>(thunk) + offsetof(IMAGE_IMPORT_BY_NAME, Name)));
        }
    }
    return imports;
}

std::vector<DWORD> CPeImage::TlsCallbacks() const
{
    std::vector<DWORD> callbacks;
    if (Directory(IMAGE_DIRECTORY_ENTRY_TLS).Size == 0)
    {
        return callbacks;
    }
    const auto directory = Read<IMAGE_TLS_DIRECTORY64>(Directory(IMAGE_DIRECTORY_ENTRY_TLS).VirtualAddress);
    const ULONGLONG base = m_headers.OptionalHeader.ImageBase;
    if (directory.AddressOfCallBacks == 0)
    {
        return callbacks;
    }
    for (auto at = static_cast<DWORD>(directory.AddressOfCallBacks - base);; at += sizeof(ULONGLONG))
    {
        const auto callback = Read<ULONGLONG>(at);
        if (callback == 0)
        {
            return callbacks;
        }
        callbacks.push_back(static_cast<DWORD>(callback - base));
    }
}

std::vector<std::string> CPeImage::Sections() const
{
    std::vector<std::string> names;
    for (const IMAGE_SECTION_HEADER& section : m_sections)
    {
        const auto* const name = reinterpret_cast<const char*>(section.Name);
        names.emplace_back(name, strnlen(name, IMAGE_SIZEOF_SHORT_NAME));
    }
    return names;
}

std::vector<std::string> CPeImage::WritableCode() const
{
    constexpr DWORD kBoth = IMAGE_SCN_MEM_WRITE | IMAGE_SCN_MEM_EXECUTE;
    std::vector<std::string> names = Sections();
    for (size_t i = m_sections.size(); i-- > 0;)
    {
        if ((m_sections[i].Characteristics & kBoth) != kBoth)
        {
            names.erase(names.begin() + static_cast<ptrdiff_t>(i));
        }
    }
    return names;
}

size_t CPeImage::Offset(DWORD address) const
{
    for (const IMAGE_SECTION_HEADER& section : m_sections)
    {
        if (address >= section.VirtualAddress && address - section.VirtualAddress < section.SizeOfRawData)
        {
            return section.PointerToRawData + (address - section.VirtualAddress);
        }
    }
    throw std::runtime_error("address outside of the file: " + std::to_string(address));
}

template <typename T> T CPeImage::ReadAt(size_t offset) const
{
    if (offset > m_bytes.size() || sizeof(T) > m_bytes.size() - offset)
    {
        throw std::runtime_error("read beyond the file's end");
    }
    T value;
    std::memcpy(&value, m_bytes.data() + offset, sizeof value);
    return value;
}

std::string CPeImage::Text(DWORD address) const
{
    const size_t offset = Offset(address);
    const size_t end = m_bytes.find('\0', offset);
    if (end == std::string::npos)
    {
        throw std::runtime_error("text beyond the file's end");
    }
    return m_bytes.substr(offset, end - offset);
}

} // namespace orva::test
