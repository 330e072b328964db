// The resources of this process: handles, GDI and USER objects, memory, threads.
#pragma once

#include <windows.h>

namespace orva::test
{

/// Where GetGuiResources returns 0 (Wine 8), GDI objects are the used entries of the process's GDI handle
/// table, and USER objects are its windows and menus.
struct CProcessFigures
{
    long long handles = 0;
    long long gdiObjects = 0;
    long long userObjects = 0;
    long long privateKib = 0;
    /// Bytes in use in all heaps of the process.
    long long heapBytes = 0;
    long long threads = 0;

    /// Counts now, after waiting for threads that are about to end.
    static CProcessFigures Take();
    CProcessFigures operator-(const CProcessFigures& before) const;
};

/// How many handles or threads the system may keep for itself, however often something is done.
inline constexpr long long kSlack = 4;

} // namespace orva::test
