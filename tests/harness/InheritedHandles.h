// The handles that a new program inherits.
#pragma once

#include <windows.h>

#include <vector>

namespace orva::test
{

/// Limits inheritance to these handles. Otherwise a child could inherit this process's own output, and the
/// reader of that output would wait until the child ends.
class CInheritedHandles
{
public:
    /// Throws std::runtime_error if the attribute list cannot be made.
    explicit CInheritedHandles(std::vector<HANDLE> handles);
    ~CInheritedHandles();
    CInheritedHandles(const CInheritedHandles&) = delete;
    CInheritedHandles& operator=(const CInheritedHandles&) = delete;

    /// For STARTUPINFOEXW::lpAttributeList.
    LPPROC_THREAD_ATTRIBUTE_LIST Get();

private:
    std::vector<HANDLE> m_handles;
    std::vector<BYTE> m_bytes;
};

} // namespace orva::test
