#include "host/TypeLibraries.h"

#include "host/FindFunction.h"

#include <AddInDesignerObjects.h>
#include <Office.h>

#include <wrl/client.h>

#include <windows.h>
#include <oleauto.h>

#include <string>

namespace orva::host
{
namespace
{

using Microsoft::WRL::ComPtr;

struct Library
{
    const wchar_t* name;
    const GUID& id;
    WORD major;
    WORD minor;
    // Number of the TYPELIB resource of this program.
    const wchar_t* resource;
};

const Library kLibraries[] = {
    {L"AddInDesignerObjects", LIBID_AddInDesignerObjects, 1, 0, L"1"},
    {L"Office", LIBID_Office, 2, 4, L"2"},
};

bool IsRegistered(const Library& library)
{
    ComPtr<ITypeLib> found;
    return SUCCEEDED(LoadRegTypeLib(library.id, library.major, library.minor, 0, &found));
}

HRESULT Register(const Library& library, const std::wstring& program)
{
    // Not const: the registering functions take a writable path.
    std::wstring path = program + L"\\" + library.resource;
    ComPtr<ITypeLib> loaded;
    HRESULT result = LoadTypeLibEx(path.c_str(), REGKIND_NONE, &loaded);
    if (FAILED(result))
    {
        return result;
    }
    // For the current user if LoadRegTypeLib then finds it, otherwise for the machine.
    const auto registerForUser = FindFunction<HRESULT(STDAPICALLTYPE*)(ITypeLib*, OLECHAR*, OLECHAR*)>(
        GetModuleHandleW(L"oleaut32.dll"), "RegisterTypeLibForUser");
    result = registerForUser != nullptr ? registerForUser(loaded.Get(), path.data(), nullptr) : E_NOTIMPL;
    if (FAILED(result) || !IsRegistered(library))
    {
        result = RegisterTypeLib(loaded.Get(), path.data(), nullptr);
    }
    return result;
}

} // namespace

void EnsureTypeLibraries(CTrace& trace)
{
    wchar_t program[MAX_PATH];
    if (GetModuleFileNameW(nullptr, program, MAX_PATH) == 0)
    {
        return;
    }
    for (const Library& library : kLibraries)
    {
        const std::wstring name = std::wstring(L"type library ") + library.name;
        if (IsRegistered(library))
        {
            trace.Event(name + L" is registered");
        }
        else
        {
            trace.Event(name + L" registered with " + HexText(Register(library, program)));
        }
    }
}

} // namespace orva::host
