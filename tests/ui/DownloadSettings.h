// What downloads in several processes find on the machine: an Office in English, and no proxy.
#pragma once

#include "fixture/ProductFixture.h"
#include "harness/ProxySetting.h"

#include <optional>

namespace orva::test
{

/// Sets it for its lifetime; in a process that RunInProcesses started, relies on the starter's object. Those
/// processes would otherwise take it back under each other's feet.
class CDownloadSettings
{
public:
    CDownloadSettings();

private:
    std::optional<COfficeLanguage> m_language;
    std::optional<CNoProxy> m_noProxy;
};

} // namespace orva::test
