// The whole check of an update: what is found, and what each user will see.
#pragma once

#include "publishing/CheckOptions.h"
#include "publishing/Finding.h"
#include "publishing/Forecast.h"
#include "publishing/InstallerCheck.h"
#include "publishing/ServerCheck.h"

#include <optional>
#include <vector>

namespace publishing
{

/// What the users of one language see who have one version.
struct CUserForecast
{
    CUser user;
    PublishedVersion installed;
    Trigger trigger;
    CForecast forecast;
};

struct CCheckResult
{
    std::wstring source;
    CFindings findings;
    /// What the file publishes; absent if it does not say.
    std::optional<PublishedVersion> version;
    std::optional<CServerFacts> server;
    std::optional<CInstallerFacts> installer;
    /// By version, then by trigger, then by user.
    std::vector<CUserForecast> forecasts;
};

/// Throws CUsageError if something cannot be read.
CCheckResult Check(const CCheckOptions& options);

} // namespace publishing
