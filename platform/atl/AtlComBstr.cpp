#include "platform/atl/AtlComBstr.h"

#include "platform/atl/atlcore.h"

#include <cwchar>
#include <memory>

namespace ATL
{

namespace
{

// Turns the failed copy of a text that was there into an exception.
BSTR CheckedCopy(BSTR copy, bool expected)
{
    if (copy == nullptr && expected)
    {
        AtlThrow(E_OUTOFMEMORY);
    }
    return copy;
}

BSTR CopyOf(LPCOLESTR text)
{
    return CheckedCopy(::SysAllocString(text), text != nullptr);
}

BSTR CopyOf(LPCSTR text)
{
    if (text == nullptr)
    {
        return nullptr;
    }
    const int length = ::MultiByteToWideChar(CP_ACP, 0, text, -1, nullptr, 0);
    BSTR copy =
        CheckedCopy(::SysAllocStringLen(nullptr, length > 0 ? static_cast<UINT>(length - 1) : 0), true);
    if (length > 0)
    {
        ::MultiByteToWideChar(CP_ACP, 0, text, -1, copy, length);
    }
    return copy;
}

} // namespace

CComBSTR::CComBSTR(int nSize) : m_str(nullptr)
{
    if (nSize < 0)
    {
        AtlThrow(E_INVALIDARG);
    }
    if (nSize > 0)
    {
        m_str = CheckedCopy(::SysAllocStringLen(nullptr, static_cast<UINT>(nSize)), true);
        std::wmemset(m_str, L'\0', static_cast<std::size_t>(nSize));
    }
}

CComBSTR::CComBSTR(int nSize, LPCOLESTR sz) : m_str(nullptr)
{
    if (nSize < 0)
    {
        AtlThrow(E_INVALIDARG);
    }
    if (nSize > 0)
    {
        m_str = CheckedCopy(::SysAllocStringLen(sz, static_cast<UINT>(nSize)), true);
        if (sz == nullptr)
        {
            std::wmemset(m_str, L'\0', static_cast<std::size_t>(nSize));
        }
    }
}

CComBSTR::CComBSTR(LPCOLESTR pSrc) : m_str(CopyOf(pSrc)) {}

CComBSTR::CComBSTR(LPCSTR pSrc) : m_str(CopyOf(pSrc)) {}

CComBSTR::CComBSTR(const CComBSTR& src) : m_str(CheckedCopy(src.Copy(), src.m_str != nullptr)) {}

CComBSTR::CComBSTR(REFGUID guid) : m_str(nullptr)
{
    OLECHAR text[64];
    if (::StringFromGUID2(guid, text, static_cast<int>(ARRAYSIZE(text))) > 0)
    {
        m_str = CopyOf(text);
    }
}

CComBSTR::~CComBSTR()
{
    ::SysFreeString(m_str);
}

CComBSTR& CComBSTR::operator=(const CComBSTR& src)
{
    if (this != std::addressof(src))
    {
        Attach(CheckedCopy(src.Copy(), src.m_str != nullptr));
    }
    return *this;
}

CComBSTR& CComBSTR::operator=(CComBSTR&& src) noexcept
{
    if (this != std::addressof(src))
    {
        Attach(src.Detach());
    }
    return *this;
}

CComBSTR& CComBSTR::operator=(LPCOLESTR pSrc)
{
    if (pSrc != m_str || pSrc == nullptr)
    {
        Attach(CopyOf(pSrc));
    }
    return *this;
}

CComBSTR& CComBSTR::operator=(LPCSTR pSrc)
{
    Attach(CopyOf(pSrc));
    return *this;
}

BSTR CComBSTR::Copy() const noexcept
{
    // By bytes, so that zero characters and an odd length survive.
    return m_str == nullptr
               ? nullptr
               : ::SysAllocStringByteLen(reinterpret_cast<LPCSTR>(m_str), ::SysStringByteLen(m_str));
}

HRESULT CComBSTR::CopyTo(BSTR* pbstr) const noexcept
{
    if (pbstr == nullptr)
    {
        return E_POINTER;
    }
    *pbstr = Copy();
    return *pbstr == nullptr && m_str != nullptr ? E_OUTOFMEMORY : S_OK;
}

void CComBSTR::Attach(BSTR src) noexcept
{
    if (m_str != src)
    {
        ::SysFreeString(m_str);
        m_str = src;
    }
}

BSTR CComBSTR::Detach() noexcept
{
    BSTR text = m_str;
    m_str = nullptr;
    return text;
}

void CComBSTR::Empty() noexcept
{
    Attach(nullptr);
}

HRESULT CComBSTR::AssignBSTR(BSTR bstrSrc) noexcept
{
    if (m_str == bstrSrc)
    {
        return S_OK;
    }
    BSTR copy = nullptr;
    if (bstrSrc != nullptr)
    {
        copy = ::SysAllocStringByteLen(reinterpret_cast<LPCSTR>(bstrSrc), ::SysStringByteLen(bstrSrc));
        if (copy == nullptr)
        {
            return E_OUTOFMEMORY;
        }
    }
    Attach(copy);
    return S_OK;
}

HRESULT CComBSTR::Append(LPCOLESTR lpsz, int nLen) noexcept
{
    if (lpsz == nullptr)
    {
        return nLen == 0 ? S_OK : E_INVALIDARG;
    }
    if (nLen < 0)
    {
        return E_INVALIDARG;
    }
    const UINT former = Length();
    BSTR joined = ::SysAllocStringLen(nullptr, former + static_cast<UINT>(nLen));
    if (joined == nullptr)
    {
        return E_OUTOFMEMORY;
    }
    if (former > 0)
    {
        std::wmemcpy(joined, m_str, former);
    }
    std::wmemcpy(joined + former, lpsz, static_cast<std::size_t>(nLen));
    Attach(joined);
    return S_OK;
}

HRESULT CComBSTR::Append(LPCOLESTR lpsz) noexcept
{
    return lpsz == nullptr ? S_OK : Append(lpsz, static_cast<int>(std::wcslen(lpsz)));
}

HRESULT CComBSTR::Append(const CComBSTR& src) noexcept
{
    return src.m_str == nullptr ? S_OK : Append(src.m_str, static_cast<int>(src.Length()));
}

CComBSTR& CComBSTR::operator+=(const CComBSTR& src)
{
    const HRESULT hr = Append(src);
    if (FAILED(hr))
    {
        AtlThrow(hr);
    }
    return *this;
}

CComBSTR& CComBSTR::operator+=(LPCOLESTR pSrc)
{
    const HRESULT hr = Append(pSrc);
    if (FAILED(hr))
    {
        AtlThrow(hr);
    }
    return *this;
}

bool CComBSTR::operator<(const CComBSTR& src) const noexcept
{
    return ::VarBstrCmp(m_str, src.m_str, LOCALE_USER_DEFAULT, 0) == static_cast<HRESULT>(VARCMP_LT);
}

bool CComBSTR::operator>(const CComBSTR& src) const noexcept
{
    return ::VarBstrCmp(m_str, src.m_str, LOCALE_USER_DEFAULT, 0) == static_cast<HRESULT>(VARCMP_GT);
}

bool CComBSTR::operator==(const CComBSTR& src) const noexcept
{
    return ::VarBstrCmp(m_str, src.m_str, LOCALE_USER_DEFAULT, 0) == static_cast<HRESULT>(VARCMP_EQ);
}

bool CComBSTR::operator!=(const CComBSTR& src) const noexcept
{
    return !operator==(src);
}

bool CComBSTR::operator==(LPCOLESTR pSrc) const
{
    return operator==(CComBSTR(pSrc));
}

bool CComBSTR::operator!=(LPCOLESTR pSrc) const
{
    return !operator==(pSrc);
}

bool CComBSTR::LoadString(HINSTANCE hInst, UINT nID) noexcept
{
    // With a length of zero the system gives a pointer to the text itself, which is not terminated.
    LPCWSTR text = nullptr;
    const int length = ::LoadStringW(hInst, nID, reinterpret_cast<LPWSTR>(&text), 0);
    Empty();
    if (length <= 0)
    {
        return false;
    }
    m_str = ::SysAllocStringLen(text, static_cast<UINT>(length));
    return m_str != nullptr;
}

bool CComBSTR::LoadString(UINT nID) noexcept
{
    return LoadString(_AtlBaseModule.GetResourceInstance(), nID);
}

} // namespace ATL
