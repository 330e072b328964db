// Takes a picture of every window, in one language after the other.
#pragma once

#include "demo/Settings.h"
#include "demo/Timeline.h"

namespace orva::demo
{

/// Leaves the pictures in the settings' language in the folder `gallery` below the one for pictures and logs,
/// which must exist, and makes a page of all that are there. Whether every picture of this language was
/// taken.
bool ShowGallery(const CSettings& settings, CTimeline& timeline);

} // namespace orva::demo
