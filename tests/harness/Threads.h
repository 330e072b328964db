// The threads of this process.
#pragma once

#include <windows.h>

#include <set>

namespace orva::test
{

/// The ids of all running threads of this process.
std::set<DWORD> ThreadIds();

} // namespace orva::test
