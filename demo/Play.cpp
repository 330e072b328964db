#include "demo/Play.h"

#include "OrvaVersion.h"
#include "harness/Files.h"
#include "harness/Text.h"
#include "harness/WindowDriver.h"
#include "host/MainWindow.h"
#include "res/resource.h"

#include <cstdio>
#include <sstream>

namespace orva::demo
{

using namespace test;

namespace
{

// Milliseconds.
constexpr DWORD kCheckTime = 120'000;
constexpr char kTooLate[] = "the check did not end in time";

} // namespace

bool CPlay::Run()
{
    AskForFacts();
    PlayInstallation();
    if (IsUpdate() && m_settings.signing == L"signed")
    {
        PlayChangedInstaller();
    }
    PlayOutlook("start", !IsUpdate());
    if (IsUpdate())
    {
        PlayPrograms();
        PlayOutlook("restart", true);
    }
    ExamineLog();
    return m_timeline.End();
}

// CStage has run the setup.
void CPlay::PlayInstallation()
{
    const std::wstring program = m_settings.setup.substr(m_settings.setup.rfind(L'\\') + 1);
    m_timeline.Tell("setup", Utf8(program + L" /S has installed version " + InstalledVersion()));
    See("installed", InstalledVersion() == L"" ORVA_VERSION);
}

void CPlay::PlayOutlook(const std::string& phase, bool hasRequest)
{
    m_phase = phase;
    m_version = InstalledVersion();
    const std::string office = Utf8(m_settings.office);
    m_timeline.Tell("Outlook", office + " starts (OutlookHost.exe --office " + office + " --mode startup)");
    StartOutlook(m_settings.office, L"host-" + Widen(phase) + L".log");
    if (IsForPerson())
    {
        std::puts("It is your turn: answer what Outlook shows, and close it when you have seen enough.");
        Watch(INFINITE, [this] { return IsOver(); });
    }
    else if (Watch(
                 kStartTime, [this] { return IsSeen(InPhase("completed")); },
                 "Outlook's start was not completed in time"))
    {
        PlayStart();
        if (hasRequest)
        {
            PlayRequest();
        }
    }
    PlayEnd(phase);
}

void CPlay::PlayStart()
{
    See(InPhase("silence"), !IsSeen(InPhase("offer")) && !IsSeen(InPhase("message")));
    if (m_phase == "start" && IsSeen("start-progress") && m_settings.answer == L"install")
    {
        Watch(kEndTime, [this] { return IsSeen("installer-window") && IsSeen("start-downloaded-whole"); });
    }
    // A dialog may be gone a moment before its owner is enabled.
    if (m_main != nullptr && WaitUntilEnabled(m_main))
    {
        See(InPhase("enabled"));
        if (m_phase == "start")
        {
            Picture(m_main, "outlook");
        }
    }
    ExamineDownload();
}

void CPlay::PlayChangedInstaller()
{
    const std::string installer = ReadFileBytes(m_settings.installer).value_or("");
    std::string changed = installer;
    changed.back() = static_cast<char>(changed.back() ^ 1);
    WriteFileBytes(m_settings.installer, changed);
    m_timeline.Tell("network", "changes one bit of the installer on its way");
    PlayOutlook("changed", false);
    WriteFileBytes(m_settings.installer, installer);
    m_timeline.Tell("network", "leaves the installer as the publisher has signed it");
    for (const std::wstring& path : Downloads())
    {
        RemovePath(path);
    }
}

void CPlay::PlayPrograms()
{
    const std::wstring installed = InstalledVersion();
    CChildProcess programs({.program = L"control.exe", .arguments = {L"appwiz.cpl"}});
    const HWND window = WaitForWindow({.process = programs.Id(), .className = kDialogClass});
    User(L"looks at \"Programs and Features\": ORVA Connector " + installed);
    Picture(window, "programs");
    See("updated", window != nullptr && installed == m_settings.publish);
    if (window != nullptr && ClickButton(window, IDCANCEL))
    {
        programs.WaitForExit();
    }
}

void CPlay::PlayRequest()
{
    m_phase = "request";
    if (m_settings.office == L"12")
    {
        RequestInAbout();
    }
    else if (m_settings.office == L"14")
    {
        RequestInFileView();
    }
    CatchUp();
    See("no-command", !IsSeen("command"));
    See("request-enabled", IsSeen("request-asked") && WaitUntilEnabled(m_main));
}

void CPlay::RequestInFileView()
{
    User(L"opens the File view");
    // Added a moment after the start.
    WaitUntil([this] { return ClickButton(m_main, host::kFileButton); });
    if (!Watch(
            kPatience, [this] { return IsSeen("file-view"); }, "the File view did not open"))
    {
        return;
    }
    Picture(m_main, "file-view");
    if (m_settings.language == L"es")
    {
        User(L"sees no tab of the add-in");
        return;
    }
    const std::wstring label = m_texts.Get(IDS_UPDBUTTON_LABEL);
    const HWND button = ControlWithText(m_main, L"Button", label);
    if (button == nullptr)
    {
        m_timeline.Tell("", "the File view has no button \"" + Utf8(label) + "\"");
        return;
    }
    const std::wstring version = VersionLine();
    if (ControlWithText(m_main, L"Static", m_texts.Get(IDS_DESCRIPTION1)) != nullptr &&
        ControlWithText(m_main, L"Static", version) != nullptr)
    {
        User(L"sees the add-in's tab: " + version);
        See("backstage");
    }
    Press(m_main, GetDlgCtrlID(button));
    Watch(
        kCheckTime, [this] { return IsSeen("update-pressed"); }, kTooLate);
}

void CPlay::RequestInAbout()
{
    User(L"chooses \"" + m_texts.Get(IDS_ABOUT_COMMAND) + L"\" in the Help menu");
    OpenMenuAtLastItem(m_main, L'h');
    // Of the whole screen, because a menu is a window of its own.
    Picture(nullptr, "help-menu");
    PostKey(m_main, VK_RETURN);
    if (!Watch(
            kPatience, [this] { return m_about != nullptr; }, "the About dialog did not open"))
    {
        return;
    }
    Press(m_about, IDC_ABOUT_UPDATE);
    // Disabled from before the request until the check is over.
    Watch(
        kCheckTime, [this] { return IsSeen("request-asked") && IsWindowEnabled(m_about); }, kTooLate);
    Press(m_about, IDC_ABOUT_CLOSE);
    See("about-closed", WaitUntilGone(m_about));
}

void CPlay::PlayEnd(const std::string& phase)
{
    CatchUp();
    if (m_main != nullptr && !IsForPerson())
    {
        User(L"closes Outlook");
        PostMessageW(m_main, WM_CLOSE, 0, 0);
        Watch(kEndTime, [this] { return IsOver(); });
    }
    const auto status = m_outlook->WaitForExit(0);
    CatchUp();
    m_timeline.Tell(status ? "Outlook" : "",
                    status ? "has ended with status " + std::to_string(*status) : "Outlook did not end");
    See(phase + "-ended", status == 0u);
    if (IsForPerson())
    {
        ExamineDownload();
        m_timeline.Tell("setup", "installed is version " + Utf8(InstalledVersion()));
    }
}

std::wstring CPlay::VersionLine() const
{
    std::wistringstream numbers(m_version);
    int major = 0;
    int minor = 0;
    int build = 0;
    wchar_t dot = L'.';
    numbers >> major >> dot >> minor >> dot >> build;
    return m_texts.With(IDS_VERSION_LINE1, major, minor, build, 64);
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

void CPlay::Picture(HWND window, const std::string& name, bool isWantedNow)
{
    const std::wstring number = std::to_wstring(++m_pictures);
    TakePicture(window,
                m_settings.out + L"\\" + (m_pictures < 10 ? L"0" : L"") + number + L"-" + Widen(name) +
                    L".png",
                isWantedNow);
}

} // namespace orva::demo
