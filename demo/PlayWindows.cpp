// How the play's user meets each window.
#include "OrvaVersion.h"
#include "demo/Play.h"
#include "demo/PlayFacts.h"
#include "harness/Text.h"
#include "harness/WindowDriver.h"
#include "res/resource.h"

#include <algorithm>

namespace orva::demo
{

using namespace test;

namespace
{

constexpr DWORD kDownloadTime = 60'000;
// From this percentage on, all texts of the download have been shown.
constexpr int kTellingPercent = 10;

std::wstring OneLine(const std::wstring& text)
{
    std::wstring line;
    for (const wchar_t character : text)
    {
        const wchar_t shown = character == L'\n' ? L' ' : character;
        if (shown != L'\r' && (shown != L' ' || !line.ends_with(L' ')))
        {
            line += shown;
        }
    }
    return line;
}

// The number before the percent sign in the download's caption; 0 if there is none.
int PercentOf(const std::wstring& caption)
{
    const size_t sign = caption.find(L'%');
    const size_t before = caption.find_last_not_of(L"0123456789", sign - 1);
    const bool isNumber = sign != std::wstring::npos && sign > 0 && before + 1 < sign;
    return isNumber ? std::stoi(caption.substr(before + 1)) : 0;
}

} // namespace

void CPlay::Meet(const CMetWindow& window)
{
    if (m_settings.isForPerson)
    {
        User(L"sees \"" + window.caption + L"\"");
        Picture(window.window, NameOf(window.kind));
        return;
    }
    switch (window.kind)
    {
    case WindowKind::Main:
        m_main = window.window;
        User(L"sees Outlook's window \"" + window.caption + L"\"");
        break;
    case WindowKind::Offer:
        MeetOffer(window);
        break;
    case WindowKind::Download:
        MeetDownload(window);
        break;
    case WindowKind::Installer:
        MeetInstaller(window);
        break;
    case WindowKind::Message:
        MeetMessage(window);
        break;
    case WindowKind::About:
        MeetAbout(window);
        break;
    case WindowKind::Other:
        User(L"sees a window \"" + window.caption + L"\" of " + window.program + L" (" + window.className +
             L")");
        Picture(window.window, "window");
        break;
    }
}

void CPlay::MeetOffer(const CMetWindow& offer)
{
    const std::wstring available = offer.Control(IDC_UPDATE_AVAILABLE_VERSION);
    const std::wstring installed = offer.Control(IDC_UPDATE_INSTALLED_VERSION);
    User(L"sees \"" + offer.caption + L"\": " + available + L", " + installed);
    User(L"reads \"" + OneLine(offer.Control(IDC_UPDATE_DESCRIPTION)) + L"\"");
    Picture(offer.window, m_phase + "-offer");
    See(m_phase + "-offer");
    if (m_settings.outcome == Outcome::Any && m_phase == "start")
    {
        AskForAnswer(m_settings, m_timeline);
    }
    if (offer.caption == m_texts.Get(IDS_UPDATE_TITLE) &&
        offer.Control(IDC_UPDATE_INSTALL) == m_texts.Get(IDS_UPDATE_INSTALL) &&
        available == m_texts.With(IDS_AVAILABLE_VERSION, Widen(m_settings.version)) &&
        installed == m_texts.With(IDS_INSTALLED_VERSION, Widen(ORVA_VERSION)))
    {
        See(m_phase + "-offer-texts");
    }
    const bool isDeclined = m_phase != "start" || m_settings.answer == "later";
    Press(offer.window, isDeclined ? IDC_UPDATE_LATER : IDC_UPDATE_INSTALL);
    if (WaitUntilGone(offer.window) && isDeclined)
    {
        See(m_phase + "-later");
    }
}

void CPlay::MeetDownload(const CMetWindow& download)
{
    const HWND dialog = download.window;
    User(L"sees the download: " + download.Control(IDC_DOWNLOAD_SOURCE));
    std::wstring caption;
    std::wstring time;
    WaitUntil(
        [&] {
            caption = WindowText(dialog);
            time = ChildText(dialog, IDC_DOWNLOAD_TIME);
            return (PercentOf(caption) >= kTellingPercent && !time.empty()) || !IsWindow(dialog);
        },
        kDownloadTime);
    User(L"sees \"" + caption + L"\", " + time + L", " + ChildText(dialog, IDC_DOWNLOAD_RATE));
    if (PercentOf(caption) >= kTellingPercent)
    {
        See("progress");
    }
    Picture(dialog, "download");
    if (m_settings.answer == "cancel")
    {
        CancelDownload(dialog);
    }
    if (WaitUntilGone(dialog, kDownloadTime))
    {
        User(L"sees the download close");
        See("download-closed");
    }
}

// The dialog stays open for one second after Cancel, so the picture is taken at once.
void CPlay::CancelDownload(HWND dialog)
{
    const std::wstring text = m_texts.Get(IDS_DOWNLOAD_CANCELED);
    Press(dialog, IDCANCEL);
    if (WaitForChildText(dialog, IDC_DOWNLOAD_STATUS, text) == text)
    {
        m_camera.TakeNow(dialog, NextPicture("download-canceled"));
        User(L"sees \"" + text + L"\"");
        See("cancel-shown");
    }
}

void CPlay::MeetInstaller(const CMetWindow& installer)
{
    User(L"sees the installer \"" + installer.caption + L"\": \"" + OneLine(installer.text) + L"\"");
    Picture(installer.window, "installer");
    PressOnlyButton(installer.window);
    if (WaitUntilGone(installer.window))
    {
        See("installer-window");
    }
}

void CPlay::MeetMessage(const CMetWindow& message)
{
    User(L"sees the message \"" + OneLine(message.text) + L"\"");
    Picture(message.window, m_phase + "-message");
    See(m_phase + "-message");
    if (message.text == m_texts.Get(IDS_UPDATE_CANCELED))
    {
        See("canceled-message");
    }
    else if (message.text == m_texts.Get(IDS_LATEST_INSTALLED))
    {
        See(m_phase + "-latest");
    }
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
    if (about.Control(IDC_ABOUT_UPDATE) == m_texts.Get(IDS_UPDBUTTON_LABEL) &&
        about.Control(IDC_ABOUT_CLOSE) == m_texts.Get(IDS_CLOSE))
    {
        See("about");
    }
}

} // namespace orva::demo
