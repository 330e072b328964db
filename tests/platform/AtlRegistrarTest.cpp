// Tests of running registration scripts against the real registry: writing, removing, rolling back,
// redirecting.
#include "harness/ImportHook.h"
#include "harness/Registry.h"

#include <gtest/gtest.h>

#include <statreg.h>
#include <winternl.h>

#include <bit>

namespace
{

using orva::test::CRegistryTreeGuard;
using orva::test::DeleteRegistryKey;
using orva::test::ExportRegistryKey;
using orva::test::RegistryKeyExists;
using orva::test::RegistryString;

constexpr const wchar_t* kRoot = L"Software\\OrvaRegistrarTest";

constexpr ACCESS_MASK kDeleteTreeRights = DELETE | KEY_ENUMERATE_SUB_KEYS | KEY_QUERY_VALUE | KEY_SET_VALUE;

// What the system granted whoever opened the key.
ACCESS_MASK RightsOf(HKEY key)
{
    using Query = NTSTATUS(NTAPI*)(HANDLE, OBJECT_INFORMATION_CLASS, void*, ULONG, ULONG*);
    const auto query = std::bit_cast<Query>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtQueryObject"));
    PUBLIC_OBJECT_BASIC_INFORMATION information = {};
    EXPECT_EQ(query(key, ObjectBasicInformation, &information, sizeof information, nullptr), 0);
    return information.GrantedAccess;
}

// Sees the keys from which a tree is deleted.
class CDeletedTrees
{
public:
    CDeletedTrees() : m_hook(GetModuleHandleW(nullptr), "advapi32.dll", "RegDeleteTreeW", &OnDelete)
    {
        s_hook = &m_hook;
        s_rights.clear();
    }

    static const std::vector<ACCESS_MASK>& Rights() { return s_rights; }

private:
    static LSTATUS WINAPI OnDelete(HKEY key, LPCWSTR name)
    {
        s_rights.push_back(RightsOf(key));
        return s_hook->Original<decltype(RegDeleteTreeW)>()(key, name);
    }

    static inline const orva::test::CImportHook* s_hook = nullptr;
    static inline std::vector<ACCESS_MASK> s_rights;
    orva::test::CImportHook m_hook;
};

// Gives each test an empty place of its own below HKEY_CURRENT_USER and switches per-user registration off
// again.
class AtlRegistrar : public testing::Test
{
protected:
    AtlRegistrar() { m_guard.Remove(); }
    ~AtlRegistrar() override { AtlSetPerUserRegistration(false); }

    // The script with its contents below the test's own key, which stays.
    static std::wstring InRoot(const std::wstring& contents)
    {
        return L"HKCU { NoRemove Software { NoRemove OrvaRegistrarTest { " + contents + L" } } }";
    }
    static HRESULT Register(const std::wstring& contents)
    {
        return RunRegistrationScript(InRoot(contents), {}, true);
    }
    static HRESULT Unregister(const std::wstring& contents)
    {
        return RunRegistrationScript(InRoot(contents), {}, false);
    }
    static void MakeKey(const std::wstring& path, DWORD options = REG_OPTION_NON_VOLATILE)
    {
        CRegKey key;
        ASSERT_EQ(key.Create(HKEY_CURRENT_USER, path.c_str(), nullptr, options), ERROR_SUCCESS);
    }
    static std::string Exported() { return ExportRegistryKey(HKEY_CURRENT_USER, kRoot); }
    static bool Exists(const std::wstring& below)
    {
        return RegistryKeyExists(HKEY_CURRENT_USER, kRoot + (L"\\" + below));
    }

    CRegObject m_registrar;

private:
    CRegistryTreeGuard m_guard{HKEY_CURRENT_USER, kRoot};
};

TEST_F(AtlRegistrar, WritesEveryTypeOfValue)
{
    ASSERT_EQ(
        Register(L"k = s 'default' { val s = s 'text' val d = d '0x10' val b = b '01ff' val m = m 'a\\0b' "
                 L"val e = s '' val n = m '' }"),
        S_OK);
    EXPECT_EQ(Exported(), "[Software\\OrvaRegistrarTest]\n"
                          "[Software\\OrvaRegistrarTest\\k]\n"
                          "@ = REG_SZ \"default\"\n"
                          "b = hex(3) 01 ff\n"
                          "d = REG_DWORD 0x00000010\n"
                          "e = REG_SZ \"\"\n"
                          "m = hex(7) 61 00 00 00 62 00 00 00 00 00\n"
                          "n = hex(7) 00 00\n"
                          "s = REG_SZ \"text\"\n");
}

TEST_F(AtlRegistrar, ReplacesNames)
{
    CRegistrationReplacements replacements;
    replacements.Set(L"NAME", L"it's");
    const std::wstring script = InRoot(L"k = s '<%name%>'");
    ASSERT_EQ(RunRegistrationScript(script, replacements, true), S_OK);
    EXPECT_EQ(RegistryString(HKEY_CURRENT_USER, L"Software\\OrvaRegistrarTest\\k", L""), L"<it's>");
    replacements.Clear();
    EXPECT_EQ(RunRegistrationScript(script, replacements, true), DISP_E_EXCEPTION);
}

TEST_F(AtlRegistrar, RefusesReplacementsWithoutNameOrText)
{
    EXPECT_EQ(m_registrar.AddReplacement(nullptr, L"x"), E_INVALIDARG);
    EXPECT_EQ(m_registrar.AddReplacement(L"x", nullptr), E_INVALIDARG);
}

TEST_F(AtlRegistrar, RegisteringTwiceIsRegisteringOnce)
{
    const wchar_t* script = L"ForceRemove a = s '1' { b { val v = d '2' } } c";
    ASSERT_EQ(Register(script), S_OK);
    const std::string once = Exported();
    ASSERT_EQ(Register(script), S_OK);
    EXPECT_EQ(Exported(), once);
}

TEST_F(AtlRegistrar, UnregisteringLeavesNothingButWhatIsMarked)
{
    const wchar_t* script = L"a = s '1' { b { val v = d '2' } } NoRemove c = s 'x' { val w = s 'y' d }";
    ASSERT_EQ(Register(script), S_OK);
    ASSERT_EQ(Unregister(script), S_OK);
    EXPECT_EQ(Exported(), "[Software\\OrvaRegistrarTest]\n"
                          "[Software\\OrvaRegistrarTest\\c]\n"
                          "@ = REG_SZ \"x\"\n");
}

TEST_F(AtlRegistrar, UnregisteringWhatWasNeverRegisteredSucceedsAndChangesNothing)
{
    EXPECT_EQ(Unregister(L"a = s '1' { b { val v = d '2' } } NoRemove c { val w = s 'y' }"), S_OK);
    EXPECT_EQ(Exported(), "(no key)\n");
}

TEST_F(AtlRegistrar, UnregisteringKeepsAKeyThatHoldsKeysOfOthers)
{
    ASSERT_EQ(Register(L"a { val v = s 'x' b }"), S_OK);
    MakeKey(L"Software\\OrvaRegistrarTest\\a\\foreign");
    ASSERT_EQ(Unregister(L"a { val v = s 'x' b }"), S_OK);
    EXPECT_EQ(Exported(), "[Software\\OrvaRegistrarTest]\n"
                          "[Software\\OrvaRegistrarTest\\a]\n"
                          "[Software\\OrvaRegistrarTest\\a\\foreign]\n");
}

TEST_F(AtlRegistrar, UnregisteringAForcedKeyTakesWhatOthersPutThere)
{
    ASSERT_EQ(Register(L"ForceRemove a"), S_OK);
    MakeKey(L"Software\\OrvaRegistrarTest\\a\\foreign\\deep");
    ASSERT_EQ(Unregister(L"ForceRemove a"), S_OK);
    EXPECT_FALSE(Exists(L"a"));
}

TEST_F(AtlRegistrar, TreesAreDeletedFromKeysOpenedWithTheRightsForIt)
{
    MakeKey(L"Software\\OrvaRegistrarTest\\a\\foreign");
    MakeKey(L"Software\\OrvaRegistrarTest\\b\\foreign");
    const CDeletedTrees trees;
    ASSERT_EQ(Register(L"ForceRemove a Delete b"), S_OK);
    ASSERT_EQ(Unregister(L"ForceRemove a"), S_OK);
    ASSERT_EQ(trees.Rights().size(), 3u);
    for (const ACCESS_MASK rights : trees.Rights())
    {
        EXPECT_EQ(rights & kDeleteTreeRights, kDeleteTreeRights) << std::hex << rights;
    }
}

TEST_F(AtlRegistrar, UnregisteringKeepsAValueMarkedNoRemove)
{
    const wchar_t* script = L"NoRemove a { NoRemove val keep = s '1' val drop = s '2' }";
    ASSERT_EQ(Register(script), S_OK);
    ASSERT_EQ(Unregister(script), S_OK);
    EXPECT_EQ(Exported(), "[Software\\OrvaRegistrarTest]\n"
                          "[Software\\OrvaRegistrarTest\\a]\n"
                          "keep = REG_SZ \"1\"\n");
}

TEST_F(AtlRegistrar, AForcedKeyIsMadeAfresh)
{
    MakeKey(L"Software\\OrvaRegistrarTest\\a\\old\\older");
    ASSERT_EQ(Register(L"ForceRemove a { new }"), S_OK);
    EXPECT_EQ(Exported(), "[Software\\OrvaRegistrarTest]\n"
                          "[Software\\OrvaRegistrarTest\\a]\n"
                          "[Software\\OrvaRegistrarTest\\a\\new]\n");
}

TEST_F(AtlRegistrar, AnExistingKeyKeepsWhatItHolds)
{
    MakeKey(L"Software\\OrvaRegistrarTest\\a\\old");
    ASSERT_EQ(Register(L"a { new }"), S_OK);
    EXPECT_TRUE(Exists(L"a\\old"));
    EXPECT_TRUE(Exists(L"a\\new"));
}

TEST_F(AtlRegistrar, DeleteTakesAKeyAwayWhenRegistering)
{
    MakeKey(L"Software\\OrvaRegistrarTest\\old\\older");
    ASSERT_EQ(Register(L"Delete old Delete 'was never there' a"), S_OK);
    EXPECT_FALSE(Exists(L"old"));
    EXPECT_TRUE(Exists(L"a"));
}

TEST_F(AtlRegistrar, DeleteDoesNothingWhenUnregistering)
{
    MakeKey(L"Software\\OrvaRegistrarTest\\old");
    ASSERT_EQ(Unregister(L"Delete old"), S_OK);
    EXPECT_TRUE(Exists(L"old"));
}

TEST_F(AtlRegistrar, KeysSharedByTheWholeSystemAreNeverForced)
{
    MakeKey(L"Software\\OrvaRegistrarTest\\clsid\\foreign");
    MakeKey(L"Software\\OrvaRegistrarTest\\TypeLib\\foreign");
    ASSERT_EQ(Register(L"ForceRemove CLSID Delete TypeLib"), S_OK);
    ASSERT_EQ(Unregister(L"ForceRemove CLSID"), S_OK);
    EXPECT_TRUE(Exists(L"clsid\\foreign"));
    EXPECT_TRUE(Exists(L"TypeLib\\foreign"));
}

TEST_F(AtlRegistrar, ASyntaxErrorChangesNothing)
{
    EXPECT_EQ(Register(L"a = s '1' b = x '2'"), DISP_E_EXCEPTION);
    EXPECT_EQ(Exported(), "(no key)\n");
}

TEST_F(AtlRegistrar, ASyntaxErrorIsAnErrorForUnregisteringToo)
{
    ASSERT_EQ(Register(L"a"), S_OK);
    EXPECT_EQ(Unregister(L"a = s"), DISP_E_EXCEPTION);
    EXPECT_TRUE(Exists(L"a"));
}

TEST_F(AtlRegistrar, AFailureHalfWayTakesBackWhatWasWritten)
{
    // A key that lasts cannot be made below one that does not.
    MakeKey(L"Software\\OrvaRegistrarTest\\fleeting", REG_OPTION_VOLATILE);
    EXPECT_EQ(Register(L"a = s '1' { b { val v = d '2' } } NoRemove fleeting { val w = s 'x' c } d"),
              HRESULT_FROM_WIN32(ERROR_CHILD_MUST_BE_VOLATILE));
    EXPECT_EQ(Exported(), "[Software\\OrvaRegistrarTest]\n"
                          "[Software\\OrvaRegistrarTest\\fleeting]\n");
}

TEST_F(AtlRegistrar, AFailureDeepInsideTakesBackTheKeysAroundIt)
{
    MakeKey(L"Software\\OrvaRegistrarTest\\a\\fleeting", REG_OPTION_VOLATILE);
    EXPECT_EQ(Register(L"NoRemove a { val v = s 'x' NoRemove fleeting { c } }"),
              HRESULT_FROM_WIN32(ERROR_CHILD_MUST_BE_VOLATILE));
    EXPECT_EQ(Exported(), "[Software\\OrvaRegistrarTest]\n"
                          "[Software\\OrvaRegistrarTest\\a]\n"
                          "[Software\\OrvaRegistrarTest\\a\\fleeting]\n");
}

TEST_F(AtlRegistrar, AMissingResourceFileIsReported)
{
    EXPECT_EQ(m_registrar.ResourceRegisterSz(L"C:\\no such file.dll", MAKEINTRESOURCEW(101), L"REGISTRY"),
              HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND));
}

TEST_F(AtlRegistrar, AMissingResourceIsReported)
{
    EXPECT_EQ(m_registrar.ResourceRegisterSz(L"kernel32.dll", MAKEINTRESOURCEW(101), L"REGISTRY"),
              HRESULT_FROM_WIN32(ERROR_RESOURCE_TYPE_NOT_FOUND));
    EXPECT_EQ(m_registrar.ResourceUnregisterSz(L"kernel32.dll", L"NONE", L"REGISTRY"),
              HRESULT_FROM_WIN32(ERROR_RESOURCE_TYPE_NOT_FOUND));
}

// Classes are written for the machine or for the user; both places are restored afterwards.
class AtlRegistrarClasses : public AtlRegistrar
{
protected:
    AtlRegistrarClasses()
    {
        m_machine.Remove();
        m_user.Remove();
    }

    static constexpr const wchar_t* kClass = L"Software\\Classes\\OrvaRegistrarTest.Class";
    static constexpr const wchar_t* kScript = L"HKCR { OrvaRegistrarTest.Class = s 'x' { CLSID = s 'y' } }";

private:
    CRegistryTreeGuard m_machine{HKEY_LOCAL_MACHINE, kClass};
    CRegistryTreeGuard m_user{HKEY_CURRENT_USER, kClass};
};

TEST_F(AtlRegistrarClasses, ClassesAreTheMachinesByDefault)
{
    ASSERT_EQ(RunRegistrationScript(kScript, {}, true), S_OK);
    EXPECT_TRUE(RegistryKeyExists(HKEY_LOCAL_MACHINE, kClass));
    EXPECT_FALSE(RegistryKeyExists(HKEY_CURRENT_USER, kClass));
    ASSERT_EQ(RunRegistrationScript(kScript, {}, false), S_OK);
    EXPECT_FALSE(RegistryKeyExists(HKEY_LOCAL_MACHINE, kClass));
}

TEST_F(AtlRegistrarClasses, ClassesAreTheUsersWhenRegisteredPerUser)
{
    ASSERT_EQ(AtlSetPerUserRegistration(true), S_OK);
    ASSERT_EQ(RunRegistrationScript(kScript, {}, true), S_OK);
    EXPECT_EQ(RegistryString(HKEY_CURRENT_USER, kClass, L""), L"x");
    EXPECT_FALSE(RegistryKeyExists(HKEY_LOCAL_MACHINE, kClass));
    ASSERT_EQ(RunRegistrationScript(kScript, {}, false), S_OK);
    EXPECT_FALSE(RegistryKeyExists(HKEY_CURRENT_USER, kClass));
}

TEST_F(AtlRegistrarClasses, UnregisteringPerUserLeavesTheMachinesClasses)
{
    ASSERT_EQ(RunRegistrationScript(kScript, {}, true), S_OK);
    ASSERT_EQ(AtlSetPerUserRegistration(true), S_OK);
    ASSERT_EQ(RunRegistrationScript(kScript, {}, false), S_OK);
    EXPECT_TRUE(RegistryKeyExists(HKEY_LOCAL_MACHINE, kClass));
}

TEST_F(AtlRegistrarClasses, OtherRootKeysAreNotRedirected)
{
    const CRegistryTreeGuard guard(HKEY_LOCAL_MACHINE, kRoot);
    const wchar_t* script = L"HKLM { NoRemove Software { OrvaRegistrarTest } }";
    ASSERT_EQ(AtlSetPerUserRegistration(true), S_OK);
    ASSERT_EQ(RunRegistrationScript(script, {}, true), S_OK);
    EXPECT_TRUE(RegistryKeyExists(HKEY_LOCAL_MACHINE, kRoot));
    EXPECT_FALSE(RegistryKeyExists(HKEY_CURRENT_USER, kRoot));
    ASSERT_EQ(RunRegistrationScript(script, {}, false), S_OK);
    EXPECT_FALSE(RegistryKeyExists(HKEY_LOCAL_MACHINE, kRoot));
}

TEST(AtlPerUserRegistration, CanBeAskedFor)
{
    bool enabled = true;
    ASSERT_EQ(AtlGetPerUserRegistration(&enabled), S_OK);
    EXPECT_FALSE(enabled);
    ASSERT_EQ(AtlSetPerUserRegistration(true), S_OK);
    ASSERT_EQ(AtlGetPerUserRegistration(&enabled), S_OK);
    EXPECT_TRUE(enabled);
    ASSERT_EQ(AtlSetPerUserRegistration(false), S_OK);
    EXPECT_EQ(AtlGetPerUserRegistration(nullptr), E_POINTER);
}

} // namespace
