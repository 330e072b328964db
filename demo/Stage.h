// The play's stage: the registered add-in in the stand-in Outlook, and what is heard of both while windows
// come and go.
#pragma once

#include "demo/AddInTexts.h"
#include "demo/Camera.h"
#include "demo/Desktop.h"
#include "demo/Settings.h"
#include "demo/Timeline.h"
#include "demo/Website.h"
#include "harness/LogFile.h"
#include "harness/OfficeLanguage.h"
#include "harness/ProcessRunner.h"
#include "harness/ProxySetting.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace orva::demo
{

/// A log that another program writes.
class CTail
{
public:
    explicit CTail(std::wstring path) : m_path(std::move(path)) {}
    /// The complete lines that were added since the last call.
    std::vector<std::string> NewLines();

private:
    std::wstring m_path;
    size_t m_read = 0;
};

/// Registers the add-in, leads its requests to the web server, sets Office's language and switches the log
/// on; what an earlier play has left is removed. Throws std::runtime_error when that fails.
class CStage
{
public:
    CStage(const CSettings& settings, CTimeline& timeline);
    virtual ~CStage() = default;
    CStage(const CStage&) = delete;
    CStage& operator=(const CStage&) = delete;

protected:
    /// A new window, whose turn it is.
    virtual void Meet(const CMetWindow& window) = 0;
    /// A line of the stand-in's trace, without its time.
    virtual void OnTrace(const std::string& line) = 0;
    /// A line of the web server's log.
    virtual void OnRequest(const std::string&) {}

    void StartOutlook(int office);
    /// Hands on windows and lines until the condition holds. False when the time, in milliseconds, is over or
    /// Outlook has ended.
    bool Watch(DWORD timeout, const std::function<bool()>& condition);
    /// Hands on the new lines of both logs.
    void CatchUp();
    bool IsOver() const { return !m_outlook->IsRunning(); }
    /// The folders and files below the temporary folder that the add-in made, as full paths.
    static std::vector<std::wstring> Downloads();

    const CSettings m_settings;
    CTimeline& m_timeline;
    const CAddInTexts m_texts;
    const CCamera m_camera;
    CWebsite m_website;
    std::unique_ptr<test::CChildProcess> m_outlook;
    HWND m_main = nullptr;

private:
    test::CDebugLogOn m_log;
    test::COfficeLanguageSetting m_language;
    test::CProxySetting m_proxy;
    CDesktop m_desktop;
    CTail m_trace;
    CTail m_requests;
};

} // namespace orva::demo
