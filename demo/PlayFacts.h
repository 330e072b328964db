// What must be seen to happen in a play.
#pragma once

#include "demo/Settings.h"
#include "demo/Timeline.h"

namespace orva::demo
{

/// Asks for everything that follows from the settings.
void AskForFacts(const CSettings& settings, CTimeline& timeline);
/// Asks for what follows from the answer to an offer; AskForFacts does that itself if it knows of an offer.
void AskForAnswer(const CSettings& settings, CTimeline& timeline);

} // namespace orva::demo
