#include "platform/atl/AtlComBstr.h"

#include <utility>

namespace ATL
{

CComBSTR::CComBSTR(LPCOLESTR pSrc) : m_str(SysAllocString(pSrc))
{
    if (m_str == nullptr && pSrc != nullptr)
    {
        AtlThrow(E_OUTOFMEMORY);
    }
}

CComBSTR::~CComBSTR()
{
    SysFreeString(m_str);
}

BSTR CComBSTR::Detach() noexcept
{
    return std::exchange(m_str, nullptr);
}

} // namespace ATL
