// What this process holds of the system: handles, GDI and USER objects, memory, threads.
#pragma once

#include <windows.h>

#include <string>

namespace orva::test
{

/// What is counted where the system does not count it itself (Wine 8's GetGuiResources gives 0): GDI objects
/// are the used entries of the process's GDI handle table, USER objects are this process's windows and menus.
struct CProcessFigures
{
    long long handles = 0;
    long long gdiObjects = 0;
    long long userObjects = 0;
    long long privateKib = 0;
    /// Bytes in use in all heaps.
    long long heapBytes = 0;
    long long threads = 0;

    /// The process as it is now, once threads that are about to end have had the time to.
    static CProcessFigures Take();
    CProcessFigures operator-(const CProcessFigures& before) const;
};

/// How many handles or threads the system may keep for itself, however often something is done.
inline constexpr long long kSlack = 4;

/// "before -> after"
std::string FromTo(long long before, long long after);

} // namespace orva::test
