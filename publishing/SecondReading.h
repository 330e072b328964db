// A second reading of the file, for what the add-in's reader forgets or does not mind.
#pragma once

#include "publishing/Finding.h"

#include <string>

namespace publishing
{

/// Finds names that stand twice in one object, text after the file's value, and what is not JSON although the
/// add-in reads it, for instance a line break in a string. Nothing is found behind such a place, which is why
/// it is an error.
///
/// `isRead`: whether the add-in's reader has read `text` without an error. If not, only repeated names are
/// found: its own error is reported elsewhere.
void CheckBySecondReading(const std::wstring& text, bool isRead, CFindings& findings);

} // namespace publishing
