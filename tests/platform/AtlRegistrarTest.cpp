// Tests of running registration scripts against the real registry: writing, removing, rolling back.
#include "harness/ImportHook.h"
#include "harness/Registry.h"

#include <gtest/gtest.h>

#include <statreg.h>
#include <winternl.h>

#include <bit>

namespace
{

using namespace orva::test;

constexpr wchar_t kRoot[] = L"Software\\OrvaRegistrarTest";

// Gives each test an empty place of its own below HKEY_CURRENT_USER.
class AtlRegistrar : public testing::Test
{
protected:
    AtlRegistrar() { m_guard.Remove(); }

    // Runs a script with these contents below the test's own key, which stays.
    static HRESULT Run(const std::wstring& contents, bool doRegister)
    {
        const std::wstring script =
            L"HKCU { NoRemove Software { NoRemove OrvaRegistrarTest { " + contents + L" } } }";
        return RunRegistrationScript(script, {}, doRegister);
    }
    static HRESULT Register(const std::wstring& contents) { return Run(contents, true); }
    static HRESULT Unregister(const std::wstring& contents) { return Run(contents, false); }
    static void MakeKey(const std::wstring& below, DWORD options = REG_OPTION_NON_VOLATILE)
    {
        CRegKey key;
        const std::wstring path = std::wstring(kRoot) + L"\\" + below;
        ASSERT_EQ(key.Create(HKEY_CURRENT_USER, path.c_str(), nullptr, options), ERROR_SUCCESS);
    }
    // What is there below the test's own key.
    static std::string Exported()
    {
        constexpr std::string_view kOwn = "Software\\OrvaRegistrarTest";
        std::string text = ExportRegistryKey(HKEY_CURRENT_USER, kRoot);
        for (std::size_t at = 0; (at = text.find(kOwn)) != std::string::npos;)
        {
            text.erase(at, kOwn.size());
        }
        return text;
    }

private:
    CRegistryTreeGuard m_guard{HKEY_CURRENT_USER, kRoot};
};

TEST_F(AtlRegistrar, WritesEveryTypeOfValue)
{
    ASSERT_EQ(
        Register(L"k = s 'default' { val s = s 'text' val d = d '0x10' val b = b '01ff' val m = m 'a\\0b' "
                 L"val e = s '' val n = m '' }"),
        S_OK);
    EXPECT_EQ(Exported(), "[]\n"
                          "[\\k]\n"
                          "@ = REG_SZ \"default\"\n"
                          "b = hex(3) 01 ff\n"
                          "d = REG_DWORD 0x00000010\n"
                          "e = REG_SZ \"\"\n"
                          "m = hex(7) 61 00 00 00 62 00 00 00 00 00\n"
                          "n = hex(7) 00 00\n"
                          "s = REG_SZ \"text\"\n");
}

struct CRun
{
    const char* name;
    /// A key that somebody else made there before.
    std::wstring existing;
    std::wstring script;
    /// "+" registers, "-" unregisters.
    std::string runs;
    std::string expected;
};

void PrintTo(const CRun& run, std::ostream* out)
{
    *out << run.name;
}

class AtlRegistrarRun : public AtlRegistrar, public testing::WithParamInterface<CRun>
{
};

TEST_P(AtlRegistrarRun, Leaves)
{
    if (!GetParam().existing.empty())
    {
        MakeKey(GetParam().existing);
    }
    for (const char run : GetParam().runs)
    {
        EXPECT_EQ(Run(GetParam().script, run == '+'), S_OK);
    }
    EXPECT_EQ(Exported(), GetParam().expected);
}

const CRun kRuns[] = {
    {"WhatTheScriptSays", L"", L"a = s '1' { b { val v = d '2' } } c", "++",
     "[]\n[\\a]\n@ = REG_SZ \"1\"\n[\\a\\b]\nv = REG_DWORD 0x00000002\n[\\c]\n"},
    {"NothingButWhatIsMarkedAfterUnregistering", L"",
     L"a = s '1' { b { val v = d '2' } } NoRemove c = s 'x' { NoRemove val keep = s '1' val w = s 'y' d }",
     "+-", "[]\n[\\c]\n@ = REG_SZ \"x\"\nkeep = REG_SZ \"1\"\n"},
    {"KeysOfOthersInAKeyThatIsUnregistered", L"a\\foreign", L"a { val v = s 'x' b }", "+-",
     "[]\n[\\a]\n[\\a\\foreign]\n"},
    {"NoKeysOfOthersInAForcedKeyThatIsUnregistered", L"a\\foreign\\deep", L"ForceRemove a", "-", "[]\n"},
    {"AForcedKeyAfresh", L"a\\old\\older", L"ForceRemove a { new }", "+", "[]\n[\\a]\n[\\a\\new]\n"},
    {"WhatAnExistingKeyHolds", L"a\\old", L"a { new }", "+", "[]\n[\\a]\n[\\a\\new]\n[\\a\\old]\n"},
    {"NothingOfWhatWasNeverRegistered", L"",
     L"a = s '1' { b { val v = d '2' } } NoRemove c { val w = s 'y' }", "-", "(no key)\n"},
    {"NoKeyThatIsDeleted", L"old\\older", L"Delete old Delete 'was never there' a", "+", "[]\n[\\a]\n"},
    {"AKeyThatIsDeletedWhenUnregistering", L"old", L"Delete old", "-", "[]\n[\\old]\n"},
    {"AKeySharedByTheWholeSystemThoughItIsForced", L"clsid\\foreign", L"ForceRemove CLSID", "+-",
     "[]\n[\\clsid]\n[\\clsid\\foreign]\n"},
    {"AKeySharedByTheWholeSystemThoughItIsDeleted", L"TypeLib\\foreign", L"Delete TypeLib", "+",
     "[]\n[\\TypeLib]\n[\\TypeLib\\foreign]\n"},
};
INSTANTIATE_TEST_SUITE_P(Scripts, AtlRegistrarRun, testing::ValuesIn(kRuns),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_F(AtlRegistrar, ASyntaxErrorChangesNothing)
{
    EXPECT_EQ(Register(L"a = s '1' b = x '2'"), DISP_E_EXCEPTION);
    EXPECT_EQ(Exported(), "(no key)\n");
    ASSERT_EQ(Register(L"a"), S_OK);
    EXPECT_EQ(Unregister(L"a b = x '2'"), DISP_E_EXCEPTION);
    EXPECT_EQ(Exported(), "[]\n[\\a]\n");
}

TEST_F(AtlRegistrar, AFailureHalfWayTakesBackWhatWasWritten)
{
    // A key that lasts cannot be made below one that does not. The keys above it have to last.
    MakeKey(L"a");
    MakeKey(L"a\\fleeting", REG_OPTION_VOLATILE);
    const std::string before = Exported();
    EXPECT_EQ(
        Register(L"b = s '1' { c } NoRemove a { val v = s 'x' NoRemove fleeting { val w = s 'x' d } } e"),
        HRESULT_FROM_WIN32(ERROR_CHILD_MUST_BE_VOLATILE));
    EXPECT_EQ(Exported(), before);
}

// Sees with which rights the keys were opened from which a tree is deleted.
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
        using Query = NTSTATUS(NTAPI*)(HANDLE, OBJECT_INFORMATION_CLASS, void*, ULONG, ULONG*);
        const auto query =
            std::bit_cast<Query>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtQueryObject"));
        PUBLIC_OBJECT_BASIC_INFORMATION information = {};
        EXPECT_EQ(query(key, ObjectBasicInformation, &information, sizeof information, nullptr), 0);
        s_rights.push_back(information.GrantedAccess);
        return s_hook->Original<decltype(RegDeleteTreeW)>()(key, name);
    }

    static inline const CImportHook* s_hook = nullptr;
    static inline std::vector<ACCESS_MASK> s_rights;
    CImportHook m_hook;
};

TEST_F(AtlRegistrar, TreesAreDeletedFromKeysOpenedWithTheRightsForIt)
{
    constexpr ACCESS_MASK kNeeded = DELETE | KEY_ENUMERATE_SUB_KEYS | KEY_QUERY_VALUE | KEY_SET_VALUE;
    MakeKey(L"a\\foreign");
    MakeKey(L"b\\foreign");
    const CDeletedTrees trees;
    ASSERT_EQ(Register(L"ForceRemove a Delete b"), S_OK);
    ASSERT_EQ(Unregister(L"ForceRemove a"), S_OK);
    ASSERT_EQ(trees.Rights().size(), 3u);
    for (const ACCESS_MASK rights : trees.Rights())
    {
        EXPECT_EQ(rights & kNeeded, kNeeded) << std::hex << rights;
    }
}

TEST_F(AtlRegistrar, AMissingFileOrResourceIsReported)
{
    CRegObject registrar;
    EXPECT_EQ(registrar.ResourceRegisterSz(L"C:\\no such file.dll", MAKEINTRESOURCEW(101), L"REGISTRY"),
              HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND));
    EXPECT_EQ(registrar.ResourceRegisterSz(L"kernel32.dll", MAKEINTRESOURCEW(101), L"REGISTRY"),
              HRESULT_FROM_WIN32(ERROR_RESOURCE_TYPE_NOT_FOUND));
    EXPECT_EQ(registrar.ResourceUnregisterSz(L"kernel32.dll", L"NONE", L"REGISTRY"),
              HRESULT_FROM_WIN32(ERROR_RESOURCE_TYPE_NOT_FOUND));
}

TEST_F(AtlRegistrar, RefusesReplacementsWithoutNameOrText)
{
    CRegObject registrar;
    EXPECT_EQ(registrar.AddReplacement(nullptr, L"x"), E_INVALIDARG);
    EXPECT_EQ(registrar.AddReplacement(L"x", nullptr), E_INVALIDARG);
}

} // namespace
