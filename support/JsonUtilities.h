// Lookups in the JSON objects of the update-information file, free of Windows headers.
#pragma once

#include <json_spirit.h>

#include <string>

/// The member `name` of `object` (exact, case-sensitive), or a shared null value if there is none, so that a
/// missing member and a null one look the same.
const json_spirit::wmValue& FindValue(const json_spirit::wmObject& object, const std::wstring& name);

/// The text of the member `name`; empty if it is missing or null. Throws json_spirit's type error
/// (std::runtime_error) if it is not a string.
std::wstring GetStringValue(const json_spirit::wmObject& object, const std::wstring& name);
