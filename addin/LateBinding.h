// Calls of Office objects by name, so that one build serves every Office version.
#pragma once

#include <atlbase.h>

#include <oaidl.h>

#include <span>

/// The interface `iid`, a dispatch interface, of `object`; null when `object` is null or does not have it.
CComPtr<IDispatch> QueryDispatch(IDispatch* object, REFIID iid);

/// Reads the property `name`, or calls the method of that name that returns a value, with `arguments` in the
/// order of a call. Returns E_POINTER when `object` is null, else the failure of the look-up or the result of
/// the call.
HRESULT GetByName(IDispatch* object, LPCOLESTR name, CComVariant& result,
                  std::span<const VARIANT> arguments = {});

/// The same for a result that is an object, asked for by its interface id. Null when the call fails or its
/// result is no object or one without that interface.
CComPtr<IDispatch> GetObjectByName(IDispatch* object, LPCOLESTR name, REFIID iid,
                                   std::span<const VARIANT> arguments = {});

/// Sets the property `name` of `object` to a bitwise copy of `value`; the caller keeps what `value` points
/// to. Returns E_POINTER when `object` is null, else the failure of the look-up or the result of the call.
///
/// The name is looked up in the user's default locale, the value set in the system's. The two differ on
/// purpose.
HRESULT PutDispatchProperty(IDispatch* object, LPOLESTR name, VARIANT value);
