// Whether the tests run under Wine, which differs from Windows in places.
#pragma once

#include <windows.h>

namespace orva::test
{

inline bool IsWine()
{
    return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
}

} // namespace orva::test
