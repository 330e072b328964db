// Reading, writing and listing files, and the paths of the programs that the build made.
#pragma once

#include "harness/Waiting.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orva::test
{

/// A file's bytes, opened with full sharing; absent if it cannot be opened.
std::optional<std::string> ReadFileBytes(const std::wstring& path);
/// Creates or replaces a file. Throws std::runtime_error if that fails.
void WriteFileBytes(const std::wstring& path, std::string_view bytes);

bool FileExists(const std::wstring& path);
bool FolderExists(const std::wstring& path);
/// Removes a file, even if it is read-only, or a folder with its content. A missing path is no error.
void RemovePath(const std::wstring& path);

/// Everything below a folder, sorted, as paths relative to it; folders end with a backslash.
std::vector<std::wstring> ListFolder(const std::wstring& folder);

/// Waits until a file exists and holds at least `size` bytes.
bool WaitForFile(const std::wstring& path, size_t size = 0, DWORD timeout = kPatience);

/// The path of a program or DLL of the same build, for instance L"OrvaOscAddin.dll": the build puts all of
/// them into the folder of the test program.
std::wstring BuiltFile(const std::wstring& name);

} // namespace orva::test
