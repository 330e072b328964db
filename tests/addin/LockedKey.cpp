#include "addin/LockedKey.h"

#include <gtest/gtest.h>

#include <sddl.h>

namespace orva::test
{
namespace
{

// No access for anyone through a handle that is opened from now on.
constexpr wchar_t kLocked[] = L"D:P(D;;KA;;;WD)";
constexpr wchar_t kOpen[] = L"D:P(A;;KA;;;WD)";

} // namespace

CLockedKey::CLockedKey(HKEY root, const std::wstring& path)
{
    EXPECT_EQ(RegCreateKeyExW(root, path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &m_key, nullptr),
              ERROR_SUCCESS);
    SetAccess(kLocked);
}

CLockedKey::~CLockedKey()
{
    // The handle was opened before the key was locked and still has all rights.
    SetAccess(kOpen);
    RegCloseKey(m_key);
}

void CLockedKey::SetAccess(const wchar_t* descriptor)
{
    PSECURITY_DESCRIPTOR security = nullptr;
    ASSERT_TRUE(ConvertStringSecurityDescriptorToSecurityDescriptorW(descriptor, SDDL_REVISION_1, &security,
                                                                     nullptr));
    EXPECT_EQ(RegSetKeySecurity(m_key, DACL_SECURITY_INFORMATION, security), ERROR_SUCCESS);
    LocalFree(security);
}

} // namespace orva::test
