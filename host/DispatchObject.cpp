#include "host/DispatchObject.h"

#include <cstdio>
#include <cwchar>

namespace orva::host
{
namespace
{

VARIANT MissingArgument() noexcept
{
    VARIANT value;
    VariantInit(&value);
    value.vt = VT_ERROR;
    value.scode = DISP_E_PARAMNOTFOUND;
    return value;
}

const VARIANT kMissing = MissingArgument();

// mingw-w64 declares the source of VariantChangeType without const.
VARIANT* Writable(const VARIANT& value)
{
    return const_cast<VARIANT*>(&value);
}

} // namespace

const VARIANT& CArguments::operator[](UINT index) const
{
    // Automation passes arguments in reverse order.
    return index < m_parameters.cArgs ? m_parameters.rgvarg[m_parameters.cArgs - 1 - index] : kMissing;
}

bool CArguments::Has(UINT index) const
{
    const VARIANT& value = (*this)[index];
    return value.vt != VT_EMPTY && !(value.vt == VT_ERROR && value.scode == DISP_E_PARAMNOTFOUND);
}

HRESULT CArguments::GetInt(UINT index, long& value) const
{
    VARIANT converted;
    VariantInit(&converted);
    if (FAILED(VariantChangeType(&converted, Writable((*this)[index]), 0, VT_I4)))
    {
        return DISP_E_TYPEMISMATCH;
    }
    value = converted.lVal;
    return S_OK;
}

HRESULT CArguments::GetText(UINT index, std::wstring& value) const
{
    VARIANT converted;
    VariantInit(&converted);
    if (FAILED(VariantChangeType(&converted, Writable((*this)[index]), 0, VT_BSTR)))
    {
        return DISP_E_TYPEMISMATCH;
    }
    value.assign(converted.bstrVal, SysStringLen(converted.bstrVal));
    VariantClear(&converted);
    return S_OK;
}

HRESULT CArguments::GetBool(UINT index, bool& value) const
{
    const VARIANT& argument = (*this)[index];
    if (argument.vt == VT_BOOL)
    {
        value = argument.boolVal != 0;
        return S_OK;
    }
    long number = 0;
    const HRESULT result = GetInt(index, number);
    if (SUCCEEDED(result))
    {
        value = number != 0;
    }
    return result;
}

std::wstring CArguments::Text() const
{
    std::wstring text;
    for (UINT index = 0; index < Count(); ++index)
    {
        text += (index == 0 ? L"" : L", ") + VariantText((*this)[index]);
    }
    return text;
}

std::wstring VariantText(const VARIANT& value)
{
    switch (value.vt)
    {
    case VT_EMPTY:
        return L"empty";
    case VT_BSTR:
        return L"\"" + std::wstring(value.bstrVal, SysStringLen(value.bstrVal)) + L"\"";
    case VT_I2:
        return std::to_wstring(value.iVal) + L" (I2)";
    case VT_I4:
        return std::to_wstring(value.lVal);
    case VT_BOOL: {
        wchar_t text[32];
        if (swprintf(text, std::size(text), L"%ls (0x%04X)", value.boolVal != 0 ? L"true" : L"false",
                     static_cast<unsigned>(static_cast<USHORT>(value.boolVal))) < 0)
        {
            return {};
        }
        return text;
    }
    case VT_ERROR:
        return value.scode == DISP_E_PARAMNOTFOUND ? L"missing" : HexText(value.scode);
    case VT_DISPATCH:
        return value.pdispVal != nullptr ? L"object" : L"nothing";
    default:
        return L"type " + std::to_wstring(value.vt);
    }
}

CDispatchObject::CDispatchObject(CTrace& trace, const wchar_t* name, const IID& id,
                                 std::span<const Member> members)
    : m_trace(trace), m_name(name), m_id(id), m_members(members)
{
}

STDMETHODIMP CDispatchObject::QueryInterface(REFIID iid, void** object)
{
    if (object == nullptr)
    {
        return E_POINTER;
    }
    IUnknown* found = nullptr;
    if (IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IDispatch) || IsEqualIID(iid, m_id))
    {
        found = static_cast<IDispatch*>(this);
    }
    else
    {
        found = OtherInterface(iid);
    }
    *object = found;
    if (found == nullptr)
    {
        return E_NOINTERFACE;
    }
    found->AddRef();
    return S_OK;
}

STDMETHODIMP_(ULONG) CDispatchObject::AddRef()
{
    return static_cast<ULONG>(InterlockedIncrement(&m_references));
}

STDMETHODIMP_(ULONG) CDispatchObject::Release()
{
    const LONG left = InterlockedDecrement(&m_references);
    if (left == 0)
    {
        delete this;
    }
    return static_cast<ULONG>(left);
}

STDMETHODIMP CDispatchObject::GetTypeInfoCount(UINT* count)
{
    if (count == nullptr)
    {
        return E_POINTER;
    }
    *count = 0;
    return S_OK;
}

STDMETHODIMP CDispatchObject::GetTypeInfo(UINT, LCID, ITypeInfo** information)
{
    if (information != nullptr)
    {
        *information = nullptr;
    }
    return DISP_E_BADINDEX;
}

STDMETHODIMP CDispatchObject::GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID, DISPID* ids)
{
    if (!IsEqualIID(iid, IID_NULL))
    {
        return DISP_E_UNKNOWNINTERFACE;
    }
    if (names == nullptr || ids == nullptr || count == 0)
    {
        return E_INVALIDARG;
    }
    // Further names are those of parameters; none of our members takes arguments by name.
    for (UINT index = 0; index < count; ++index)
    {
        ids[index] = DISPID_UNKNOWN;
    }
    const Member* member = Find(names[0]);
    if (member != nullptr)
    {
        ids[0] = member->id;
    }
    if (member != nullptr && count == 1)
    {
        return S_OK;
    }
    m_trace.Call(kAddIn, kOutlook,
                 std::wstring(m_name) + L".GetIDsOfNames(" + names[count > 1 ? 1 : 0] + L")",
                 DISP_E_UNKNOWNNAME, 0);
    return DISP_E_UNKNOWNNAME;
}

STDMETHODIMP CDispatchObject::Invoke(DISPID id, REFIID iid, LCID locale, WORD flags, DISPPARAMS* parameters,
                                     VARIANT* result, EXCEPINFO*, UINT*)
{
    if (!IsEqualIID(iid, IID_NULL))
    {
        return DISP_E_UNKNOWNINTERFACE;
    }
    if (parameters == nullptr)
    {
        return E_INVALIDARG;
    }
    const bool isWrite = (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
    const CArguments arguments(*parameters);
    const Member* member = Find(id);

    std::wstring line =
        std::wstring(m_name) + L"." + (member != nullptr ? member->name : std::to_wstring(id));
    if (isWrite)
    {
        line += L" := " + arguments.Text() + L" [locale " + std::to_wstring(locale) + L"]";
    }
    else if (arguments.Count() > 0)
    {
        line += L"(" + arguments.Text() + L")";
    }

    VARIANT value;
    VariantInit(&value);
    std::wstring detail;
    const double start = m_trace.Now();
    HRESULT hr = S_OK;
    try
    {
        const UINT extra = isWrite ? 1 : 0;
        const UINT named = isWrite ? 1 : 0;
        if (member == nullptr || (member->kinds & flags) == 0)
        {
            hr = DISP_E_MEMBERNOTFOUND;
        }
        else if (parameters->cNamedArgs != named ||
                 (isWrite && parameters->rgdispidNamedArgs[0] != DISPID_PROPERTYPUT))
        {
            hr = isWrite ? DISP_E_PARAMNOTOPTIONAL : DISP_E_NONAMEDARGS;
        }
        else if (arguments.Count() < member->minimumArguments + extra ||
                 arguments.Count() > member->maximumArguments + extra)
        {
            hr = DISP_E_BADPARAMCOUNT;
        }
        else
        {
            hr = OnCall(id, isWrite, arguments, value);
        }
        if (SUCCEEDED(hr) && value.vt != VT_EMPTY)
        {
            detail = VariantText(value);
        }
    }
    catch (...)
    {
        hr = E_UNEXPECTED;
    }
    m_trace.Call(kAddIn, kOutlook, line, hr, m_trace.Now() - start, detail);
    if (result != nullptr)
    {
        *result = value;
    }
    else
    {
        VariantClear(&value);
    }
    return hr;
}

const Member* CDispatchObject::Find(DISPID id) const
{
    for (const Member& member : m_members)
    {
        if (member.id == id)
        {
            return &member;
        }
    }
    return nullptr;
}

const Member* CDispatchObject::Find(const wchar_t* name) const
{
    for (const Member& member : m_members)
    {
        if (_wcsicmp(member.name, name) == 0)
        {
            return &member;
        }
    }
    return nullptr;
}

HRESULT Return(VARIANT& result, const std::wstring& text)
{
    result.bstrVal = SysAllocStringLen(text.c_str(), static_cast<UINT>(text.size()));
    if (result.bstrVal == nullptr)
    {
        return E_OUTOFMEMORY;
    }
    result.vt = VT_BSTR;
    return S_OK;
}

HRESULT Return(VARIANT& result, long number)
{
    result.vt = VT_I4;
    result.lVal = number;
    return S_OK;
}

HRESULT Return(VARIANT& result, bool value)
{
    result.vt = VT_BOOL;
    result.boolVal = value ? VARIANT_TRUE : VARIANT_FALSE;
    return S_OK;
}

HRESULT Return(VARIANT& result, IDispatch* object)
{
    result.vt = VT_DISPATCH;
    result.pdispVal = object;
    if (object != nullptr)
    {
        object->AddRef();
    }
    return S_OK;
}

} // namespace orva::host
