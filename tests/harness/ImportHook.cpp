#include "harness/ImportHook.h"

#include <cstring>
#include <stdexcept>
#include <string>

namespace orva::test
{

void** CImportHook::FindSlot(HMODULE module, const char* dll, const char* function)
{
    auto* const base = reinterpret_cast<char*>(module);
    const auto* const headers =
        reinterpret_cast<const IMAGE_NT_HEADERS*>(base + reinterpret_cast<IMAGE_DOS_HEADER*>(base)->e_lfanew);
    const IMAGE_DATA_DIRECTORY& directory =
        headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    const auto* descriptor =
        reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + directory.VirtualAddress);
    for (; directory.Size != 0 && descriptor->Name != 0; ++descriptor)
    {
        if (_stricmp(base + descriptor->Name, dll) != 0)
        {
            continue;
        }
        const auto* name = reinterpret_cast<const IMAGE_THUNK_DATA*>(base + descriptor->OriginalFirstThunk);
        auto* slot = reinterpret_cast<void**>(base + descriptor->FirstThunk);
        for (; name->u1.AddressOfData != 0; ++name, ++slot)
        {
            if (!IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal) &&
                std::strcmp(
                    reinterpret_cast<const char*>(
                        reinterpret_cast<const IMAGE_IMPORT_BY_NAME*>(base + name->u1.AddressOfData)->Name),
                    function) == 0)
            {
                return slot;
            }
        }
    }
    throw std::runtime_error(std::string("the module does not import ") + function + " of " + dll);
}

void CImportHook::Write(void* address)
{
    DWORD protection = 0;
    VirtualProtect(m_slot, sizeof *m_slot, PAGE_READWRITE, &protection);
    InterlockedExchangePointer(m_slot, address);
    VirtualProtect(m_slot, sizeof *m_slot, protection, &protection);
}

} // namespace orva::test
