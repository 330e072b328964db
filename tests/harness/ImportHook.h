// Puts a function of the test's own in the place of one that a module imports.
#pragma once

#include <windows.h>

#include <bit>

namespace orva::test
{

/// For its lifetime calls of `function` of `dll` that `module` makes through its import table reach
/// `replacement`. Several hooks of one import stack up: the last made is called first and must be the first
/// to go. Throws std::runtime_error if the module has no such import by name.
class CImportHook
{
public:
    template <typename Function>
    CImportHook(HMODULE module, const char* dll, const char* function, Function* replacement)
        : m_slot(FindSlot(module, dll, function)), m_original(*m_slot)
    {
        Write(std::bit_cast<void*>(replacement));
    }
    ~CImportHook() { Write(m_original); }
    CImportHook(const CImportHook&) = delete;
    CImportHook& operator=(const CImportHook&) = delete;

    /// What the module called before, to be called with the type of the replacement.
    template <typename Function> Function* Original() const { return std::bit_cast<Function*>(m_original); }

private:
    static void** FindSlot(HMODULE module, const char* dll, const char* function);
    void Write(void* address);

    void** m_slot;
    void* m_original;
};

} // namespace orva::test
