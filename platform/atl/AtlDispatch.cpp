#include "platform/atl/AtlDispatch.h"

namespace ATL
{

namespace
{

constexpr WORD kVersionOfOwnLibrary = 0xFFFF;

} // namespace

HRESULT CComTypeInfoHolder::GetTI(LCID lcid) noexcept
{
    if (m_pInfo != nullptr)
    {
        return S_OK;
    }
    if (_pAtlModule == nullptr)
    {
        return E_UNEXPECTED;
    }
    const CComCritSecLock lock(_pAtlModule->m_csStaticDataInitAndTypeInfo);
    if (m_pInfo != nullptr)
    {
        return S_OK;
    }

    CComPtr<ITypeLib> library;
    HRESULT hr;
    if (IsEqualGUID(*m_plibid, CAtlModule::m_libid) && m_wMajor == kVersionOfOwnLibrary &&
        m_wMinor == kVersionOfOwnLibrary)
    {
        CComBSTR path;
        hr = AtlLoadTypeLib(_AtlBaseModule.GetModuleInstance(), nullptr, &path.m_str, &library.p);
    }
    else
    {
        hr = LoadRegTypeLib(*m_plibid, m_wMajor, m_wMinor, lcid, &library.p);
    }
    if (FAILED(hr))
    {
        return hr;
    }

    CComPtr<ITypeInfo> info;
    hr = library->GetTypeInfoOfGuid(*m_pguid, &info.p);
    if (FAILED(hr))
    {
        return hr;
    }
    hr = _pAtlModule->AddTermFunc(Cleanup, reinterpret_cast<DWORD_PTR>(this));
    if (FAILED(hr))
    {
        return hr;
    }
    m_pInfo = info.Detach();
    return S_OK;
}

HRESULT CComTypeInfoHolder::GetTI(LCID lcid, ITypeInfo** ppInfo) noexcept
{
    if (ppInfo == nullptr)
    {
        return E_POINTER;
    }
    *ppInfo = nullptr;
    const HRESULT hr = GetTI(lcid);
    if (FAILED(hr))
    {
        return hr;
    }
    m_pInfo->AddRef();
    *ppInfo = m_pInfo;
    return S_OK;
}

HRESULT CComTypeInfoHolder::GetTypeInfo(UINT itinfo, LCID lcid, ITypeInfo** pptinfo) noexcept
{
    if (itinfo != 0)
    {
        return DISP_E_BADINDEX;
    }
    return GetTI(lcid, pptinfo);
}

HRESULT CComTypeInfoHolder::GetIDsOfNames(REFIID /*riid*/, LPOLESTR* rgszNames, UINT cNames, LCID lcid,
                                          DISPID* rgdispid) noexcept
{
    const HRESULT hr = EnsureTI(lcid);
    return FAILED(hr) ? hr : m_pInfo->GetIDsOfNames(rgszNames, cNames, rgdispid);
}

HRESULT CComTypeInfoHolder::Invoke(IDispatch* p, DISPID dispidMember, REFIID /*riid*/, LCID lcid, WORD wFlags,
                                   DISPPARAMS* pdispparams, VARIANT* pvarResult, EXCEPINFO* pexcepinfo,
                                   UINT* puArgErr) noexcept
{
    // What an earlier call of the thread reported must not be taken for this call's error.
    SetErrorInfo(0, nullptr);
    const HRESULT hr = EnsureTI(lcid);
    if (FAILED(hr))
    {
        return hr;
    }
    return m_pInfo->Invoke(p, dispidMember, wFlags, pdispparams, pvarResult, pexcepinfo, puArgErr);
}

void WINAPI CComTypeInfoHolder::Cleanup(DWORD_PTR dw) noexcept
{
    auto* holder = reinterpret_cast<CComTypeInfoHolder*>(dw);
    ITypeInfo* info = holder->m_pInfo;
    holder->m_pInfo = nullptr;
    if (info)
    {
        info->Release();
    }
}

} // namespace ATL
