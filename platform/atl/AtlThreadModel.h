// How objects are counted and locked, by the threads that may use them (part of <atlcom.h>).
#pragma once

#include "platform/atl/atlcore.h"

namespace ATL
{

/// Counting and locking for objects that live in one apartment.
class CComSingleThreadModel
{
public:
    static ULONG WINAPI Increment(LPLONG p) noexcept { return static_cast<ULONG>(++*p); }
    static ULONG WINAPI Decrement(LPLONG p) noexcept { return static_cast<ULONG>(--*p); }
    typedef CComFakeCriticalSection AutoCriticalSection;
    typedef CComFakeCriticalSection CriticalSection;
    typedef CComSingleThreadModel ThreadModelNoCS;
};

/// Counting for objects that any thread may use and that need no lock.
class CComMultiThreadModelNoCS
{
public:
    static ULONG WINAPI Increment(LPLONG p) noexcept { return static_cast<ULONG>(InterlockedIncrement(p)); }
    static ULONG WINAPI Decrement(LPLONG p) noexcept { return static_cast<ULONG>(InterlockedDecrement(p)); }
    typedef CComFakeCriticalSection AutoCriticalSection;
    typedef CComFakeCriticalSection CriticalSection;
    typedef CComMultiThreadModelNoCS ThreadModelNoCS;
};

/// Counting and locking for objects that any thread may use.
class CComMultiThreadModel
{
public:
    static ULONG WINAPI Increment(LPLONG p) noexcept { return static_cast<ULONG>(InterlockedIncrement(p)); }
    static ULONG WINAPI Decrement(LPLONG p) noexcept { return static_cast<ULONG>(InterlockedDecrement(p)); }
    typedef CComAutoCriticalSection AutoCriticalSection;
    typedef CComCriticalSection CriticalSection;
    typedef CComMultiThreadModelNoCS ThreadModelNoCS;
};

typedef CComMultiThreadModel CComGlobalsThreadModel;
#ifdef _ATL_APARTMENT_THREADED
typedef CComSingleThreadModel CComObjectThreadModel;
#else
typedef CComMultiThreadModel CComObjectThreadModel;
#endif

} // namespace ATL
