// Reads a 64-bit PE file as the system maps it, without running any of its code: what it imports, exports and
// asks of the loader.
#pragma once

#include <windows.h>

#include <map>
#include <set>
#include <string>
#include <vector>

namespace orva::test
{

class CPeImage
{
public:
    /// Maps the file at `path`. Throws std::runtime_error if that fails or it is no 64-bit image.
    explicit CPeImage(const std::wstring& path);
    ~CPeImage() { UnmapViewOfFile(m_base); }
    CPeImage(const CPeImage&) = delete;
    CPeImage& operator=(const CPeImage&) = delete;

    const IMAGE_NT_HEADERS64& Headers() const
    {
        return *At<IMAGE_NT_HEADERS64>(static_cast<DWORD>(At<IMAGE_DOS_HEADER>(0)->e_lfanew));
    }
    const IMAGE_DATA_DIRECTORY& Directory(int index) const
    {
        return Headers().OptionalHeader.DataDirectory[index];
    }

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

    /// The number of functions that the loader calls for each thread.
    size_t CountTlsCallbacks() const;

    /// Names of the sections that have all of these characteristics.
    std::vector<std::string> Sections(DWORD characteristics = 0) const;

private:
    // What lies at an address relative to the image.
    template <typename T> const T* At(DWORD address) const
    {
        return reinterpret_cast<const T*>(m_base + address);
    }

    const char* m_base;
};

} // namespace orva::test
