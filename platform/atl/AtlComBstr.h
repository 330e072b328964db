// A BSTR that frees itself (part of <atlcomcli.h>, which says what differs).
#pragma once

#include "platform/atl/atlexcept.h"

#include <oleauto.h>

namespace ATL
{

/// Owns one BSTR; a null one counts as the empty text.
class CComBSTR
{
public:
    CComBSTR() noexcept : m_str(nullptr) {}
    /// Throws CAtlException(E_OUTOFMEMORY) when there is no memory for the copy.
    CComBSTR(LPCOLESTR pSrc);
    ~CComBSTR();
    CComBSTR(const CComBSTR&) = delete;
    CComBSTR& operator=(const CComBSTR&) = delete;

    /// The length in characters, which may include zero characters.
    unsigned int Length() const noexcept { return SysStringLen(m_str); }

    operator BSTR() const noexcept { return m_str; }
    /// For out-parameters: the text must be empty, or what it holds would leak.
    BSTR* operator&() noexcept
    {
        ATLASSERT(m_str == nullptr);
        return &m_str;
    }

    BSTR Detach() noexcept;

    BSTR m_str;
};

} // namespace ATL
