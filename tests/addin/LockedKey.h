// A registry key that a registration cannot write.
#pragma once

#include <windows.h>

#include <string>

namespace orva::test
{

/// Created if missing. Fails the test if it cannot be set up.
class CLockedKey
{
public:
    /// Locks the key `path` under `root`.
    CLockedKey(HKEY root, const std::wstring& path);
    /// Unlocks the key, which stays.
    ~CLockedKey();
    CLockedKey(const CLockedKey&) = delete;
    CLockedKey& operator=(const CLockedKey&) = delete;

private:
    void SetAccess(const wchar_t* descriptor);

    HKEY m_key = nullptr;
};

} // namespace orva::test
