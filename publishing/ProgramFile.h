// What the head of a file says of it as a program for Windows.
#pragma once

#include <string>

namespace publishing
{

/// 64 or 32 for a program (x64 or x86) with all bytes of its sections; 0 for any other file, a DLL too. What
/// stands behind the sections, as the payload of a setup program does, is not looked at.
int ProgramBits(const std::string& bytes);

/// The first three numbers of the version resource's file version, "1.3.0". Empty without one.
std::wstring VersionResourceOf(const std::wstring& path);

} // namespace publishing
