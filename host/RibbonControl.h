// The IRibbonControl that a ribbon callback receives.
#pragma once

#include "host/DispatchObject.h"

#include <Office.h>

#include <wrl/client.h>

#include <windows.h>

#include <string>

namespace orva::host
{

/// A dual interface: callable through the vtable and by name.
class CRibbonControl : public IRibbonControl
{
public:
    /// `context` is the explorer that shows the control; may be null.
    CRibbonControl(CTrace& trace, const std::wstring& id, IDispatch* context);
    CRibbonControl(const CRibbonControl&) = delete;
    CRibbonControl& operator=(const CRibbonControl&) = delete;

    STDMETHODIMP QueryInterface(REFIID iid, void** object) override;
    STDMETHODIMP_(ULONG) AddRef() override;
    STDMETHODIMP_(ULONG) Release() override;
    STDMETHODIMP GetTypeInfoCount(UINT* count) override;
    STDMETHODIMP GetTypeInfo(UINT index, LCID locale, ITypeInfo** information) override;
    STDMETHODIMP GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID locale, DISPID* ids) override;
    STDMETHODIMP Invoke(DISPID id, REFIID iid, LCID locale, WORD flags, DISPPARAMS* parameters,
                        VARIANT* result, EXCEPINFO* exception, UINT* argumentError) override;
    STDMETHODIMP get_Id(BSTR* id) override;
    STDMETHODIMP get_Context(IDispatch** context) override;
    STDMETHODIMP get_Tag(BSTR* tag) override;

private:
    virtual ~CRibbonControl() = default;
    void TraceCall(const wchar_t* member);

    /// The IDispatch that this object forwards to. It has no identity of its own.
    class CNames;

    CTrace& m_trace;
    std::wstring m_id;
    Microsoft::WRL::ComPtr<IDispatch> m_context;
    Microsoft::WRL::ComPtr<IDispatch> m_names;
    LONG m_references = 0;
};

} // namespace orva::host
