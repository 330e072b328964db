// A VARIANT that clears itself (part of <atlcomcli.h>, which says what differs).
#pragma once

#include "platform/atl/AtlComBstr.h"

namespace ATL
{

/// A VARIANT with copying and clearing. Constructors and assignments throw CAtlException when the value
/// cannot be copied.
class CComVariant : public tagVARIANT
{
public:
    CComVariant() noexcept { VariantInit(this); }
    ~CComVariant() { Clear(); }
    CComVariant(const VARIANT& varSrc);
    CComVariant(const CComVariant& varSrc);
    CComVariant(CComVariant&& varSrc) noexcept;
    CComVariant(LPCOLESTR lpszSrc);
    CComVariant(LPCSTR lpszSrc);
    CComVariant(const CComBSTR& bstrSrc);
    CComVariant(bool bSrc) noexcept;
    CComVariant(BYTE nSrc) noexcept;
    CComVariant(short nSrc) noexcept;
    /// vtSrc is VT_I4 or VT_INT.
    CComVariant(int nSrc, VARTYPE vtSrc = VT_I4) noexcept;
    /// vtSrc is VT_UI4 or VT_UINT.
    CComVariant(unsigned int nSrc, VARTYPE vtSrc = VT_UI4) noexcept;
    /// vtSrc is VT_I4 or VT_ERROR.
    CComVariant(long nSrc, VARTYPE vtSrc = VT_I4) noexcept;
    CComVariant(unsigned long nSrc) noexcept;
    CComVariant(LONGLONG nSrc) noexcept;
    CComVariant(ULONGLONG nSrc) noexcept;
    /// vtSrc is VT_R8 or VT_DATE.
    CComVariant(double dblSrc, VARTYPE vtSrc = VT_R8) noexcept;
    CComVariant(IDispatch* pSrc) noexcept;
    CComVariant(IUnknown* pSrc) noexcept;

    CComVariant& operator=(const CComVariant& varSrc);
    CComVariant& operator=(CComVariant&& varSrc) noexcept;
    CComVariant& operator=(const VARIANT& varSrc);
    /// Every other value: what the constructor of that type makes of it.
    template <class TValue> CComVariant& operator=(const TValue& value)
    {
        CComVariant(value).Swap(*this);
        return *this;
    }

    bool operator==(const VARIANT& varSrc) const noexcept;
    bool operator!=(const VARIANT& varSrc) const noexcept { return !operator==(varSrc); }

    HRESULT Clear() noexcept { return VariantClear(this); }
    HRESULT Copy(const VARIANT* pSrc) noexcept;
    HRESULT CopyTo(VARIANT* pDest) const noexcept;
    /// Takes over the value of *pSrc and leaves that empty.
    HRESULT Attach(VARIANT* pSrc) noexcept;
    /// Clears *pDest, moves the value there and becomes empty.
    HRESULT Detach(VARIANT* pDest) noexcept;
    /// Converts pSrc (or this value itself when pSrc is null) to vtNew.
    HRESULT ChangeType(VARTYPE vtNew, const VARIANT* pSrc = nullptr) noexcept;

private:
    void Swap(CComVariant& other) noexcept;
};

} // namespace ATL
