#include "harness/Thorough.h"

#include <windows.h>

namespace orva::test
{

bool IsThorough()
{
    // The length includes the terminator.
    return GetEnvironmentVariableW(L"ORVA_THOROUGH", nullptr, 0) > 1;
}

int Repetitions(int few, int many)
{
    return IsThorough() ? many : few;
}

} // namespace orva::test
