// The test program as a module of the COM layer, with a script and a type library of its own.
#pragma once

#include "harness/Registry.h"

#include <atlbase.h>
#include <atlcom.h>

#include <gtest/gtest.h>

#include <string>

namespace orva::test
{

inline constexpr GUID kTestLibrary = {
    0x5b0e6d11, 0x7c0b, 0x4e0c, {0x9e, 0x43, 0x52, 0xf9, 0xa1, 0xe0, 0xc0, 0xff}};
inline constexpr wchar_t kTestLibraryKey[] =
    L"Software\\Classes\\TypeLib\\{5B0E6D11-7C0B-4E0C-9E43-52F9A1E0C0FF}";
inline constexpr wchar_t kTestModuleKey[] = L"Software\\OrvaAtlModuleTest";

/// The module object, which tests construct and end.
class CTestModule : public CAtlDllModuleT<CTestModule>
{
public:
    DECLARE_LIBID(kTestLibrary)

    static LPCOLESTR GetAppId() noexcept { return L"{5B0E6D11-7C0B-4E0C-9E43-52F9A1E0C0AA}"; }
    /// The script is told the locale that it is run under.
    static HRESULT WINAPI UpdateRegistryAppId(BOOL bRegister) noexcept
    {
        const std::wstring locale = std::to_wstring(GetThreadLocale());
        _ATL_REGMAP_ENTRY entries[] = {{L"LOCALE", locale.c_str()}, {nullptr, nullptr}};
        return _pAtlModule->UpdateRegistryFromResource(101, bRegister, entries);
    }
};

/// A module without registered script and library, whatever a test registers; nothing may be in use at its
/// end.
class CTestModuleTest : public testing::Test
{
protected:
    CTestModuleTest()
    {
        for (CRegistryTreeGuard* guard :
             {&m_machineLibrary, &m_machineInterface, &m_userLibrary, &m_userInterface, &m_script})
        {
            guard->Remove();
        }
    }
    ~CTestModuleTest() override
    {
        AtlSetPerUserRegistration(false);
        EXPECT_EQ(m_module.DllCanUnloadNow(), S_OK);
    }

    CTestModule m_module;

private:
    static constexpr const wchar_t* kInterfaceKey =
        L"Software\\Classes\\Interface\\{5B0E6D11-7C0B-4E0C-9E43-52F9A1E0C003}";

    CRegistryTreeGuard m_machineLibrary{HKEY_LOCAL_MACHINE, kTestLibraryKey};
    CRegistryTreeGuard m_machineInterface{HKEY_LOCAL_MACHINE, kInterfaceKey};
    CRegistryTreeGuard m_userLibrary{HKEY_CURRENT_USER, kTestLibraryKey};
    CRegistryTreeGuard m_userInterface{HKEY_CURRENT_USER, kInterfaceKey};
    CRegistryTreeGuard m_script{HKEY_CURRENT_USER, kTestModuleKey};
};

} // namespace orva::test
