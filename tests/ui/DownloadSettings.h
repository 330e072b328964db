// What downloads in several processes find on the machine: an Office in English, and no proxy.
#pragma once

#include "fixture/ProductFixture.h"
#include "harness/ProxySetting.h"

#include <optional>

namespace orva::test
{

/// Sets it for its lifetime. In a process that RunInProcesses started it does nothing: the settings are the
/// starter's, and the processes would undo each other's.
class CDownloadSettings
{
public:
    CDownloadSettings();

private:
    std::optional<COfficeLanguage> m_language;
    std::optional<CNoProxy> m_noProxy;
};

} // namespace orva::test
