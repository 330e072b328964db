// Takes pictures of what users see of an update.
#pragma once

#include "demo/Settings.h"
#include "demo/Timeline.h"

namespace orva::demo
{

/// For each language: starts Outlook 2007, which finds the published file as it is, then has its user ask for
/// a check. Tells what is shown, and leaves the pictures in the folder for pictures: offer-LANGUAGE.png,
/// message-start-LANGUAGE.png, message-request-LANGUAGE.png and, of a second message, those with "-2".
/// Nothing is installed. Whether every check was seen to its end.
bool ShowPreview(CSettings settings, CTimeline& timeline);

} // namespace orva::demo
