// A VARIANT that clears itself (part of <atlcomcli.h>, which says what differs).
#pragma once

#include "platform/atl/AtlComBstr.h"

namespace ATL
{

/// A VARIANT with clearing and conversion.
class CComVariant : public tagVARIANT
{
public:
    CComVariant() noexcept { VariantInit(this); }
    /// Throws CAtlException(E_OUTOFMEMORY) when there is no memory for the copy.
    CComVariant(LPCOLESTR lpszSrc);
    CComVariant(CComVariant&& varSrc) noexcept : tagVARIANT(varSrc) { varSrc.vt = VT_EMPTY; }
    ~CComVariant() { Clear(); }
    CComVariant& operator=(CComVariant&& varSrc) noexcept
    {
        if (this != &varSrc)
        {
            Clear();
            static_cast<VARIANT&>(*this) = varSrc;
            varSrc.vt = VT_EMPTY;
        }
        return *this;
    }

    HRESULT Clear() noexcept { return VariantClear(this); }
    /// Converts pSrc (or this value itself when pSrc is null) to vtNew.
    HRESULT ChangeType(VARTYPE vtNew, const VARIANT* pSrc = nullptr) noexcept;
};

} // namespace ATL
