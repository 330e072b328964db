// Reading files, and a temporary one.
#pragma once

#include <string>

namespace publishing
{

/// The bytes of a file, at most a gigabyte. Throws CUsageError if it cannot be read.
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
