// Reading files, and a temporary one.
#pragma once

#include <cstddef>
#include <memory>
#include <string>

namespace publishing
{

struct FileCloser
{
    void operator()(void* file) const noexcept;
};
/// Of a handle.
using UniqueFile = std::unique_ptr<void, FileCloser>;

/// The most bytes that are read, of a file or a reply: less than 2 GiB, as the add-in's downloads have.
constexpr std::size_t kLargestFile = (std::size_t{1} << 31) - 1;

/// Null if the file cannot be opened.
UniqueFile OpenForReading(const std::wstring& path);

/// All bytes of a file. Throws CUsageError if it cannot be read to its end, or is larger than kLargestFile.
std::string ReadWholeFile(const std::wstring& path);

/// A file in the temporary folder with these bytes, deleted at the end of the object's life.
class CTemporaryFile
{
public:
    /// Throws CUsageError if it cannot be written.
    explicit CTemporaryFile(const std::string& bytes);
    ~CTemporaryFile();
    CTemporaryFile(const CTemporaryFile&) = delete;
    CTemporaryFile& operator=(const CTemporaryFile&) = delete;

    const std::wstring& Path() const { return m_path; }

private:
    std::wstring m_path;
};

} // namespace publishing
