// Takes pictures of the setup's and the uninstaller's windows.
#pragma once

#include "demo/Stage.h"

namespace orva::demo
{

/// The windows in the language of Windows. Outlook must be closed. Leaves the connector installed as it was.
class CSetupTour : public CStage
{
public:
    using CStage::CStage;

    void Run();

private:
    void Meet(const CMetWindow&) override {}
    void OnTrace(const std::string&) override {}

    /// Runs a program with two pages to its end, and takes a picture of both.
    void ShowPages(const std::wstring& program, const std::string& first, const std::string& last);
    void Picture(HWND window, const std::string& row);
};

} // namespace orva::demo
