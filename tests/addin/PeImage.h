// Reads a 64-bit PE file as it lies on disk: what it imports, exports and asks of the loader.
#pragma once

#include <windows.h>

#include <map>
#include <set>
#include <string>
#include <vector>

namespace orva::test
{

/// The file's bytes and what its headers say. Every read is checked against the file's end; a malformed file
/// throws std::runtime_error.
class CPeImage
{
public:
    /// Reads the file at `path`.
    explicit CPeImage(const std::wstring& path);

    const IMAGE_NT_HEADERS64& Headers() const { return m_headers; }

    struct Export
    {
        WORD ordinal = 0;
        std::string name;
        bool operator==(const Export&) const = default;
    };
    /// Every exported address in the order of ordinals; one without a name has an empty one.
    std::vector<Export> Exports() const;

    /// The imported functions of each DLL, its name in capitals. An import by ordinal is "#" and the number.
    std::map<std::string, std::set<std::string>> Imports() const;
    /// The DLLs that are imported at the first call.
    bool HasDelayedImports() const { return Directory(IMAGE_DIRECTORY_ENTRY_DELAY_IMPORT).Size != 0; }

    /// Addresses (relative to the image) of the functions that the loader calls for each thread.
    std::vector<DWORD> TlsCallbacks() const;

    /// Names of the sections.
    std::vector<std::string> Sections() const;
    /// Names of sections that are writable and executable at once.
    std::vector<std::string> WritableCode() const;

private:
    const IMAGE_DATA_DIRECTORY& Directory(int index) const
    {
        return m_headers.OptionalHeader.DataDirectory[index];
    }
    /// Offset in the file of an address relative to the image.
    size_t Offset(DWORD address) const;
    template <typename T> T ReadAt(size_t offset) const;
    template <typename T> T Read(DWORD address) const { return ReadAt<T>(Offset(address)); }
    std::string Text(DWORD address) const;

    std::string m_bytes;
    IMAGE_NT_HEADERS64 m_headers;
    std::vector<IMAGE_SECTION_HEADER> m_sections;
};

} // namespace orva::test
