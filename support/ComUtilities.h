// Byte arrays and identifiers for automation.
#pragma once

#include <windows.h>
#include <oaidl.h>

#include <cstdint>
#include <string>

/// Copies `count` bytes into a new one-dimensional array of VT_UI1 with the lower bound 0 and stores it in
/// `out`.
///
/// Returns E_OUTOFMEMORY if `out` is null, E_UNEXPECTED if the array could not be created, locked or
/// unlocked, else S_OK. The caller destroys the array.
HRESULT BytesToSafeArray(const void* bytes, std::uint32_t count, SAFEARRAY** out);

/// A new GUID in registry form: 38 characters with braces and upper-case digits.
std::string CreateGuidString();
std::wstring CreateGuidStringW();
