// The memory that a module has taken from the C run-time and not given back.
#pragma once

#include "harness/ImportHook.h"

#include <cstddef>
#include <map>
#include <mutex>

namespace orva::test
{

/// For its lifetime notes each block that `module` takes (malloc, calloc, realloc, and with them new) and
/// gives back, on whichever thread. One at a time. Throws std::runtime_error if the module does not import
/// these.
class CModuleBlocks
{
public:
    explicit CModuleBlocks(HMODULE module);
    ~CModuleBlocks();
    CModuleBlocks(const CModuleBlocks&) = delete;
    CModuleBlocks& operator=(const CModuleBlocks&) = delete;

    /// The bytes of the blocks that were taken since construction and not given back.
    long long Bytes() const;

private:
    static void* Allocate(std::size_t size);
    static void* AllocateZeroed(std::size_t count, std::size_t size);
    static void* Reallocate(void* block, std::size_t size);
    static void Free(void* block);
    void Note(void* block, std::size_t size);
    void Forget(const void* block);

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
