// The type libraries of Office that add-ins dispatch through, for machines without Office.
#pragma once

#include "host/Trace.h"

namespace orva::host
{

/// Registers this program's copies of the AddInDesignerObjects and Office libraries for the current user,
/// each only where no library of its id and version can be loaded: a real Office's own registration is never
/// replaced. Writes one trace line for each library.
void EnsureTypeLibraries(CTrace& trace);

} // namespace orva::host
