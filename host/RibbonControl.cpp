#include "host/RibbonControl.h"

namespace orva::host
{
namespace
{

enum : DISPID
{
    kId = 1,
    kContext = 2,
    kTag = 3
};

constexpr Member kMembers[] = {
    {kId, L"Id", DISPATCH_PROPERTYGET},
    {kContext, L"Context", DISPATCH_PROPERTYGET},
    {kTag, L"Tag", DISPATCH_PROPERTYGET},
};

} // namespace

class CRibbonControl::CNames : public CDispatchObject
{
public:
    CNames(CTrace& trace, const std::wstring& id, IDispatch* context)
        : CDispatchObject(trace, L"IRibbonControl", IID_IDispatch, kMembers), m_id(id), m_context(context)
    {
    }

protected:
    HRESULT OnCall(DISPID id, bool, const CArguments&, VARIANT& result) override
    {
        switch (id)
        {
        case kId:
            return Return(result, m_id);
        case kContext:
            return Return(result, m_context.Get());
        case kTag:
            return Return(result, std::wstring());
        default:
            return DISP_E_MEMBERNOTFOUND;
        }
    }

private:
    std::wstring m_id;
    Microsoft::WRL::ComPtr<IDispatch> m_context;
};

CRibbonControl::CRibbonControl(CTrace& trace, const std::wstring& id, IDispatch* context)
    : m_trace(trace), m_id(id), m_context(context), m_names(new CNames(trace, id, context))
{
}

STDMETHODIMP CRibbonControl::QueryInterface(REFIID iid, void** object)
{
    if (object == nullptr)
    {
        return E_POINTER;
    }
    const bool known = IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IDispatch) ||
                       IsEqualIID(iid, IID_IRibbonControl);
    *object = known ? this : nullptr;
    if (!known)
    {
        return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
}

STDMETHODIMP_(ULONG) CRibbonControl::AddRef()
{
    return static_cast<ULONG>(InterlockedIncrement(&m_references));
}

STDMETHODIMP_(ULONG) CRibbonControl::Release()
{
    const LONG left = InterlockedDecrement(&m_references);
    if (left == 0)
    {
        delete this;
    }
    return static_cast<ULONG>(left);
}

STDMETHODIMP CRibbonControl::GetTypeInfoCount(UINT* count)
{
    return m_names->GetTypeInfoCount(count);
}

STDMETHODIMP CRibbonControl::GetTypeInfo(UINT index, LCID locale, ITypeInfo** information)
{
    return m_names->GetTypeInfo(index, locale, information);
}

STDMETHODIMP CRibbonControl::GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID locale, DISPID* ids)
{
    return m_names->GetIDsOfNames(iid, names, count, locale, ids);
}

STDMETHODIMP CRibbonControl::Invoke(DISPID id, REFIID iid, LCID locale, WORD flags, DISPPARAMS* parameters,
                                    VARIANT* result, EXCEPINFO* exception, UINT* argumentError)
{
    return m_names->Invoke(id, iid, locale, flags, parameters, result, exception, argumentError);
}

void CRibbonControl::TraceCall(const wchar_t* member)
{
    m_trace.Call(kAddIn, kOutlook, std::wstring(L"IRibbonControl.") + member, S_OK, 0, L"\"" + m_id + L"\"");
}

STDMETHODIMP CRibbonControl::get_Id(BSTR* id)
{
    if (id == nullptr)
    {
        return E_POINTER;
    }
    TraceCall(L"get_Id");
    *id = SysAllocStringLen(m_id.c_str(), static_cast<UINT>(m_id.size()));
    return *id != nullptr ? S_OK : E_OUTOFMEMORY;
}

STDMETHODIMP CRibbonControl::get_Context(IDispatch** context)
{
    if (context == nullptr)
    {
        return E_POINTER;
    }
    TraceCall(L"get_Context");
    return m_context.CopyTo(context);
}

STDMETHODIMP CRibbonControl::get_Tag(BSTR* tag)
{
    if (tag == nullptr)
    {
        return E_POINTER;
    }
    TraceCall(L"get_Tag");
    *tag = SysAllocString(L"");
    return *tag != nullptr ? S_OK : E_OUTOFMEMORY;
}

} // namespace orva::host
