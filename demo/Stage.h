// The stage of the play: the add-in in the stand-in Outlook, and what is heard of both while windows come and
// go.
#pragma once

#include "demo/AddInTexts.h"
#include "demo/Desktop.h"
#include "demo/Settings.h"
#include "demo/Timeline.h"
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

/// Installs the add-in with its setup, leads its requests to the web server, sets Office's language and
/// switches the log on. Throws std::runtime_error when that fails.
class CStage
{
public:
    CStage(const CSettings& settings, CTimeline& timeline);
    virtual ~CStage() = default;
    CStage(const CStage&) = delete;
    CStage& operator=(const CStage&) = delete;

protected:
    /// How long Outlook may take to start, with its check, and to end. Milliseconds.
    static constexpr DWORD kStartTime = 180'000;
    static constexpr DWORD kEndTime = 30'000;

    /// A new window, whose turn it is.
    virtual void Meet(const CMetWindow& window) = 0;
    /// A line of the stand-in's trace, without its time.
    virtual void OnTrace(const std::string& line) = 0;
    /// A line of the web server's log.
    virtual void OnRequest(const std::string&) {}

    /// Its trace is the file `trace` in the folder for logs.
    void StartOutlook(const std::wstring& office, const std::wstring& trace);
    /// Hands on windows and lines until the condition holds. False, and `otherwise` is told, when the time is
    /// over (in milliseconds) or Outlook has ended.
    bool Watch(DWORD timeout, const std::function<bool()>& condition, const char* otherwise = nullptr);
    /// Hands on the new lines of both logs.
    void CatchUp();
    bool IsOver() const { return !m_outlook->IsRunning(); }
    /// Takes a picture of the window with its frame, or of the screen if it is null. It is brought to the
    /// front and given time to be drawn, unless it is wanted now because the window will soon be gone.
    void TakePicture(HWND window, const std::wstring& file, bool isWantedNow = false) const;
    /// The paths of what downloads have left in the temporary folder.
    static std::vector<std::wstring> Downloads();
    /// The version that "Programs and Features" shows; empty if it has none.
    static std::wstring InstalledVersion();

    const CSettings m_settings;
    CTimeline& m_timeline;
    const CAddInTexts m_texts;
    std::unique_ptr<test::CChildProcess> m_outlook;
    HWND m_main = nullptr;

private:
    test::CDebugLogOn m_log;
    test::COfficeLanguageSetting m_language;
    test::CProxySetting m_proxy;
    CDesktop m_desktop;
    std::wstring m_trace;
    size_t m_traceRead = 0;
    size_t m_requestsRead = 0;
};

} // namespace orva::demo
