#include "demo/Play.h"

#include "demo/PlayFacts.h"
#include "harness/Files.h"
#include "harness/Text.h"
#include "harness/WindowDriver.h"
#include "host/MainWindow.h"
#include "res/resource.h"

#include <cstdio>
#include <stdexcept>

namespace orva::demo
{

using namespace test;

namespace
{

// Milliseconds.
constexpr DWORD kStartTime = 180'000;
constexpr DWORD kCheckTime = 120'000;
constexpr DWORD kEndTime = 30'000;

} // namespace

CPlay::CPlay(const CSettings& settings, CTimeline& timeline) : CStage(settings, timeline)
{
    Publish();
    AskForFacts(settings, timeline);
}

void CPlay::Publish()
{
    std::string installer = "OrvaSetup-";
    if (m_settings.version.empty())
    {
        const auto text = ReadFileBytes(m_settings.file);
        if (!text)
        {
            throw std::runtime_error("cannot read " + Utf8(m_settings.file));
        }
        m_website.PublishText(*text);
    }
    else
    {
        installer += m_settings.version + "-";
    }
    // Such a file may offer an installer too.
    installer += m_settings.language + ".exe";
    m_website.AddInstaller(installer);
    if (!m_settings.version.empty())
    {
        m_website.PublishVersion(m_settings.version, installer);
    }
}

bool CPlay::Run()
{
    const std::string office = std::to_string(m_settings.office);
    m_timeline.Tell("Outlook", office + " starts (OutlookHost.exe --office " + office + " --mode startup)");
    StartOutlook(m_settings.office);
    if (m_settings.isForPerson)
    {
        PlayForPerson();
    }
    else
    {
        PlayStart();
        if (IsSeen("started"))
        {
            PlayRequest();
        }
        PlayEnd();
    }
    ExamineLog();
    return m_timeline.End();
}

void CPlay::PlayStart()
{
    if (!Watch(kStartTime, [this] { return IsSeen("started"); }))
    {
        m_timeline.Tell("", "Outlook's start was not completed in time");
        return;
    }
    if (!IsSeen("start-offer") && !IsSeen("start-message"))
    {
        See("start-silence");
    }
    if (IsSeen("progress") && m_settings.answer == "install")
    {
        Watch(kEndTime, [this] { return IsSeen("installer-window") && IsSeen("downloaded-whole"); });
    }
    // A dialog may be gone a moment before its owner is enabled.
    if (m_main != nullptr && WaitUntilEnabled(m_main))
    {
        See("start-enabled");
        Picture(m_main, "outlook");
    }
    ExamineDownload();
}

void CPlay::PlayRequest()
{
    m_phase = "request";
    if (m_settings.office == 12)
    {
        RequestInAbout();
    }
    else if (m_settings.office == 14)
    {
        RequestInFileView();
    }
    CatchUp();
    if (!IsSeen("command"))
    {
        See("no-command");
    }
    if (IsSeen("request-asked") && WaitUntilEnabled(m_main))
    {
        See("request-enabled");
    }
}

void CPlay::RequestInFileView()
{
    User(L"opens the File view");
    ClickButton(m_main, host::kFileButton);
    if (!Watch(kPatience, [this] { return IsSeen("file-view"); }))
    {
        m_timeline.Tell("", "the File view did not open");
        return;
    }
    Picture(m_main, "file-view");
    if (m_settings.language == "es")
    {
        User(L"sees no tab of the add-in");
        return;
    }
    const std::wstring label = m_texts.Get(IDS_UPDBUTTON_LABEL);
    const HWND button = ControlWithText(m_main, label, true);
    if (button == nullptr)
    {
        m_timeline.Tell("", "the File view has no button \"" + Utf8(label) + "\"");
        return;
    }
    const std::wstring version = m_texts.InstalledVersion();
    if (ControlWithText(m_main, m_texts.Get(IDS_DESCRIPTION1), false) != nullptr &&
        ControlWithText(m_main, version, false) != nullptr)
    {
        User(L"sees the add-in's tab: " + version);
        See("backstage");
    }
    Press(m_main, GetDlgCtrlID(button));
    if (!Watch(kCheckTime, [this] { return IsSeen("update-pressed"); }))
    {
        m_timeline.Tell("", "the check did not end in time");
    }
}

void CPlay::RequestInAbout()
{
    User(L"chooses \"" + m_texts.Get(IDS_ABOUT_COMMAND) + L"\" in the Help menu");
    OpenMenuAtLastItem(m_main, L'h');
    m_camera.TakeScreen(NextPicture("help-menu"));
    PostKey(m_main, VK_RETURN);
    if (!Watch(kPatience, [this] { return m_about != nullptr; }))
    {
        m_timeline.Tell("", "the About dialog did not open");
        return;
    }
    Press(m_about, IDC_ABOUT_UPDATE);
    // Disabled from before the request until the check is over.
    if (!Watch(kCheckTime, [this] { return IsSeen("request-asked") && IsWindowEnabled(m_about); }))
    {
        m_timeline.Tell("", "the check did not end in time");
    }
    Press(m_about, IDC_ABOUT_CLOSE);
    if (WaitUntilGone(m_about))
    {
        See("about-closed");
    }
}

void CPlay::PlayEnd()
{
    CatchUp();
    if (m_main != nullptr)
    {
        User(L"closes Outlook");
        PostMessageW(m_main, WM_CLOSE, 0, 0);
    }
    Watch(kEndTime, [this] { return IsOver(); });
    TellEnd();
}

void CPlay::PlayForPerson()
{
    std::puts("It is your turn: answer what Outlook shows, and close it when you have seen enough.");
    std::fflush(stdout);
    Watch(INFINITE, [this] { return IsOver(); });
    TellEnd();
    ExamineDownload();
}

void CPlay::TellEnd()
{
    CatchUp();
    const auto status = m_outlook->WaitForExit(0);
    if (!status)
    {
        m_timeline.Tell("", "Outlook did not end");
        return;
    }
    m_timeline.Tell("Outlook", "has ended with status " + std::to_string(*status));
    if (*status == 0)
    {
        See("ended");
    }
}

void CPlay::User(const std::wstring& text)
{
    m_timeline.Tell("user", Utf8(text));
}

void CPlay::Press(HWND window, int id)
{
    User(L"presses \"" + ChildText(window, id) + L"\"");
    ClickButton(window, id);
}

std::wstring CPlay::NextPicture(const std::string& name)
{
    const std::wstring number = std::to_wstring(++m_pictures);
    return m_settings.out + L"\\" + (m_pictures < 10 ? L"0" : L"") + number + L"-" + Widen(name) + L".png";
}

} // namespace orva::demo
