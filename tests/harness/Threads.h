// The threads of this process.
#pragma once

#include <windows.h>

#include <set>

namespace orva::test
{

/// The ids of all threads of this process that run now.
std::set<DWORD> ThreadIds();

} // namespace orva::test
