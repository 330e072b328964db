#include "setup/RegistrationObstacle.h"

#include "harness/Registry.h"

#include <gtest/gtest.h>

#include <sddl.h>

namespace orva::test
{
namespace
{

// Everyone may read and delete the key and change these rights.
constexpr wchar_t kReadOnly[] = L"D:P(A;;KRSDWD;;;WD)";
// No access for anyone through a handle that is opened from now on.
constexpr wchar_t kLocked[] = L"D:P(D;;KA;;;WD)";
constexpr wchar_t kOpen[] = L"D:P(A;;KA;;;WD)";

} // namespace

CObstacle::CObstacle(Kind kind, HKEY root, const std::wstring& path)
    : m_kind(kind), m_root(root), m_path(path)
{
    const DWORD option = kind == Kind::Volatile ? REG_OPTION_VOLATILE : REG_OPTION_NON_VOLATILE;
    DWORD disposition = 0;
    EXPECT_EQ(RegCreateKeyExW(root, path.c_str(), 0, nullptr, option, KEY_ALL_ACCESS, nullptr, &m_key,
                              &disposition),
              ERROR_SUCCESS);
    if (kind == Kind::Volatile)
    {
        EXPECT_EQ(disposition, static_cast<DWORD>(REG_CREATED_NEW_KEY));
    }
}

CObstacle::~CObstacle()
{
    Lower();
    if (m_key != nullptr)
    {
        RegCloseKey(m_key);
    }
}

void CObstacle::Raise()
{
    if (m_kind == Kind::ReadOnly || m_kind == Kind::Locked)
    {
        SetAccess(m_kind == Kind::Locked ? kLocked : kReadOnly);
    }
}

void CObstacle::Lower()
{
    if (m_kind == Kind::ReadOnly || m_kind == Kind::Locked)
    {
        // The handle was opened before and still has all rights. The key may have been deleted meanwhile.
        SetAccess(kOpen);
    }
    else if (m_kind == Kind::Volatile)
    {
        DeleteRegistryKey(m_root, m_path);
    }
}

void CObstacle::SetAccess(const wchar_t* descriptor)
{
    PSECURITY_DESCRIPTOR security = nullptr;
    ASSERT_TRUE(ConvertStringSecurityDescriptorToSecurityDescriptorW(descriptor, SDDL_REVISION_1, &security,
                                                                     nullptr));
    const LSTATUS result = RegSetKeySecurity(m_key, DACL_SECURITY_INFORMATION, security);
    LocalFree(security);
    EXPECT_TRUE(result == ERROR_SUCCESS || result == ERROR_KEY_DELETED) << result;
}

} // namespace orva::test
