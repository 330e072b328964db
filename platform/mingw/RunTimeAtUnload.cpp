// Takes back what g++'s static run-time library leaves behind in the host when the DLL is unloaded.
//
// Microsoft's run-time needs nothing of the kind; a build with that leaves this folder out. Four things stay
// otherwise, at each unloading anew:
//
// - the memory that is kept for throwing exceptions when there is no more (71 KiB);
// - the event and the thread handle in the record of the thread that unloads. The run-time closes them when
//   the thread ends, which a host's thread does not do for a DLL;
// - the records of threads and of mutexes themselves (528 bytes after the shortest use);
// - the thread-local storage index under which these records are found. A process has 1,088 of them, and the
//   run-time ends the process when it gets none.
#include "platform/mingw/ThreadMemory.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <bit>

namespace __gnu_cxx
{
// In the run-time, but in none of its headers.
void __freeres();
} // namespace __gnu_cxx

extern "C"
{
    // The module's thread-local storage as its header has it, callbacks included.
    extern const IMAGE_TLS_DIRECTORY64 _tls_used;
    extern IMAGE_DOS_HEADER __ImageBase;

    // The linker gives this name to the import of TlsAlloc, and the next one to the references to it.
    extern DWORD(WINAPI* __real___imp_TlsAlloc)();
    extern DWORD(WINAPI* __wrap___imp_TlsAlloc)();
}

namespace
{

// More than the run-time ever asks for.
constinit std::array<DWORD, 16> g_indexes{};
constinit volatile LONG g_count = 0;

DWORD WINAPI AllocateAndNote()
{
    const DWORD index = __real___imp_TlsAlloc();
    if (index != TLS_OUT_OF_INDEXES)
    {
        const LONG place = InterlockedIncrement(&g_count) - 1;
        if (place < static_cast<LONG>(g_indexes.size()))
        {
            g_indexes[static_cast<size_t>(place)] = index;
        }
    }
    return index;
}

// What the system does for each module when a thread ends.
void EndThreadInThisModule()
{
    const auto* callback = std::bit_cast<const PIMAGE_TLS_CALLBACK*>(_tls_used.AddressOfCallBacks);
    for (; callback != nullptr && *callback != nullptr; ++callback)
    {
        (*callback)(&__ImageBase, DLL_THREAD_DETACH, nullptr);
    }
}

struct CTakenBack
{
    CTakenBack() = default;
    CTakenBack(const CTakenBack&) = delete;
    CTakenBack& operator=(const CTakenBack&) = delete;
    ~CTakenBack()
    {
        __gnu_cxx::__freeres();
        EndThreadInThisModule();
        const auto count = std::min(static_cast<size_t>(g_count), g_indexes.size());
        for (size_t place = 0; place < count; ++place)
        {
            TlsFree(g_indexes[place]);
        }
        FreeThreadMemory();
    }
};

// Constructed before everything else, so destroyed after everything else: nothing may use the run-time's
// threads after this.
[[gnu::init_priority(101)]] const CTakenBack g_takenBack;

} // namespace

DWORD(WINAPI* __wrap___imp_TlsAlloc)() = &AllocateAndNote;
