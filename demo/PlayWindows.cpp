// How the play's user meets each window.
#include "demo/Play.h"
#include "harness/Text.h"
#include "harness/WindowDriver.h"
#include "res/resource.h"

#include <algorithm>

namespace orva::demo
{

using namespace test;

namespace
{

std::wstring OneLine(std::wstring text)
{
    std::replace(text.begin(), text.end(), L'\n', L' ');
    std::erase(text, L'\r');
    const auto end = std::unique(text.begin(), text.end(),
                                 [](wchar_t one, wchar_t next) { return one == L' ' && next == L' '; });
    return std::wstring(text.begin(), end);
}

// Whether a program is an installer in a folder that the add-in makes for a download.
bool IsDownload(const std::wstring& program)
{
    constexpr size_t kFolderLength = 10;
    const size_t folder = program.find(L"\\osc");
    return folder != std::wstring::npos && program.substr(folder + kFolderLength).starts_with(L"\\OrvaSetup");
}

// The number before the percent sign of the download's caption; 0 if there is none.
int PercentOf(const std::wstring& caption)
{
    const std::wstring before = caption.substr(0, std::min(caption.find(L'%'), caption.size()));
    return _wtoi(before.substr(before.find_last_not_of(L"0123456789") + 1).c_str());
}

} // namespace

void CPlay::Meet(const CMetWindow& window)
{
    if (IsForPerson())
    {
        User(L"sees \"" + window.caption + L"\"");
        Picture(window.window, NameOf(window.kind));
        return;
    }
    constexpr void (CPlay::*kHandlers[])(const CMetWindow&) = {
        &CPlay::MeetMain,      &CPlay::MeetOffer,   &CPlay::MeetDownload, &CPlay::MeetAbout,
        &CPlay::MeetInstaller, &CPlay::MeetMessage, &CPlay::MeetOther};
    (this->*kHandlers[static_cast<size_t>(window.kind)])(window);
}

void CPlay::MeetMain(const CMetWindow& main)
{
    m_main = main.window;
    User(L"sees Outlook's window \"" + main.caption + L"\"");
}

void CPlay::MeetOffer(const CMetWindow& offer)
{
    const std::wstring available = offer.Control(IDC_UPDATE_AVAILABLE_VERSION);
    const std::wstring installed = offer.Control(IDC_UPDATE_INSTALLED_VERSION);
    User(L"sees \"" + offer.caption + L"\": " + available + L", " + installed);
    User(L"reads \"" + OneLine(offer.Control(IDC_UPDATE_DESCRIPTION)) + L"\"");
    Picture(offer.window, m_phase + "-offer");
    See(InPhase("offer"));
    AskForAnswer(m_settings.outcome == L"any" && m_phase == "start");
    See(InPhase("offer-texts"),
        offer.caption == m_texts.Get(IDS_UPDATE_TITLE) &&
            offer.Control(IDC_UPDATE_INSTALL) == m_texts.Get(IDS_UPDATE_INSTALL) &&
            available == m_texts.With(IDS_AVAILABLE_VERSION, m_settings.publish.c_str()) &&
            installed == m_texts.With(IDS_INSTALLED_VERSION, m_version.c_str()));
    const bool isDeclined = m_phase == "request" || m_phase == "restart" || m_settings.answer == L"later";
    Press(offer.window, isDeclined ? IDC_UPDATE_LATER : IDC_UPDATE_INSTALL);
    See(InPhase("later"), WaitUntilGone(offer.window) && isDeclined);
}

void CPlay::MeetDownload(const CMetWindow& download)
{
    constexpr DWORD kDownloadTime = 60'000;
    constexpr int kTellingPercent = 10;
    const HWND dialog = download.window;
    User(L"sees the download: " + download.Control(IDC_DOWNLOAD_SOURCE));
    std::wstring caption;
    std::wstring time;
    // Until the dialog has shown all its texts.
    const auto look = [&] {
        caption = WindowText(dialog);
        time = ChildText(dialog, IDC_DOWNLOAD_TIME);
        return !IsWindow(dialog) || (!time.empty() && PercentOf(caption) >= kTellingPercent);
    };
    WaitUntil(look, kDownloadTime);
    User(L"sees \"" + caption + L"\", " + time + L", " + ChildText(dialog, IDC_DOWNLOAD_RATE));
    See(InPhase("progress"), PercentOf(caption) >= kTellingPercent);
    Picture(dialog, m_phase + "-download");
    if (m_settings.answer == L"cancel")
    {
        Press(dialog, IDCANCEL);
        const std::wstring canceled = m_texts.Get(IDS_DOWNLOAD_CANCELED);
        if (WaitForChildText(dialog, IDC_DOWNLOAD_STATUS, canceled) == canceled)
        {
            // The dialog stays for one second.
            Picture(dialog, "download-canceled", true);
            User(L"sees \"" + canceled + L"\"");
            See("cancel-shown");
        }
    }
    if (WaitUntilGone(dialog, kDownloadTime))
    {
        User(L"sees the download close");
        See(InPhase("download-closed"));
    }
}

void CPlay::MeetInstaller(const CMetWindow& setup)
{
    constexpr DWORD kInstallTime = 60'000;
    const HWND dialog = setup.window;
    m_timeline.Tell("setup", "runs from " + Utf8(setup.program));
    See("installer-ran", IsDownload(setup.program));
    const std::wstring name = m_settings.installer.substr(m_settings.installer.rfind(L'-') + 1);
    const std::wstring version = name.substr(0, name.rfind(L'.'));
    const std::wstring first = WaitForSetupPage(dialog, L"", kPatience);
    User(L"sees \"" + setup.caption + L"\" and reads \"" + OneLine(first) + L"\"");
    Picture(dialog, "setup");
    Press(dialog, IDOK);
    const std::wstring last = WaitForSetupPage(dialog, first, kInstallTime);
    User(L"reads \"" + OneLine(last) + L"\"");
    Picture(dialog, "setup-done");
    const auto names = [](const std::wstring& text, const std::wstring& part) {
        return text.find(part) != std::wstring::npos;
    };
    See("setup-pages", names(first, m_version) && names(first, version) && names(last, version));
    Press(dialog, IDOK);
    See("installer-window", WaitUntilGone(dialog));
    See("outlook-open", !IsOver());
}

void CPlay::MeetMessage(const CMetWindow& message)
{
    User(L"sees the message \"" + OneLine(message.text) + L"\"");
    Picture(message.window, m_phase + "-message");
    See(InPhase("message"));
    See(InPhase("error-message"), message.text == m_texts.Get(IDS_CONNECT_ERROR));
    See(InPhase("canceled-message"), message.text == m_texts.Get(IDS_UPDATE_CANCELED));
    See(InPhase("latest"), message.text == m_texts.Get(IDS_LATEST_INSTALLED));
    PressOnlyButton(message.window);
    if (!WaitUntilGone(message.window))
    {
        User(L"cannot close the message");
    }
}

void CPlay::MeetAbout(const CMetWindow& about)
{
    m_about = about.window;
    User(L"sees \"" + about.caption + L"\": " + about.Control(IDC_ABOUT_VERSION_LINE1));
    Picture(about.window, "about");
    See("about", about.Control(IDC_ABOUT_VERSION_LINE1) == VersionLine() &&
                     about.Control(IDC_ABOUT_UPDATE) == m_texts.Get(IDS_UPDBUTTON_LABEL) &&
                     about.Control(IDC_ABOUT_CLOSE) == m_texts.Get(IDS_CLOSE));
}

void CPlay::MeetOther(const CMetWindow& other)
{
    User(L"sees a window \"" + other.caption + L"\" of " + other.program + L" (" + other.className + L")");
    Picture(other.window, "window");
}

} // namespace orva::demo
