// The DLL's five exports, its module object and its application object.
#include "addin/OrvaOscAddinModule.h"
#include "support/DebugLog.h"
#include "support/ExceptionGuard.h"

#include <olectl.h>

#include <iterator>

COrvaOscAddinModule _AtlModule;

// The module's MFC application object: dialogs get their owner from it, requests their agent.
// NOLINTNEXTLINE(cert-err58-cpp): only for lack of memory, without which the DLL cannot be loaded anyway
CWinApp g_application(L"OrvaOscAddin");

namespace
{

// Compared with its terminator, so that only the whole word matches.
constexpr wchar_t kPerUserSwitch[] = L"user";

bool IsPerUserSwitch(LPCWSTR commandLine)
{
    return commandLine != nullptr && _wcsnicmp(commandLine, kPerUserSwitch, std::size(kPerUserSwitch)) == 0;
}

HRESULT Install(BOOL install, LPCWSTR commandLine)
{
    if (IsPerUserSwitch(commandLine))
    {
        AtlSetPerUserRegistration(true);
    }
    if (!install)
    {
        return DllUnregisterServer();
    }
    const HRESULT hr = DllRegisterServer();
    if (FAILED(hr))
    {
        DllUnregisterServer();
    }
    return hr;
}

} // namespace

// S_OK when nothing in the DLL is in use any more.
STDAPI DllCanUnloadNow()
{
    return RunGuarded<HRESULT>("DllCanUnloadNow", S_FALSE, [] {
        LogEntry("DllCanUnloadNow");
        return _AtlModule.DllCanUnloadNow();
    });
}

// The class object of the add-in class, the only one there is.
STDAPI DllGetClassObject(REFCLSID rclsid, REFIID riid, LPVOID* ppv)
{
    return RunGuarded<HRESULT>("DllGetClassObject", E_UNEXPECTED, [&] {
        LogEntry("DllGetClassObject");
        return _AtlModule.DllGetClassObject(rclsid, riid, ppv);
    });
}

// Registers ("user": for the current user) or unregisters; a registration that fails is rolled back.
STDAPI DllInstall(BOOL bInstall, LPCWSTR pszCmdLine)
{
    return RunGuarded<HRESULT>("DllInstall", E_FAIL, [&] {
        LogEntry("DllInstall");
        return Install(bInstall, pszCmdLine);
    });
}

// Adds the add-in's entry, the class and the type library to the registry.
STDAPI DllRegisterServer()
{
    return RunGuarded<HRESULT>("DllRegisterServer", E_FAIL, [] {
        LogEntry("DllRegisterServer");
        return _AtlModule.DllRegisterServer();
    });
}

// Removes what DllRegisterServer added to the registry.
STDAPI DllUnregisterServer()
{
    return RunGuarded<HRESULT>("DllUnregisterServer", E_FAIL, [] {
        LogEntry("DllUnregisterServer");
        return _AtlModule.DllUnregisterServer();
    });
}
