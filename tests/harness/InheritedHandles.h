// The handles that a new program inherits.
#pragma once

#include <windows.h>

#include <vector>

namespace orva::test
{

/// Names the only handles that a new program inherits. This process's own output would be one of the others,
/// and whoever reads that would wait for the last program that holds it.
class CInheritedHandles
{
public:
    /// Throws std::runtime_error if the system does not take the list.
    explicit CInheritedHandles(std::vector<HANDLE> handles);
    ~CInheritedHandles();
    CInheritedHandles(const CInheritedHandles&) = delete;
    CInheritedHandles& operator=(const CInheritedHandles&) = delete;

    /// For STARTUPINFOEX.
    LPPROC_THREAD_ATTRIBUTE_LIST Get();

private:
    std::vector<HANDLE> m_handles;
    std::vector<BYTE> m_bytes;
};

} // namespace orva::test
