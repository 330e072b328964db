// Basic macros of the COM layer: assertions, checks that throw, class attributes.
//
// Left out: tracing (ATLTRACE) and everything that selects a threading or linking model by macro.
// Otherwise than the original: ATLASSERT checks in builds with _DEBUG only, through the C library's assert.
#pragma once

#include <windows.h>

#include <cassert>

#ifdef _DEBUG
#define ATLASSERT(expr) assert(expr)
#else
#define ATLASSERT(expr) ((void)0)
#endif

// Throws CAtlException(hr) when the expression is false, in every build.
#define ATLENSURE_THROW(expr, hr)                                                                            \
    do                                                                                                       \
    {                                                                                                        \
        if (!(expr))                                                                                         \
            ATL::AtlThrow(hr);                                                                               \
    } while (false)

// Throws CAtlException(E_FAIL) when the expression is false, in every build.
#define ATLENSURE(expr) ATLENSURE_THROW(expr, E_FAIL)

// Returns hr from the calling function when the expression is false.
#define ATLENSURE_RETURN_HR(expr, hr)                                                                        \
    do                                                                                                       \
    {                                                                                                        \
        if (!(expr))                                                                                         \
            return hr;                                                                                       \
    } while (false)

// A hint to compilers that can drop the virtual tables of abstract bases; g++ has no such attribute.
#define ATL_NO_VTABLE

// The interface id that belongs to an interface type.
#define _ATL_IIDOF(x) __uuidof(x)

// Any address that suits every class; offsets of bases are measured from it.
#define _ATL_PACKING 8

// The distance in bytes from the start of `derived` to its base `base`.
#define offsetofclass(base, derived)                                                                         \
    (reinterpret_cast<DWORD_PTR>(static_cast<typename std::add_pointer<base>::type>(                         \
         reinterpret_cast<typename std::add_pointer<derived>::type>(_ATL_PACKING))) -                        \
     _ATL_PACKING)
