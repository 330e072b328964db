// A registration, or its end, that fails half-way: what it returns, what is rolled back and what is left.
#include "addin/RegistrationFixture.h"
#include "harness/Text.h"

#include <sddl.h>

namespace orva::test
{
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAreArray;

constexpr HRESULT kAccessDenied = static_cast<HRESULT>(0x80070005);

constexpr wchar_t kLibraryVersion[] =
    L"Software\\Classes\\TypeLib\\{ABF2CDBF-30F7-4827-9110-3BD6A8F1B786}\\1.0";

// A key that refuses everything during its lifetime. It is created if missing, and stays.
class CLockedKey
{
public:
    CLockedKey(HKEY root, const wchar_t* path)
    {
        EXPECT_EQ(RegCreateKeyExW(root, path, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &m_key, nullptr),
                  ERROR_SUCCESS);
        // No access for anyone through a handle that is opened from now on.
        SetAccess(L"D:P(D;;KA;;;WD)");
    }
    ~CLockedKey()
    {
        // The handle was opened before the key was locked and still has all rights.
        SetAccess(L"D:P(A;;KA;;;WD)");
        RegCloseKey(m_key);
    }
    CLockedKey(const CLockedKey&) = delete;
    CLockedKey& operator=(const CLockedKey&) = delete;

private:
    void SetAccess(const wchar_t* descriptor)
    {
        PSECURITY_DESCRIPTOR security = nullptr;
        ASSERT_TRUE(ConvertStringSecurityDescriptorToSecurityDescriptorW(descriptor, SDDL_REVISION_1,
                                                                         &security, nullptr));
        EXPECT_EQ(RegSetKeySecurity(m_key, DACL_SECURITY_INFORMATION, security), ERROR_SUCCESS);
        LocalFree(security);
    }

    HKEY m_key = nullptr;
};

using Parts = std::vector<std::string>;

const Parts kWhole = {"entry", "name", "name with version", "class", "type library"};

class RegistrationRollbackTest : public CRegistrationTest
{
};

// A key that is locked during an installation, or during its reverse.
struct CFailureCase
{
    const char* name;
    bool isRegistered;
    HKEY root;
    const wchar_t* locked;
    BOOL install;
    const wchar_t* commandLine;
    HRESULT result;
    // What is registered afterwards.
    Parts left;
};

void PrintTo(const CFailureCase& value, std::ostream* out)
{
    *out << value.name;
}

class RegistrationFailureTest : public RegistrationRollbackTest,
                                public testing::WithParamInterface<CFailureCase>
{
};

TEST_P(RegistrationFailureTest, IsReturnedAndRolledBackAndTheNextRegistrationSucceeds)
{
    if (GetParam().isRegistered)
    {
        ASSERT_EQ(m_module->Register(), S_OK);
    }
    m_log.NewLines();
    {
        const CLockedKey locked(GetParam().root, GetParam().locked);
        EXPECT_EQ(m_module->Install(GetParam().install, GetParam().commandLine), GetParam().result);
    }
    if (GetParam().install)
    {
        EXPECT_THAT(m_log.NewLines(), ElementsAre("DllInstall", "DllRegisterServer", "DllUnregisterServer"));
    }
    EXPECT_EQ(RegisteredParts(), GetParam().left);

    Load();
    EXPECT_EQ(m_module->Install(TRUE, nullptr), S_OK);
    EXPECT_EQ(RegisteredParts(), kWhole);
    EXPECT_EQ(m_module->Install(FALSE, nullptr), S_OK);
    EXPECT_THAT(RegisteredParts(), IsEmpty());
}

// A rollback stops at the type library if that was never registered, and so does not reach the entry.
INSTANTIATE_TEST_SUITE_P(
    Keys, RegistrationFailureTest,
    testing::Values(
        CFailureCase{
            "Office's keys", false, HKEY_LOCAL_MACHINE, kOfficeKey, TRUE, nullptr, kAccessDenied, {}},
        CFailureCase{
            "the name", false, HKEY_LOCAL_MACHINE, kProgIdKey, TRUE, nullptr, kAccessDenied, {"entry"}},
        CFailureCase{
            "the class", false, HKEY_LOCAL_MACHINE, kClassKey, TRUE, nullptr, kAccessDenied, {"entry"}},
        CFailureCase{
            "the type library", false, HKEY_LOCAL_MACHINE, kLibraryVersion, TRUE, nullptr, E_FAIL, {"entry"}},
        CFailureCase{
            "the user's class", false, HKEY_CURRENT_USER, kClassKey, TRUE, L"user", kAccessDenied, {"entry"}},
        CFailureCase{"the class of an earlier registration",
                     true,
                     HKEY_LOCAL_MACHINE,
                     kClassKey,
                     TRUE,
                     nullptr,
                     kAccessDenied,
                     {"entry", "class", "type library"}},
        CFailureCase{"the entry of an earlier registration",
                     true,
                     HKEY_LOCAL_MACHINE,
                     kAddInKey,
                     TRUE,
                     nullptr,
                     kAccessDenied,
                     {"entry"}},
        CFailureCase{"the class, unregistered",
                     true,
                     HKEY_LOCAL_MACHINE,
                     kClassKey,
                     FALSE,
                     nullptr,
                     kAccessDenied,
                     {"entry", "class", "type library"}},
        CFailureCase{"the type library, unregistered",
                     true,
                     HKEY_LOCAL_MACHINE,
                     kLibraryVersion,
                     FALSE,
                     nullptr,
                     E_INVALIDARG,
                     {"entry", "type library"}}));

TEST_F(RegistrationRollbackTest, AFailureHalfwayThroughTheClassLeavesNothingButTheEntry)
{
    const CRegistryLines before = ExportRegistry();
    {
        const CLockedKey locked(HKEY_LOCAL_MACHINE, kClassKey);
        EXPECT_EQ(m_module->Install(TRUE, nullptr), kAccessDenied);
    }
    const CRegistryLines after = ExportRegistry();
    std::vector<std::string> expected = EntryLines();
    expected.push_back("[HKEY_LOCAL_MACHINE\\" + Utf8(kClassKey) + "]");
    EXPECT_THAT(Missing(before, after), UnorderedElementsAreArray(expected));
    EXPECT_THAT(Missing(after, before), IsEmpty());
}

TEST_F(RegistrationRollbackTest, AMissingTypeLibraryRollsBackTheClassButNotTheEntry)
{
    const std::string head("MSFT\x02\x00\x01\x00", 8);
    const CAddInCopy copy({{head, std::string(head.size(), 'x')}});
    Load(copy.Path());
    EXPECT_EQ(m_module->Install(TRUE, nullptr), TYPE_E_CANTLOADLIBRARY);
    EXPECT_THAT(RegisteredParts(), ElementsAre("entry"));
    // The copy cannot be deleted while it is loaded.
    m_module.reset();
}

TEST_F(RegistrationRollbackTest, Regsvr32SaysThatARegistrationFailed)
{
    const CLockedKey locked(HKEY_LOCAL_MACHINE, kClassKey);
    EXPECT_EQ(RegSvr32({}), 5u);
    EXPECT_THAT(m_log.NewLines(), ElementsAre("DllRegisterServer"));
    EXPECT_THAT(RegisteredParts(), ElementsAre("entry"));
}

} // namespace
} // namespace orva::test
