// Finds members and reports those that are missing or of the wrong type.
#pragma once

#include "publishing/Finding.h"

#include <json_spirit.h>

#include <string>

namespace publishing
{

/// The member `name` of `object` if it is there, not null and of this type; else null, and an error.
/// `path` is the object's.
const json_spirit::wmValue* FindMember(const json_spirit::wmObject& object, const std::wstring& path,
                                       const std::wstring& name, json_spirit::Value_type type,
                                       CFindings& findings);

/// Whether `value` is of this type; an error if not.
bool CheckType(const json_spirit::wmValue& value, const std::wstring& path, json_spirit::Value_type type,
               CFindings& findings);

} // namespace publishing
