// The built DLL as a host has it: loaded into the process, called through its exports, its object connected.
#pragma once

#include <wrl/client.h>

#include <windows.h>

#include <string>

namespace orva::test
{

inline constexpr wchar_t kAddInModule[] = L"OrvaOscAddin.dll";
inline constexpr CLSID kAddInClass = {
    0x9C7130EA, 0xAEC4, 0x4EA5, {0x97, 0xB8, 0x7D, 0x71, 0x72, 0xC9, 0xE0, 0x51}};

/// The loaded DLL and its exports. Throws std::runtime_error when it cannot be loaded.
class CAddInModule
{
public:
    /// The DLL of the build.
    CAddInModule();
    /// A copy of it, or another DLL with a class of this id.
    explicit CAddInModule(const std::wstring& path);
    ~CAddInModule();
    CAddInModule(const CAddInModule&) = delete;
    CAddInModule& operator=(const CAddInModule&) = delete;

    HRESULT CanUnloadNow() const;
    HRESULT GetClassObject(REFCLSID classId, REFIID iid, void** object) const;
    HRESULT Register() const;
    HRESULT Unregister() const;
    HRESULT Install(BOOL install, const wchar_t* commandLine) const;

    /// Makes an add-in object through the class object. Throws std::runtime_error when there is none.
    Microsoft::WRL::ComPtr<IUnknown> Create() const;

    /// Whether the DLL is in this process, whoever loaded it.
    static bool IsLoaded();

private:
    HMODULE m_module;
};

/// Calls OnConnection as Office does, with an array without elements for the custom arguments. `mode` is an
/// ext_ConnectMode.
HRESULT ConnectAddIn(IUnknown* addIn, IDispatch* application, int mode);

} // namespace orva::test
