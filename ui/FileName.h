// Checks the file name of a download link before it becomes part of a path.
#pragma once

#include <string_view>

/// Whether `name` names one ordinary file in the folder it is put into.
///
/// The name comes from outside. Not ordinary: an empty name; one of only dots and blanks (Windows drops
/// those, and what is left is the folder or its parent); one with a path separator, a colon (a drive or an
/// alternate data stream) or a control character; one that Windows reserves for a device or the console.
/// Other characters that no file name may have ('*', '?', ...) are left to CreateFileW.
bool IsPlainFileName(std::wstring_view name);
