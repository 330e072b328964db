// Tests of a module's registration: what its script knows, its type library, and for whom it is registered.
#include "AtlTestModule.h"
#include "harness/Text.h"
#include "harness/Wine.h"

namespace
{

using namespace orva::test;

using AtlModule = CTestModuleTest;

TEST_F(AtlModule, ScriptsKnowTheModulesPathItsApplicationIdAndWhatTheCallerAdds)
{
    ASSERT_EQ(m_module.DllRegisterServer(), S_OK);
    const std::string path = Utf8(AtlGetModulePath(nullptr));
    const auto text = [](const wchar_t* name) {
        return Utf8(RegistryString(HKEY_CURRENT_USER, kTestModuleKey, name).value_or(L"(none)"));
    };
    EXPECT_EQ(text(L"Module"), "\"" + path + "\"") << "a program's path is quoted";
    EXPECT_EQ(text(L"Raw"), path);
    EXPECT_EQ(text(L"AppId"), "{5B0E6D11-7C0B-4E0C-9E43-52F9A1E0C0AA}");
}

TEST_F(AtlModule, RegistersUnderTheSystemsLocaleAndRestoresTheThreads)
{
    const LCID before = GetThreadLocale();
    // Whether the thread is asked or the script: it is the default that the system resolves.
    ASSERT_TRUE(SetThreadLocale(LOCALE_SYSTEM_DEFAULT));
    const LCID expected = GetThreadLocale();
    const LCID german = MAKELCID(MAKELANGID(LANG_GERMAN, SUBLANG_GERMAN), SORT_DEFAULT);
    ASSERT_TRUE(SetThreadLocale(german));
    EXPECT_EQ(m_module.DllRegisterServer(), S_OK);
    EXPECT_EQ(GetThreadLocale(), german);
    EXPECT_EQ(RegistryDword(HKEY_CURRENT_USER, kTestModuleKey, L"Locale"), expected);
    EXPECT_EQ(m_module.DllUnregisterServer(), S_OK);
    EXPECT_EQ(GetThreadLocale(), german);
    SetThreadLocale(before);
}

TEST_F(AtlModule, TheTypeLibraryIsRegisteredWithItsFileAndFolderAndGoesAgain)
{
    ASSERT_EQ(m_module.DllRegisterServer(), S_OK);
    const std::wstring path = AtlGetModulePath(nullptr);
    const std::wstring version = std::wstring(kTestLibraryKey) + L"\\1.0";
    EXPECT_EQ(RegistryString(HKEY_LOCAL_MACHINE, version, L""), L"Library of the COM layer's tests");
    EXPECT_EQ(RegistryString(HKEY_LOCAL_MACHINE, version + L"\\0\\win64", L""), path);
    EXPECT_EQ(RegistryString(HKEY_LOCAL_MACHINE, version + L"\\HELPDIR", L""),
              path.substr(0, path.rfind(L'\\') + 1));
    ASSERT_EQ(m_module.DllUnregisterServer(), S_OK);
    EXPECT_FALSE(RegistryKeyExists(HKEY_LOCAL_MACHINE, kTestLibraryKey));
    EXPECT_FALSE(RegistryKeyExists(HKEY_CURRENT_USER, kTestModuleKey));
}

TEST_F(AtlModule, PerUserTypeLibrariesGoThroughThePerUserFunctions)
{
    // Wine's RegisterTypeLibForUser registers for the whole machine; on Windows the user's classes get the
    // library.
    ASSERT_EQ(AtlSetPerUserRegistration(true), S_OK);
    ASSERT_EQ(m_module.DllRegisterServer(), S_OK);
    EXPECT_EQ(RegistryKeyExists(HKEY_CURRENT_USER, kTestLibraryKey), !IsWine());
    EXPECT_EQ(RegistryKeyExists(HKEY_LOCAL_MACHINE, kTestLibraryKey), IsWine());
    ASSERT_EQ(m_module.DllUnregisterServer(), S_OK);
    EXPECT_FALSE(RegistryKeyExists(HKEY_CURRENT_USER, kTestLibraryKey));
    EXPECT_FALSE(RegistryKeyExists(HKEY_LOCAL_MACHINE, kTestLibraryKey));
}

TEST_F(AtlModule, PerUserRegistrationCanBeAskedFor)
{
    bool enabled = true;
    ASSERT_EQ(AtlGetPerUserRegistration(&enabled), S_OK);
    EXPECT_FALSE(enabled);
    ASSERT_EQ(AtlSetPerUserRegistration(true), S_OK);
    ASSERT_EQ(AtlGetPerUserRegistration(&enabled), S_OK);
    EXPECT_TRUE(enabled);
    EXPECT_EQ(AtlGetPerUserRegistration(nullptr), E_POINTER);
}

} // namespace
