// Takes a picture of every window in every language.
#pragma once

#include "demo/Settings.h"
#include "demo/Timeline.h"

namespace orva::demo
{

/// Leaves the pictures and their page in the folder `gallery` below the one for pictures and logs, which must
/// exist. Whether every picture was taken.
bool ShowGallery(CSettings settings, CTimeline& timeline);

} // namespace orva::demo
