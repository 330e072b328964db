// Frees what g++'s static run-time library would leave behind in the host when the DLL is unloaded.
//
// Microsoft's run-time needs nothing of the kind; a build with that leaves this folder out. Three things
// would stay otherwise, at each unloading anew:
//
// - the memory that is kept for throwing exceptions when there is no other (some 70 KiB);
// - the unloading thread's exception state. The run-time frees it when the thread ends, which a host's thread
//   does not do for a DLL;
// - the thread-local storage index under which that state is found. A process has 1,088 of them, and the
//   run-time ends the process when it gets none.
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
    // The module's thread-local storage directory, which holds its callbacks.
    extern const IMAGE_TLS_DIRECTORY64 _tls_used;
    extern IMAGE_DOS_HEADER __ImageBase;

    // The linker's --wrap gives the first name to the import of TlsAlloc and lets calls go through the
    // second.
    extern DWORD(WINAPI* __real___imp_TlsAlloc)();
    extern DWORD(WINAPI* __wrap___imp_TlsAlloc)();
}

namespace
{

// More than the run-time ever asks for.
constinit std::array<DWORD, 16> g_tlsIndexes{};
constinit volatile LONG g_tlsIndexCount = 0;

// TlsAlloc for the whole module: remembers the index, to be freed at the end.
DWORD WINAPI AllocateTlsIndex()
{
    const DWORD index = __real___imp_TlsAlloc();
    if (index != TLS_OUT_OF_INDEXES)
    {
        const LONG place = InterlockedIncrement(&g_tlsIndexCount) - 1;
        if (place < static_cast<LONG>(g_tlsIndexes.size()))
        {
            g_tlsIndexes[static_cast<size_t>(place)] = index;
        }
    }
    return index;
}

// Does what the system does for each module when a thread ends: calls the module's callbacks.
void CallThreadDetachCallbacks()
{
    const auto* callback = std::bit_cast<const PIMAGE_TLS_CALLBACK*>(_tls_used.AddressOfCallBacks);
    for (; callback != nullptr && *callback != nullptr; ++callback)
    {
        (*callback)(&__ImageBase, DLL_THREAD_DETACH, nullptr);
    }
}

class CRunTimeRelease
{
public:
    CRunTimeRelease() = default;
    CRunTimeRelease(const CRunTimeRelease&) = delete;
    CRunTimeRelease& operator=(const CRunTimeRelease&) = delete;
    ~CRunTimeRelease()
    {
        __gnu_cxx::__freeres();
        CallThreadDetachCallbacks();
        const auto count = std::min(static_cast<size_t>(g_tlsIndexCount), g_tlsIndexes.size());
        for (size_t place = 0; place < count; ++place)
        {
            TlsFree(g_tlsIndexes[place]);
        }
    }
};

// Constructed before everything else, so destroyed after everything else: no exception may be thrown after
// this.
[[gnu::init_priority(101)]] const CRunTimeRelease g_runTimeRelease;

} // namespace

DWORD(WINAPI* __wrap___imp_TlsAlloc)() = &AllocateTlsIndex;
