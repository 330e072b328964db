#include "harness/InheritedHandles.h"

#include <stdexcept>
#include <utility>

namespace orva::test
{

CInheritedHandles::CInheritedHandles(std::vector<HANDLE> handles) : m_handles(std::move(handles))
{
    SIZE_T size = 0;
    InitializeProcThreadAttributeList(nullptr, 1, 0, &size);
    m_bytes.resize(size);
    if (!InitializeProcThreadAttributeList(Get(), 1, 0, &size) ||
        !UpdateProcThreadAttribute(Get(), 0, PROC_THREAD_ATTRIBUTE_HANDLE_LIST, m_handles.data(),
                                   m_handles.size() * sizeof(HANDLE), nullptr, nullptr))
    {
        throw std::runtime_error("cannot choose the handles to be inherited");
    }
}

CInheritedHandles::~CInheritedHandles()
{
    DeleteProcThreadAttributeList(Get());
}

LPPROC_THREAD_ATTRIBUTE_LIST CInheritedHandles::Get()
{
    return reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(m_bytes.data());
}

} // namespace orva::test
