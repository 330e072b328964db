// Looks up functions that a library may lack.
#pragma once

#include <windows.h>

#include <cstring>

namespace orva::host
{

/// The exported function as a pointer of type `Function`; null when the library has none of that name.
template <typename Function> Function FindFunction(HMODULE library, const char* name)
{
    const FARPROC found = GetProcAddress(library, name);
    Function function = nullptr;
    static_assert(sizeof(function) == sizeof(found));
    std::memcpy(&function, &found, sizeof(function));
    return function;
}

} // namespace orva::host
