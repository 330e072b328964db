#include "long_run/ProcessFigures.h"

#include "harness/Threads.h"
#include "harness/Waiting.h"

#include <winternl.h>

#include <algorithm>
#include <array>

namespace orva::test
{
namespace
{

// An entry of the GDI handle table. Free entries have type 0.
struct GdiEntry
{
    ULONG64 object;
    ULONG owner;
    USHORT unique;
    UCHAR type;
    UCHAR flags;
    ULONG64 userPointer;
};

// The table's offset in the process environment block of 64-bit Windows, and its length.
constexpr size_t kGdiTableOffset = 0xF8;
constexpr size_t kGdiEntries = 0x4000;

// Window and menu handles are even numbers in this range; the upper half of a handle only guards against
// reuse.
constexpr ULONG_PTR kFirstUserHandle = 0x20;
constexpr ULONG_PTR kEndOfUserHandles = 0x10000;

long long CountGdiObjects()
{
    if (const DWORD counted = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS))
    {
        return counted;
    }
    const char* const block = reinterpret_cast<const char*>(NtCurrentTeb()->ProcessEnvironmentBlock);
    const auto* const table = *reinterpret_cast<const GdiEntry* const*>(block + kGdiTableOffset);
    long long count = 0;
    for (size_t index = 0; table != nullptr && index < kGdiEntries; ++index)
    {
        count += table[index].type != 0;
    }
    return count;
}

long long CountUserObjects()
{
    if (const DWORD counted = GetGuiResources(GetCurrentProcess(), GR_USEROBJECTS))
    {
        return counted;
    }
    long long count = 0;
    for (ULONG_PTR handle = kFirstUserHandle; handle < kEndOfUserHandles; handle += 2)
    {
        const HWND window = reinterpret_cast<HWND>(handle);
        DWORD process = 0;
        GetWindowThreadProcessId(window, &process);
        count +=
            process == GetCurrentProcessId() || (process == 0 && IsMenu(reinterpret_cast<HMENU>(handle)));
    }
    return count;
}

// Kernel handles are multiples of four.
constexpr ULONG_PTR kEndOfHandles = 0x4000;

// Tests every possible handle, because Wine 8 has no count: GetProcessHandleCount returns 0, and the process
// list has the size of the table.
long long CountHandles()
{
    long long count = 0;
    for (ULONG_PTR handle = 4; handle < kEndOfHandles; handle += 4)
    {
        DWORD flags = 0;
        count += GetHandleInformation(reinterpret_cast<HANDLE>(handle), &flags) != FALSE;
    }
    return count;
}

// The committed private memory.
long long CountPrivateBytes()
{
    long long bytes = 0;
    MEMORY_BASIC_INFORMATION region{};
    for (const char* address = nullptr; VirtualQuery(address, &region, sizeof region) == sizeof region;
         address = static_cast<const char*>(region.BaseAddress) + region.RegionSize)
    {
        if (region.State == MEM_COMMIT && region.Type == MEM_PRIVATE)
        {
            bytes += static_cast<long long>(region.RegionSize);
        }
    }
    return bytes;
}

// The bytes of all heap blocks in use.
long long CountHeapBytes()
{
    std::array<HANDLE, 64> heaps{};
    const DWORD count = std::min<DWORD>(GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data()),
                                        static_cast<DWORD>(heaps.size()));
    long long bytes = 0;
    for (DWORD index = 0; index < count; ++index)
    {
        HeapLock(heaps[index]);
        PROCESS_HEAP_ENTRY entry{};
        while (HeapWalk(heaps[index], &entry))
        {
            bytes += (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0 ? entry.cbData : 0;
        }
        HeapUnlock(heaps[index]);
    }
    return bytes;
}

// Waits for threads that are about to end: until the number of threads has not changed for a while.
void Settle()
{
    long long last = 0;
    int same = 0;
    WaitUntil(
        [&] {
            const long long threads = static_cast<long long>(ThreadIds().size());
            same = threads == last ? same + 1 : 0;
            last = threads;
            Sleep(20);
            return same >= 10;
        },
        3'000);
}

} // namespace

CProcessFigures CProcessFigures::Take()
{
    Settle();
    CProcessFigures figures;
    figures.handles = CountHandles();
    figures.threads = static_cast<long long>(ThreadIds().size());
    figures.gdiObjects = CountGdiObjects();
    figures.userObjects = CountUserObjects();
    figures.privateKib = CountPrivateBytes() / 1024;
    figures.heapBytes = CountHeapBytes();
    return figures;
}

CProcessFigures CProcessFigures::operator-(const CProcessFigures& before) const
{
    return {handles - before.handles,       gdiObjects - before.gdiObjects, userObjects - before.userObjects,
            privateKib - before.privateKib, heapBytes - before.heapBytes,   threads - before.threads};
}

} // namespace orva::test
