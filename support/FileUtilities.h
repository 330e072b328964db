// File-system operations behind the debug log's file.
#pragma once

#include <cstdint>
#include <string>

/// The add-in's folder under the user's local application data, "...\ORVA Connector\" with its closing
/// backslash; empty if the system does not give that folder, or it does not exist. Creates nothing.
std::wstring GetAppDataFolder();

/// Creates every folder named by the text before a backslash of `path` and, if `isFile` is false, `path`
/// itself. Failures (the folder exists, a drive's root) are ignored.
///
/// Returns whether the whole path exists now if it names a file, else whether the path up to its last
/// backslash exists.
bool CreateDirectoriesForPath(std::wstring path, bool isFile);

/// The size of a file in bytes; 0 if it does not exist or cannot be opened by its narrow path.
std::int32_t GetExistingFileSize(std::wstring path);
