// A BSTR that frees itself (part of <atlcomcli.h>, which says what differs).
#pragma once

#include "platform/atl/atlexcept.h"

#include <oleauto.h>

namespace ATL
{

/// Owns one BSTR; a null one counts as the empty text. Constructors and assignments throw
/// CAtlException(E_OUTOFMEMORY) when there is no memory for the copy.
class CComBSTR
{
public:
    CComBSTR() noexcept : m_str(nullptr) {}
    /// A text of nSize characters; from sz when that is not null, else of zero characters.
    explicit CComBSTR(int nSize);
    CComBSTR(int nSize, LPCOLESTR sz);
    CComBSTR(LPCOLESTR pSrc);
    CComBSTR(LPCSTR pSrc);
    CComBSTR(const CComBSTR& src);
    CComBSTR(CComBSTR&& src) noexcept : m_str(src.Detach()) {}
    explicit CComBSTR(REFGUID guid);
    ~CComBSTR();

    CComBSTR& operator=(const CComBSTR& src);
    CComBSTR& operator=(CComBSTR&& src) noexcept;
    CComBSTR& operator=(LPCOLESTR pSrc);
    CComBSTR& operator=(LPCSTR pSrc);

    /// The length in characters, which may include zero characters.
    unsigned int Length() const noexcept { return SysStringLen(m_str); }
    unsigned int ByteLength() const noexcept { return SysStringByteLen(m_str); }

    operator BSTR() const noexcept { return m_str; }
    /// For out-parameters: the text must be empty, or what it holds would leak.
    BSTR* operator&() noexcept
    {
        ATLASSERT(m_str == nullptr);
        return &m_str;
    }
    bool operator!() const noexcept { return m_str == nullptr; }

    /// A copy that the caller frees; null for a null text.
    BSTR Copy() const noexcept;
    /// A copy in *pbstr. E_POINTER when pbstr is null, E_OUTOFMEMORY.
    HRESULT CopyTo(BSTR* pbstr) const noexcept;
    /// Moves the text into a VARIANT or takes over a BSTR.
    void Attach(BSTR src) noexcept;
    BSTR Detach() noexcept;
    void Empty() noexcept;

    /// Replaces the text by a copy of bstrSrc, zero characters included.
    HRESULT AssignBSTR(BSTR bstrSrc) noexcept;
    HRESULT Append(const CComBSTR& src) noexcept;
    HRESULT Append(LPCOLESTR lpsz) noexcept;
    HRESULT Append(LPCOLESTR lpsz, int nLen) noexcept;
    CComBSTR& operator+=(const CComBSTR& src);
    CComBSTR& operator+=(LPCOLESTR pSrc);

    /// Compares by the user's locale, as VarBstrCmp does.
    bool operator<(const CComBSTR& src) const noexcept;
    bool operator>(const CComBSTR& src) const noexcept;
    bool operator==(const CComBSTR& src) const noexcept;
    bool operator!=(const CComBSTR& src) const noexcept;
    bool operator==(LPCOLESTR pSrc) const;
    bool operator!=(LPCOLESTR pSrc) const;
    bool operator==(std::nullptr_t) const noexcept { return m_str == nullptr; }

    /// Reads a string resource. False when there is none.
    bool LoadString(HINSTANCE hInst, UINT nID) noexcept;
    /// The same from the module's own resources.
    bool LoadString(UINT nID) noexcept;

    BSTR m_str;
};

} // namespace ATL
