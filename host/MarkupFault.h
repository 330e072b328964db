// Finds with the system's SAX parser where and why a text is not well-formed.
#pragma once

#include "host/RibbonMarkup.h"

#include <string>

namespace orva::host
{

/// Fills in reason, line and position of the first fatal error. Leaves `error` as it is when the parser finds
/// none. The DOM parser of some systems does not report the place of an error; the SAX parser always does.
void LocateMarkupFault(const std::wstring& text, MarkupError& error);

} // namespace orva::host
