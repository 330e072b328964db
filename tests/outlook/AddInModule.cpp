#include "outlook/AddInModule.h"

#include "harness/Files.h"

#include <AddInDesignerObjects.h>

#include <bit>
#include <stdexcept>

namespace orva::test
{
namespace
{

using Microsoft::WRL::ComPtr;

template <typename Function> Function Export(HMODULE module, const char* name)
{
    const auto function = std::bit_cast<Function>(GetProcAddress(module, name));
    if (function == nullptr)
    {
        throw std::runtime_error(std::string("the DLL has no ") + name);
    }
    return function;
}

} // namespace

CAddInModule::CAddInModule() : CAddInModule(BuiltFile(kAddInModule)) {}

CAddInModule::CAddInModule(const std::wstring& path) : m_module(LoadLibraryW(path.c_str()))
{
    if (m_module == nullptr)
    {
        throw std::runtime_error("cannot load the add-in: " + std::to_string(GetLastError()));
    }
}

CAddInModule::~CAddInModule()
{
    FreeLibrary(m_module);
}

HRESULT CAddInModule::CanUnloadNow() const
{
    return Export<HRESULT(STDAPICALLTYPE*)()>(m_module, "DllCanUnloadNow")();
}

HRESULT CAddInModule::GetClassObject(REFCLSID classId, REFIID iid, void** object) const
{
    return Export<HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**)>(m_module, "DllGetClassObject")(
        classId, iid, object);
}

HRESULT CAddInModule::Register() const
{
    return Export<HRESULT(STDAPICALLTYPE*)()>(m_module, "DllRegisterServer")();
}

HRESULT CAddInModule::Unregister() const
{
    return Export<HRESULT(STDAPICALLTYPE*)()>(m_module, "DllUnregisterServer")();
}

HRESULT CAddInModule::Install(BOOL install, const wchar_t* commandLine) const
{
    return Export<HRESULT(STDAPICALLTYPE*)(BOOL, LPCWSTR)>(m_module, "DllInstall")(install, commandLine);
}

ComPtr<IUnknown> CAddInModule::Create() const
{
    ComPtr<IClassFactory> factory;
    ComPtr<IUnknown> addIn;
    if (FAILED(GetClassObject(kAddInClass, IID_IClassFactory,
                              reinterpret_cast<void**>(factory.GetAddressOf()))) ||
        FAILED(
            factory->CreateInstance(nullptr, IID_IUnknown, reinterpret_cast<void**>(addIn.GetAddressOf()))))
    {
        throw std::runtime_error("cannot create the add-in's object");
    }
    return addIn;
}

bool CAddInModule::IsLoaded()
{
    return GetModuleHandleW(kAddInModule) != nullptr;
}

HRESULT ConnectAddIn(IUnknown* addIn, IDispatch* application, int mode)
{
    ComPtr<_IDTExtensibility2> extensibility;
    HRESULT result =
        addIn->QueryInterface(IID__IDTExtensibility2, reinterpret_cast<void**>(extensibility.GetAddressOf()));
    if (SUCCEEDED(result))
    {
        SAFEARRAY* custom = SafeArrayCreateVector(VT_VARIANT, 1, 0);
        result =
            extensibility->OnConnection(application, static_cast<ext_ConnectMode>(mode), nullptr, &custom);
        SafeArrayDestroy(custom);
    }
    return result;
}

} // namespace orva::test
