#include "long_run/ModuleBlocks.h"

#include <numeric>

namespace orva::test
{
namespace
{

constexpr char kRunTime[] = "msvcrt.dll";

} // namespace

CModuleBlocks* CModuleBlocks::s_current = nullptr;

CModuleBlocks::CModuleBlocks(HMODULE module)
    : m_malloc(BecomeCurrent(module), kRunTime, "malloc", &Allocate),
      m_calloc(module, kRunTime, "calloc", &AllocateZeroed),
      m_realloc(module, kRunTime, "realloc", &Reallocate), m_free(module, kRunTime, "free", &Free)
{
}

CModuleBlocks::~CModuleBlocks() = default;

HMODULE CModuleBlocks::BecomeCurrent(HMODULE module)
{
    s_current = this;
    return module;
}

long long CModuleBlocks::Bytes() const
{
    const std::lock_guard lock(m_mutex);
    return std::accumulate(m_blocks.begin(), m_blocks.end(), 0LL, [](long long sum, const auto& block) {
        return sum + static_cast<long long>(block.second);
    });
}

void CModuleBlocks::Add(void* block, std::size_t size)
{
    if (block != nullptr)
    {
        const std::lock_guard lock(m_mutex);
        m_blocks[block] = size;
    }
}

void CModuleBlocks::Remove(const void* block)
{
    const std::lock_guard lock(m_mutex);
    m_blocks.erase(block);
}

void* CModuleBlocks::Allocate(std::size_t size)
{
    void* const block = s_current->m_malloc.Original<decltype(Allocate)>()(size);
    s_current->Add(block, size);
    return block;
}

void* CModuleBlocks::AllocateZeroed(std::size_t count, std::size_t size)
{
    void* const block = s_current->m_calloc.Original<decltype(AllocateZeroed)>()(count, size);
    s_current->Add(block, count * size);
    return block;
}

void* CModuleBlocks::Reallocate(void* block, std::size_t size)
{
    // Removed first, because realloc may give the address to another thread.
    s_current->Remove(block);
    void* const moved = s_current->m_realloc.Original<decltype(Reallocate)>()(block, size);
    s_current->Add(moved, size);
    return moved;
}

void CModuleBlocks::Free(void* block)
{
    s_current->Remove(block);
    s_current->m_free.Original<decltype(Free)>()(block);
}

} // namespace orva::test
