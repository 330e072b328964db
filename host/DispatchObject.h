// Base of the objects that add-ins call by name: reference count, names, argument checks and trace lines.
#pragma once

#include "host/Trace.h"

#include <windows.h>
#include <oaidl.h>

#include <span>
#include <string>
#include <vector>

namespace orva::host
{

/// One member of an object as Office's documentation describes it.
struct Member
{
    DISPID id;
    const wchar_t* name;
    /// DISPATCH_METHOD, DISPATCH_PROPERTYGET, DISPATCH_PROPERTYPUT or a sum. A call of another kind is
    /// refused, as it is by type information.
    WORD kinds;
    /// Arguments of a method or a property read; a write has one more, the value.
    UINT minimumArguments = 0;
    UINT maximumArguments = 0;
};

/// The arguments of one call, first argument first.
class CArguments
{
public:
    explicit CArguments(const DISPPARAMS& parameters) : m_parameters(parameters) {}

    UINT Count() const { return m_parameters.cArgs; }
    /// Argument `index`, from 0; VT_ERROR with DISP_E_PARAMNOTFOUND where the caller passed fewer.
    const VARIANT& operator[](UINT index) const;
    /// False when left out or passed as "missing" (VT_ERROR with DISP_E_PARAMNOTFOUND).
    bool Has(UINT index) const;
    /// The argument as an integer or a text; DISP_E_TYPEMISMATCH when it cannot be converted.
    HRESULT GetInt(UINT index, long& value) const;
    HRESULT GetText(UINT index, std::wstring& value) const;
    /// Like Office, takes any value other than zero, of any width, as true.
    HRESULT GetBool(UINT index, bool& value) const;
    /// All arguments, for the trace: `1, missing, "text"`.
    std::wstring Text() const;

private:
    const DISPPARAMS& m_parameters;
};

/// A value for the trace.
std::wstring VariantText(const VARIANT& value);

/// An IDispatch without type information. A derived class lists its members and implements OnCall.
/// QueryInterface returns this IDispatch also for `id`, the interface id of Office's object: add-ins call no
/// other function of that interface.
class CDispatchObject : public IDispatch
{
public:
    CDispatchObject(CTrace& trace, const wchar_t* name, const IID& id, std::span<const Member> members);
    CDispatchObject(const CDispatchObject&) = delete;
    CDispatchObject& operator=(const CDispatchObject&) = delete;

    STDMETHODIMP QueryInterface(REFIID iid, void** object) override;
    STDMETHODIMP_(ULONG) AddRef() override;
    STDMETHODIMP_(ULONG) Release() override;
    STDMETHODIMP GetTypeInfoCount(UINT* count) override;
    STDMETHODIMP GetTypeInfo(UINT index, LCID locale, ITypeInfo** information) override;
    STDMETHODIMP GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID locale, DISPID* ids) override;
    STDMETHODIMP Invoke(DISPID id, REFIID iid, LCID locale, WORD flags, DISPPARAMS* parameters,
                        VARIANT* result, EXCEPINFO* exception, UINT* argumentError) override;

protected:
    virtual ~CDispatchObject() = default;

    /// Carries out a call whose kind and argument count have been checked. `result` is empty at the start.
    virtual HRESULT OnCall(DISPID id, bool isWrite, const CArguments& arguments, VARIANT& result) = 0;
    /// Further interfaces of the object, without AddRef; null when there is no such interface.
    virtual IUnknown* OtherInterface(REFIID) { return nullptr; }
    CTrace& Trace() const { return m_trace; }

private:
    const Member* Find(DISPID id) const;
    const Member* Find(const wchar_t* name) const;

    CTrace& m_trace;
    const wchar_t* m_name;
    IID m_id;
    std::span<const Member> m_members;
    LONG m_references = 0;
};

/// Results of OnCall.
HRESULT Return(VARIANT& result, const std::wstring& text);
HRESULT Return(VARIANT& result, long number);
HRESULT Return(VARIANT& result, bool value);
/// Null gives an empty object reference, not a failure.
HRESULT Return(VARIANT& result, IDispatch* object);

} // namespace orva::host
