#include "platform/atl/AtlComVariant.h"

namespace ATL
{

CComVariant::CComVariant(const VARIANT& varSrc) : CComVariant()
{
    const HRESULT hr = Copy(&varSrc);
    if (FAILED(hr))
    {
        AtlThrow(hr);
    }
}

CComVariant::CComVariant(const CComVariant& varSrc) : CComVariant(static_cast<const VARIANT&>(varSrc)) {}

CComVariant::CComVariant(CComVariant&& varSrc) noexcept : CComVariant()
{
    Swap(varSrc);
}

CComVariant::CComVariant(LPCOLESTR lpszSrc) : CComVariant()
{
    bstrVal = CComBSTR(lpszSrc).Detach();
    vt = VT_BSTR;
}

CComVariant::CComVariant(LPCSTR lpszSrc) : CComVariant()
{
    bstrVal = CComBSTR(lpszSrc).Detach();
    vt = VT_BSTR;
}

CComVariant::CComVariant(const CComBSTR& bstrSrc) : CComVariant()
{
    bstrVal = CComBSTR(bstrSrc).Detach();
    vt = VT_BSTR;
}

CComVariant::CComVariant(bool bSrc) noexcept : CComVariant()
{
    vt = VT_BOOL;
    boolVal = bSrc ? VARIANT_TRUE : VARIANT_FALSE;
}

CComVariant::CComVariant(BYTE nSrc) noexcept : CComVariant()
{
    vt = VT_UI1;
    bVal = nSrc;
}

CComVariant::CComVariant(short nSrc) noexcept : CComVariant()
{
    vt = VT_I2;
    iVal = nSrc;
}

CComVariant::CComVariant(int nSrc, VARTYPE vtSrc) noexcept : CComVariant()
{
    ATLASSERT(vtSrc == VT_I4 || vtSrc == VT_INT);
    vt = vtSrc == VT_INT ? static_cast<VARTYPE>(VT_INT) : static_cast<VARTYPE>(VT_I4);
    intVal = nSrc;
}

CComVariant::CComVariant(unsigned int nSrc, VARTYPE vtSrc) noexcept : CComVariant()
{
    ATLASSERT(vtSrc == VT_UI4 || vtSrc == VT_UINT);
    vt = vtSrc == VT_UINT ? static_cast<VARTYPE>(VT_UINT) : static_cast<VARTYPE>(VT_UI4);
    uintVal = nSrc;
}

CComVariant::CComVariant(long nSrc, VARTYPE vtSrc) noexcept : CComVariant()
{
    ATLASSERT(vtSrc == VT_I4 || vtSrc == VT_ERROR);
    vt = vtSrc == VT_ERROR ? static_cast<VARTYPE>(VT_ERROR) : static_cast<VARTYPE>(VT_I4);
    lVal = nSrc;
}

CComVariant::CComVariant(unsigned long nSrc) noexcept : CComVariant()
{
    vt = VT_UI4;
    ulVal = nSrc;
}

CComVariant::CComVariant(LONGLONG nSrc) noexcept : CComVariant()
{
    vt = VT_I8;
    llVal = nSrc;
}

CComVariant::CComVariant(ULONGLONG nSrc) noexcept : CComVariant()
{
    vt = VT_UI8;
    ullVal = nSrc;
}

CComVariant::CComVariant(double dblSrc, VARTYPE vtSrc) noexcept : CComVariant()
{
    ATLASSERT(vtSrc == VT_R8 || vtSrc == VT_DATE);
    vt = vtSrc == VT_DATE ? static_cast<VARTYPE>(VT_DATE) : static_cast<VARTYPE>(VT_R8);
    dblVal = dblSrc;
}

CComVariant::CComVariant(IDispatch* pSrc) noexcept : CComVariant()
{
    vt = VT_DISPATCH;
    pdispVal = pSrc;
    if (pSrc)
    {
        pSrc->AddRef();
    }
}

CComVariant::CComVariant(IUnknown* pSrc) noexcept : CComVariant()
{
    vt = VT_UNKNOWN;
    punkVal = pSrc;
    if (pSrc)
    {
        pSrc->AddRef();
    }
}

CComVariant& CComVariant::operator=(const CComVariant& varSrc)
{
    return operator=(static_cast<const VARIANT&>(varSrc));
}

CComVariant& CComVariant::operator=(CComVariant&& varSrc) noexcept
{
    if (this != &varSrc)
    {
        Clear();
        Swap(varSrc);
    }
    return *this;
}

CComVariant& CComVariant::operator=(const VARIANT& varSrc)
{
    if (static_cast<const VARIANT*>(this) != &varSrc)
    {
        CComVariant(varSrc).Swap(*this);
    }
    return *this;
}

bool CComVariant::operator==(const VARIANT& varSrc) const noexcept
{
    if (static_cast<const VARIANT*>(this) == &varSrc)
    {
        return true;
    }
    if (vt != varSrc.vt)
    {
        return false;
    }
    if (vt == VT_EMPTY || vt == VT_NULL)
    {
        return true;
    }
    return VarCmp(const_cast<CComVariant*>(this), const_cast<VARIANT*>(&varSrc), LOCALE_USER_DEFAULT, 0) ==
           static_cast<HRESULT>(VARCMP_EQ);
}

HRESULT CComVariant::Copy(const VARIANT* pSrc) noexcept
{
    return VariantCopy(this, const_cast<VARIANT*>(pSrc));
}

HRESULT CComVariant::CopyTo(VARIANT* pDest) const noexcept
{
    return VariantCopy(pDest, const_cast<CComVariant*>(this));
}

HRESULT CComVariant::Attach(VARIANT* pSrc) noexcept
{
    if (pSrc == nullptr)
    {
        return E_INVALIDARG;
    }
    const HRESULT hr = Clear();
    if (FAILED(hr))
    {
        return hr;
    }
    static_cast<VARIANT&>(*this) = *pSrc;
    pSrc->vt = VT_EMPTY;
    return S_OK;
}

HRESULT CComVariant::Detach(VARIANT* pDest) noexcept
{
    if (pDest == nullptr)
    {
        return E_POINTER;
    }
    const HRESULT hr = VariantClear(pDest);
    if (FAILED(hr))
    {
        return hr;
    }
    *pDest = *this;
    vt = VT_EMPTY;
    return S_OK;
}

HRESULT CComVariant::ChangeType(VARTYPE vtNew, const VARIANT* pSrc) noexcept
{
    return VariantChangeType(this, pSrc == nullptr ? this : const_cast<VARIANT*>(pSrc), 0, vtNew);
}

void CComVariant::Swap(CComVariant& other) noexcept
{
    const VARIANT own = *this;
    static_cast<VARIANT&>(*this) = other;
    static_cast<VARIANT&>(other) = own;
}

} // namespace ATL
