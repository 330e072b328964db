// What the add-in's check shows of a file, noted at the functions of Windows through which it shows it. The
// Internet is CFakeWinInet's, and no window appears but the offer, which is answered before it is seen: so a
// check takes a few milliseconds.
#pragma once

#include "download/FakeWinInet.h"
#include "harness/ImportHook.h"
#include "harness/TempFolder.h"
#include "publishing/Forecast.h"

#include <windows.h>

#include <string>

namespace orva::test
{

/// One at a time, on the thread that runs the checks. What was downloaded is not started.
class CShownByAddIn
{
public:
    CShownByAddIn();
    ~CShownByAddIn();
    CShownByAddIn(const CShownByAddIn&) = delete;
    CShownByAddIn& operator=(const CShownByAddIn&) = delete;

    /// Runs the check of this file as Outlook's start or as the button "Update" does. `isInstalled`: whether
    /// the user answers an offer with "Install". The version in an offer is empty where the user's language
    /// has no text for it.
    publishing::CForecast Run(const std::string& file, publishing::Trigger trigger, bool isInstalled);

private:
    CPrivateTemp m_temp;
    CImportHook m_message;
    CImportHook m_dialog;
    CImportHook m_text;
    CImportHook m_show;
    CImportHook m_trace;
    CImportHook m_sleep;
    CImportHook m_execute;
};

} // namespace orva::test
