#include "platform/mingw/ThreadMemory.h"

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace
{

// Stands before each piece of memory, whose alignment it keeps.
struct alignas(std::max_align_t) CPiece
{
    CPiece* next;
    CPiece* previous;
};

// The system's lock: one of the thread library's own would need memory itself.
constinit SRWLOCK g_lock = SRWLOCK_INIT;
constinit CPiece* g_first = nullptr;

class CLock
{
public:
    CLock() noexcept { AcquireSRWLockExclusive(&g_lock); }
    ~CLock() { ReleaseSRWLockExclusive(&g_lock); }
    CLock(const CLock&) = delete;
    CLock& operator=(const CLock&) = delete;
};

CPiece* PieceOf(void* memory) noexcept
{
    return static_cast<CPiece*>(memory) - 1;
}

void* Insert(CPiece* piece) noexcept
{
    piece->previous = nullptr;
    piece->next = g_first;
    if (g_first != nullptr)
    {
        g_first->previous = piece;
    }
    g_first = piece;
    return piece + 1;
}

void Remove(const CPiece* piece) noexcept
{
    (piece->previous != nullptr ? piece->previous->next : g_first) = piece->next;
    if (piece->next != nullptr)
    {
        piece->next->previous = piece->previous;
    }
}

} // namespace

extern "C"
{
    void* OrvaThreadMalloc(size_t size) noexcept
    {
        if (size > SIZE_MAX - sizeof(CPiece))
        {
            return nullptr;
        }
        auto* const piece = static_cast<CPiece*>(malloc(sizeof(CPiece) + size));
        const CLock lock;
        return piece != nullptr ? Insert(piece) : nullptr;
    }

    void* OrvaThreadCalloc(size_t count, size_t size) noexcept
    {
        if (size != 0 && count > SIZE_MAX / size)
        {
            return nullptr;
        }
        void* const memory = OrvaThreadMalloc(count * size);
        return memory != nullptr ? memset(memory, 0, count * size) : nullptr;
    }

    void OrvaThreadFree(void* memory) noexcept
    {
        if (memory == nullptr)
        {
            return;
        }
        CPiece* const piece = PieceOf(memory);
        {
            const CLock lock;
            Remove(piece);
        }
        free(piece);
    }

    void* OrvaThreadRealloc(void* memory, size_t size) noexcept
    {
        if (memory == nullptr)
        {
            return OrvaThreadMalloc(size);
        }
        if (size > SIZE_MAX - sizeof(CPiece))
        {
            return nullptr;
        }
        CPiece* const piece = PieceOf(memory);
        const CLock lock;
        Remove(piece);
        auto* const grown = static_cast<CPiece*>(realloc(piece, sizeof(CPiece) + size));
        if (grown == nullptr)
        {
            // A failed realloc leaves the memory as it was.
            Insert(piece);
            return nullptr;
        }
        return Insert(grown);
    }

    char* OrvaThreadStrdup(const char* text) noexcept
    {
        const size_t size = strlen(text) + 1;
        void* const copy = OrvaThreadMalloc(size);
        return copy != nullptr ? static_cast<char*>(memcpy(copy, text, size)) : nullptr;
    }
}

void FreeThreadMemory() noexcept
{
    // Without the lock: no other thread is in this module any more. When the process ends, one may have been
    // ended while it held the lock.
    while (g_first != nullptr)
    {
        CPiece* const piece = g_first;
        g_first = piece->next;
        free(piece);
    }
}
