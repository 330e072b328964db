// Where and why a text is not well-formed, as the system's SAX parser says.
#pragma once

#include "host/RibbonMarkup.h"

#include <string>

namespace orva::host
{

/// Fills in reason, line and position of the first fatal error. Leaves `error` as it is when the parser finds
/// none. The DOM parser of some systems reports that there is an error, but not where; its SAX sibling always
/// does.
void LocateMarkupFault(const std::wstring& text, MarkupError& error);

} // namespace orva::host
