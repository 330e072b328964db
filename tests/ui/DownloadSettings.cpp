#include "ui/DownloadSettings.h"

#include "harness/TestProcesses.h"
#include "ui/LocalizedResources.h"

namespace orva::test
{

CDownloadSettings::CDownloadSettings()
{
    if (ProcessNumber())
    {
        GetLocalizedResources().SetOfficeVersion(kOffice2010);
        return;
    }
    m_language.emplace(1033);
    m_noProxy.emplace();
}

} // namespace orva::test
