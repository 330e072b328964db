// What the head of a file says of it as a program for Windows.
#pragma once

#include <string>

namespace publishing
{

/// 64 or 32 for a program (x64 or x86) that this file holds whole; 0 for any other file, a DLL too.
int ProgramBits(const std::string& bytes);

/// The first three numbers of the version resource's file version, "1.3.0". Empty without one.
std::wstring VersionResourceOf(const std::wstring& path);

} // namespace publishing
