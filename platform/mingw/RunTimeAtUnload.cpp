// Frees what g++'s static run-time library would leave behind in the host when the DLL is unloaded.
//
// Microsoft's run-time needs nothing of the kind; a build with that leaves this folder out. Four things would
// stay otherwise, at each unloading anew:
//
// - the memory that is kept for throwing exceptions when there is no other (some 70 KiB);
// - the unloading thread's exception state. The run-time frees it when the thread ends, which a host's thread
//   does not do for a DLL;
// - the thread-local storage index under which that state is found. A process has 1,088 of them, and the
//   run-time ends the process when it gets none;
// - the semaphores inside the run-time's statically constructed mutexes.
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

    // The linker's --wrap gives the first of two names to an import and lets calls go through the second.
    extern decltype(&TlsAlloc) __real___imp_TlsAlloc;
    extern decltype(&TlsAlloc) __wrap___imp_TlsAlloc;
    extern decltype(&CreateSemaphoreW) __real___imp_CreateSemaphoreW;
    extern decltype(&CreateSemaphoreW) __wrap___imp_CreateSemaphoreW;
}

namespace
{

// What the run-time has got from the system. Constant-initialized, because it asks before our constructors
// run.
template <class T> class CKept
{
public:
    void Add(T item)
    {
        const LONG place = InterlockedIncrement(&m_count) - 1;
        if (place < static_cast<LONG>(m_items.size()))
        {
            m_items[static_cast<size_t>(place)] = item;
        }
    }

    template <class Function> void FreeAll(Function* free)
    {
        const auto count = std::min(static_cast<size_t>(m_count), m_items.size());
        std::for_each_n(m_items.begin(), count, free);
    }

private:
    // More than the run-time ever asks for.
    std::array<T, 16> m_items{};
    LONG m_count = 0;
};

constinit CKept<DWORD> g_tlsIndexes;
constinit CKept<HANDLE> g_semaphores;

DWORD WINAPI AllocateTlsIndex()
{
    const DWORD index = __real___imp_TlsAlloc();
    if (index != TLS_OUT_OF_INDEXES)
    {
        g_tlsIndexes.Add(index);
    }
    return index;
}

// Nobody but the run-time makes semaphores in this module.
HANDLE WINAPI CreateRunTimeSemaphore(SECURITY_ATTRIBUTES* attributes, LONG count, LONG maximum, LPCWSTR name)
{
    const HANDLE semaphore = __real___imp_CreateSemaphoreW(attributes, count, maximum, name);
    if (semaphore != nullptr)
    {
        g_semaphores.Add(semaphore);
    }
    return semaphore;
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
        g_tlsIndexes.FreeAll(&TlsFree);
        g_semaphores.FreeAll(&CloseHandle);
    }
};

// Constructed before everything else, so destroyed after everything else: no exception may be thrown after
// this.
[[gnu::init_priority(101)]] const CRunTimeRelease g_runTimeRelease;

} // namespace

decltype(&TlsAlloc) __wrap___imp_TlsAlloc = &AllocateTlsIndex;
decltype(&CreateSemaphoreW) __wrap___imp_CreateSemaphoreW = &CreateRunTimeSemaphore;
