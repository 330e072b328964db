// An add-in DLL as Outlook has it: loaded, its object created, connected, and all that in reverse.
#pragma once

#include <AddInDesignerObjects.h>

#include <windows.h>

#include <string>

namespace orva::bench
{

/// Loads the DLL at construction. Every step throws std::runtime_error with its name when it fails; the
/// destructor takes back what the explicit steps have not.
class CLoadedAddIn
{
public:
    explicit CLoadedAddIn(const std::wstring& path);
    ~CLoadedAddIn();
    CLoadedAddIn(const CLoadedAddIn&) = delete;
    CLoadedAddIn& operator=(const CLoadedAddIn&) = delete;

    /// Class object and object.
    void Create();
    /// OnConnection.
    void Connect(ext_ConnectMode mode);
    /// OnBeginShutdown, OnDisconnection.
    void Disconnect();
    /// Releases the object, asks whether the DLL may go, and lets it go.
    void Unload();

    IUnknown* Object() const { return m_addIn; }

private:
    HMODULE m_module;
    _IDTExtensibility2* m_addIn = nullptr;
};

} // namespace orva::bench
