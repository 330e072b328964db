// The least of Outlook that an add-in asks for at its start: an application of version 14 without a window.
#pragma once

#include <oaidl.h>

namespace orva::bench
{

/// The one application object; it lives as long as the program.
IDispatch* FakeOutlook();

} // namespace orva::bench
