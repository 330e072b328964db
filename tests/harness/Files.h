// Files as tests see them: bytes, listings, and the programs that the build left beside the test program.
#pragma once

#include "harness/Waiting.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orva::test
{

/// A file's bytes, read with sharing that denies nothing; absent if it cannot be opened.
std::optional<std::string> ReadFileBytes(const std::wstring& path);
/// Writes a file anew. Throws std::runtime_error if it cannot.
void WriteFileBytes(const std::wstring& path, std::string_view bytes);

bool FileExists(const std::wstring& path);
bool FolderExists(const std::wstring& path);
/// Removes a file, read-only ones too, or a folder with all that it holds; nothing there is no error.
void RemovePath(const std::wstring& path);

/// Everything below a folder, sorted, as paths relative to it; folders end with a backslash.
std::vector<std::wstring> ListFolder(const std::wstring& folder);

/// Waits until a file exists and holds at least `size` bytes.
bool WaitForFile(const std::wstring& path, size_t size = 0, DWORD timeout = kPatience);

/// The path of a program or DLL of the same build, for instance L"OrvaOscAddin.dll": the build puts all of
/// them into the folder of the test program.
std::wstring BuiltFile(const std::wstring& name);

} // namespace orva::test
