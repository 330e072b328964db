// The memory that a module has allocated with the C runtime and not freed.
#pragma once

#include "harness/ImportHook.h"

#include <cstddef>
#include <map>
#include <mutex>

namespace orva::test
{

/// During its lifetime records each block that `module` allocates (malloc, calloc, realloc, and with them
/// new) and frees, on any thread. One object at a time. Throws std::runtime_error if the module does not
/// import these.
class CModuleBlocks
{
public:
    explicit CModuleBlocks(HMODULE module);
    ~CModuleBlocks();
    CModuleBlocks(const CModuleBlocks&) = delete;
    CModuleBlocks& operator=(const CModuleBlocks&) = delete;

    /// The bytes that were allocated since construction and not freed.
    long long Bytes() const;

private:
    static void* Allocate(std::size_t size);
    static void* AllocateZeroed(std::size_t count, std::size_t size);
    static void* Reallocate(void* block, std::size_t size);
    static void Free(void* block);
    void Add(void* block, std::size_t size);
    void Remove(const void* block);

    // Returns `module`: the first hook may be called as soon as it is made, and needs the object.
    HMODULE BecomeCurrent(HMODULE module);

    static CModuleBlocks* s_current;

    mutable std::mutex m_mutex;
    std::map<const void*, std::size_t> m_blocks;
    CImportHook m_malloc;
    CImportHook m_calloc;
    CImportHook m_realloc;
    CImportHook m_free;
};

} // namespace orva::test
