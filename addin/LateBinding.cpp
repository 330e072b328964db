#include "addin/LateBinding.h"

#include <algorithm>
#include <vector>

namespace
{

void ThrowIfFailed(HRESULT hr)
{
    if (FAILED(hr))
    {
        AtlThrow(hr);
    }
}

} // namespace

CComVariant GetByName(IDispatch* object, LPCOLESTR name, std::span<const VARIANT> arguments)
{
    if (object == nullptr)
    {
        AtlThrow(E_POINTER);
    }
    auto* names = const_cast<LPOLESTR>(name);
    DISPID id = DISPID_UNKNOWN;
    ThrowIfFailed(object->GetIDsOfNames(IID_NULL, &names, 1, LOCALE_USER_DEFAULT, &id));

    // IDispatch takes the last argument first.
    std::vector<VARIANT> reversed(arguments.rbegin(), arguments.rend());
    DISPPARAMS parameters{reversed.data(), nullptr, static_cast<UINT>(reversed.size()), 0};
    CComVariant result;
    // A collection's Item is a property with an argument in one Office version and a method in another.
    ThrowIfFailed(object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD | DISPATCH_PROPERTYGET,
                                 &parameters, &result, nullptr, nullptr));
    return result;
}

CComPtr<IDispatch> GetObjectByName(IDispatch* object, LPCOLESTR name, REFIID iid,
                                   std::span<const VARIANT> arguments)
{
    const CComVariant result = GetByName(object, name, arguments);
    CComPtr<IDispatch> found;
    if (result.vt == VT_DISPATCH && result.pdispVal != nullptr)
    {
        result.pdispVal->QueryInterface(iid, reinterpret_cast<void**>(&found));
    }
    if (found == nullptr)
    {
        AtlThrow(E_POINTER);
    }
    return found;
}

HRESULT PutDispatchProperty(IDispatch* object, LPOLESTR name, VARIANT value)
{
    DISPID id = DISPID_UNKNOWN;
    const HRESULT hr = object->GetIDsOfNames(IID_NULL, &name, 1, LOCALE_USER_DEFAULT, &id);
    if (FAILED(hr))
    {
        return hr;
    }
    DISPID propertyPut = DISPID_PROPERTYPUT;
    DISPPARAMS parameters{&value, &propertyPut, 1, 1};
    return object->Invoke(id, IID_NULL, LOCALE_SYSTEM_DEFAULT, DISPATCH_PROPERTYPUT, &parameters, nullptr,
                          nullptr, nullptr);
}
