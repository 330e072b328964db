#include "bench/LoadedAddIn.h"

#include "bench/FakeOutlook.h"

#include <OrvaOscAddin.h>

#include <bit>
#include <stdexcept>

namespace orva::bench
{

namespace
{

void Check(bool isGood, const char* step)
{
    if (!isGood)
    {
        throw std::runtime_error(step);
    }
}

template <class Function> Function* Export(HMODULE module, const char* name)
{
    const FARPROC found = GetProcAddress(module, name);
    Check(found != nullptr, name);
    return std::bit_cast<Function*>(found);
}

} // namespace

CLoadedAddIn::CLoadedAddIn(const std::wstring& path) : m_module(LoadLibraryW(path.c_str()))
{
    Check(m_module != nullptr, "LoadLibrary");
}

CLoadedAddIn::~CLoadedAddIn()
{
    if (m_addIn != nullptr)
    {
        m_addIn->Release();
    }
    if (m_module != nullptr)
    {
        FreeLibrary(m_module);
    }
}

void CLoadedAddIn::Create()
{
    const auto getClassObject =
        Export<HRESULT STDAPICALLTYPE(REFCLSID, REFIID, void**)>(m_module, "DllGetClassObject");
    IClassFactory* factory = nullptr;
    Check(
        SUCCEEDED(getClassObject(__uuidof(::Connect), IID_IClassFactory, reinterpret_cast<void**>(&factory))),
        "DllGetClassObject");
    const HRESULT hr =
        factory->CreateInstance(nullptr, IID__IDTExtensibility2, reinterpret_cast<void**>(&m_addIn));
    factory->Release();
    Check(SUCCEEDED(hr), "CreateInstance");
}

void CLoadedAddIn::Connect(ext_ConnectMode mode)
{
    Check(SUCCEEDED(m_addIn->OnConnection(FakeOutlook(), mode, nullptr, nullptr)), "OnConnection");
}

void CLoadedAddIn::Disconnect()
{
    Check(SUCCEEDED(m_addIn->OnBeginShutdown(nullptr)), "OnBeginShutdown");
    Check(SUCCEEDED(m_addIn->OnDisconnection(ext_dm_HostShutdown, nullptr)), "OnDisconnection");
}

void CLoadedAddIn::Unload()
{
    m_addIn->Release();
    m_addIn = nullptr;
    Check(Export<HRESULT STDAPICALLTYPE()>(m_module, "DllCanUnloadNow")() == S_OK, "DllCanUnloadNow");
    const HMODULE module = m_module;
    m_module = nullptr;
    Check(FreeLibrary(module) != FALSE, "FreeLibrary");
    Check(GetModuleHandleW(L"OrvaOscAddin.dll") == nullptr, "unloading");
}

} // namespace orva::bench
