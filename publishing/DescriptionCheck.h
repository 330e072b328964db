// The descriptions of the update in the languages that there are.
#pragma once

#include "publishing/Finding.h"

#include <json_spirit.h>

#include <string>

namespace publishing
{

/// A missing default, texts of another type, names that nobody reads, empty texts, texts that are longer than
/// their box in the offer, texts that the box takes for RTF.
void CheckDescription(const json_spirit::wmObject& texts, const std::wstring& path, CFindings& findings);

} // namespace publishing
