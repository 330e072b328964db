// Names of members that the add-in does not know, and what was perhaps meant.
#pragma once

#include "publishing/Finding.h"

#include <json_spirit.h>

#include <initializer_list>
#include <string>
#include <string_view>

namespace publishing
{

/// A warning for each member of `object` whose name is not one of `known`. `path` is the object's, empty for
/// the root.
void CheckNames(const json_spirit::wmObject& object, const std::wstring& path,
                std::initializer_list<std::wstring_view> known, CFindings& findings);

/// "x64.downloadLink" of the parts "x64" and "downloadLink".
std::wstring JoinPath(const std::wstring& path, std::wstring_view name);

} // namespace publishing
