#include "addin/LateBinding.h"

#include <vector>

CComPtr<IDispatch> QueryDispatch(IDispatch* object, REFIID iid)
{
    CComPtr<IDispatch> found;
    if (object != nullptr)
    {
        object->QueryInterface(iid, reinterpret_cast<void**>(&found));
    }
    return found;
}

HRESULT GetByName(IDispatch* object, LPCOLESTR name, CComVariant& result, std::span<const VARIANT> arguments)
{
    if (object == nullptr)
    {
        return E_POINTER;
    }
    auto* names = const_cast<LPOLESTR>(name);
    DISPID id = DISPID_UNKNOWN;
    const HRESULT hr = object->GetIDsOfNames(IID_NULL, &names, 1, LOCALE_USER_DEFAULT, &id);
    if (FAILED(hr))
    {
        return hr;
    }

    // DISPPARAMS holds the arguments in reverse order.
    std::vector<VARIANT> reversed(arguments.rbegin(), arguments.rend());
    DISPPARAMS parameters{reversed.data(), nullptr, static_cast<UINT>(reversed.size()), 0};
    // A collection's Item is a property with an argument in one Office version and a method in another.
    return object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD | DISPATCH_PROPERTYGET,
                          &parameters, &result, nullptr, nullptr);
}

CComPtr<IDispatch> GetObjectByName(IDispatch* object, LPCOLESTR name, REFIID iid,
                                   std::span<const VARIANT> arguments)
{
    CComVariant result;
    if (FAILED(GetByName(object, name, result, arguments)) || result.vt != VT_DISPATCH)
    {
        return {};
    }
    return QueryDispatch(result.pdispVal, iid);
}

HRESULT PutDispatchProperty(IDispatch* object, LPOLESTR name, VARIANT value)
{
    if (object == nullptr)
    {
        return E_POINTER;
    }
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
