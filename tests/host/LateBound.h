// Calls by name, as add-ins make them: GetIDsOfNames, then Invoke.
#pragma once

#include <wrl/client.h>

#include <windows.h>
#include <comdef.h>
#include <oaidl.h>

#include <initializer_list>
#include <string>
#include <vector>

namespace orva::test
{

/// Calls a member; `arguments` are in their natural order. Returns the result of GetIDsOfNames if that fails,
/// otherwise that of Invoke.
inline HRESULT CallByName(IDispatch* object, const wchar_t* name, WORD flags,
                          std::initializer_list<_variant_t> arguments, _variant_t& result)
{
    std::wstring copy = name;
    LPOLESTR names[] = {copy.data()};
    DISPID id = DISPID_UNKNOWN;
    const HRESULT found = object->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id);
    if (FAILED(found))
    {
        return found;
    }
    std::vector<VARIANT> reversed(std::rbegin(arguments), std::rend(arguments));
    DISPPARAMS parameters{reversed.data(), nullptr, static_cast<UINT>(reversed.size()), 0};
    DISPID put = DISPID_PROPERTYPUT;
    if ((flags & DISPATCH_PROPERTYPUT) != 0)
    {
        parameters.rgdispidNamedArgs = &put;
        parameters.cNamedArgs = 1;
    }
    return object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &parameters, &result, nullptr, nullptr);
}

inline HRESULT GetByName(IDispatch* object, const wchar_t* name, _variant_t& result)
{
    return CallByName(object, name, DISPATCH_PROPERTYGET, {}, result);
}

inline HRESULT PutByName(IDispatch* object, const wchar_t* name, const _variant_t& value)
{
    _variant_t result;
    return CallByName(object, name, DISPATCH_PROPERTYPUT, {value}, result);
}

/// The object that a property or method without arguments returns; null when there is none.
inline Microsoft::WRL::ComPtr<IDispatch> ObjectByName(IDispatch* object, const wchar_t* name,
                                                      WORD flags = DISPATCH_PROPERTYGET)
{
    _variant_t result;
    if (object == nullptr || FAILED(CallByName(object, name, flags, {}, result)) || result.vt != VT_DISPATCH)
    {
        return nullptr;
    }
    return result.pdispVal;
}

/// The value of an omitted argument.
inline _variant_t Missing()
{
    return _variant_t(DISP_E_PARAMNOTFOUND, VT_ERROR);
}

} // namespace orva::test
