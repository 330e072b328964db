#include "harness/Wine.h"

#include <windows.h>

namespace orva::test
{

bool IsWine()
{
    return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
}

} // namespace orva::test
