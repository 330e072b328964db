#include "platform/atl/AtlComVariant.h"

namespace ATL
{

CComVariant::CComVariant(LPCOLESTR lpszSrc) : CComVariant()
{
    bstrVal = CComBSTR(lpszSrc).Detach();
    vt = VT_BSTR;
}

HRESULT CComVariant::ChangeType(VARTYPE vtNew, const VARIANT* pSrc) noexcept
{
    return VariantChangeType(this, pSrc == nullptr ? this : const_cast<VARIANT*>(pSrc), 0, vtNew);
}

} // namespace ATL
