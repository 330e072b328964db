#include "demo/Gallery.h"

#include "demo/GalleryPage.h"
#include "demo/SetupTour.h"
#include "demo/Stage.h"
#include "fixture/UpdateInfo.h"
#include "harness/Files.h"
#include "harness/Text.h"
#include "harness/WindowDriver.h"
#include "host/MainWindow.h"
#include "res/resource.h"

#include <cstdio>
#include <string_view>

namespace orva::demo
{

using namespace test;

namespace
{

// Milliseconds.
constexpr DWORD kCheckTime = 60'000;
constexpr int kAttempts = 3;

constexpr std::string_view kDownloadToEnd = "download-end";
constexpr std::string_view kDownloadCanceled = "download-canceled";

// A check that the user asks for in the About dialog. Where there is an offer, it is accepted.
struct CCheck
{
    /// The picture for which it is made, and the message that it shows, if it is one.
    std::string_view row;
    UINT message;
    /// After so many messages, or after the installer, it is over.
    int lastWindows;
    /// What is published instead of the offer; null if it is the offer.
    const char* text = nullptr;
    /// The end of its link; null if it is the installer.
    const char* installer = nullptr;
};

constexpr CCheck kChecks[] = {
    {"latest", IDS_LATEST_INSTALLED, 1, kSameVersion},
    {"no-connection", IDS_CONNECT_ERROR, 1, ""},
    {"not-parsed", IDS_UPDATE_INFO_NOT_PARSED, 1, "{}"},
    {"bad-link", IDS_URL_NOT_PARSED, 1, nullptr, ""},
    {"file-not-created", IDS_FILE_NOT_CREATED, 2, nullptr, "OrvaSetup:.exe"},
    {"download-failed", IDS_CONNECT_ERROR, 2, nullptr, "missing.exe"},
    {kDownloadToEnd, 0, 1},
    {kDownloadCanceled, 0, 1},
};

// The windows in one language.
class CLanguageTour : public CStage
{
public:
    CLanguageTour(const CSettings& settings, CTimeline& timeline, std::string offer)
        : CStage(settings, timeline), m_folder(settings.out + L"\\gallery"), m_offer(std::move(offer))
    {
    }

    void Run()
    {
        Publish(kSameVersion);
        if (Begin(L"12"))
        {
            ShowAbout();
            End();
        }
        if (WhyNoWindow("file-view", Utf8(m_settings.language)) == nullptr && Begin(L"14"))
        {
            // Added a moment after the start.
            WaitUntil([this] { return ClickButton(m_main, host::kFileButton); });
            if (Watch(kPatience, [this] { return m_isFileViewShown; }))
            {
                Picture(m_main, "file-view");
            }
            End();
        }
    }

private:
    bool Begin(const std::wstring& office)
    {
        m_isStarted = false;
        StartOutlook(office, L"host.log");
        return Watch(kStartTime, [this] { return m_isStarted; }) && WaitUntilEnabled(m_main);
    }

    void End()
    {
        PostMessageW(m_main, WM_CLOSE, 0, 0);
        Watch(kEndTime, [this] { return IsOver(); });
        CatchUp();
    }

    void ShowAbout()
    {
        OpenMenuAtLastItem(m_main, L'h');
        Picture(nullptr, "help-menu");
        PostKey(m_main, VK_RETURN);
        if (!Watch(kPatience, [this] { return m_about != nullptr; }))
        {
            return;
        }
        for (const CCheck& check : kChecks)
        {
            // What is only seen for a second may be missed on a machine that stands still.
            for (int attempt = 0; attempt < kAttempts && !FileExists(FileOf(check.row)); ++attempt)
            {
                if (!Play(check))
                {
                    return;
                }
            }
        }
        ClickButton(m_about, IDC_ABOUT_CLOSE);
        WaitUntilGone(m_about);
    }

    // False if the check did not end.
    bool Play(const CCheck& check)
    {
        m_check = &check;
        std::string offer = m_offer;
        if (check.installer != nullptr)
        {
            const std::string installer =
                Utf8(m_settings.installer.substr(m_settings.installer.rfind(L'\\') + 1));
            offer.replace(offer.find(installer), installer.size(), check.installer);
        }
        Publish(check.text != nullptr ? check.text : offer);
        m_windowsLeft = check.lastWindows;
        ClickButton(m_about, IDC_ABOUT_UPDATE);
        // Between two messages the dialog is enabled for a moment.
        return Watch(kCheckTime, [this] { return m_windowsLeft == 0 && IsWindowEnabled(m_about); });
    }

    void Meet(const CMetWindow& met) override
    {
        switch (met.kind)
        {
        case WindowKind::Main:
            m_main = met.window;
            break;
        case WindowKind::About:
            m_about = met.window;
            Picture(met.window, "about");
            break;
        case WindowKind::Offer:
            Picture(met.window, "offer");
            ClickButton(met.window, IDC_UPDATE_INSTALL);
            WaitUntilGone(met.window);
            break;
        case WindowKind::Download:
            MeetDownload(met.window);
            break;
        case WindowKind::Message:
            MeetMessage(met);
            break;
        case WindowKind::Installer:
            WaitUntil([&] { return ClickButton(met.window, IDCANCEL); });
            WaitUntilGone(met.window);
            --m_windowsLeft;
            break;
        case WindowKind::Other:
            break;
        }
    }

    void MeetMessage(const CMetWindow& message)
    {
        // Up to a placeholder.
        const auto shows = [&](UINT id) {
            const std::wstring text = m_texts.Get(id);
            return message.text.starts_with(text.substr(0, text.find(L'%')));
        };
        if (shows(IDS_UPDATE_CANCELED))
        {
            Picture(message.window, "update-canceled");
        }
        else if (m_check->message != 0 && shows(m_check->message))
        {
            Picture(message.window, m_check->row);
        }
        Close(message.window);
    }

    void Close(HWND lastWindow)
    {
        PressOnlyButton(lastWindow);
        WaitUntilGone(lastWindow);
        --m_windowsLeft;
    }

    // The dialog shows its end, and that it was canceled, for one second.
    void MeetDownload(HWND dialog)
    {
        const auto await = [=](const std::function<bool()>& condition) {
            WaitUntil([&] { return condition() || !IsWindow(dialog); }, kCheckTime);
        };
        const auto shows = [&](UINT text) {
            return ChildText(dialog, IDC_DOWNLOAD_STATUS) == m_texts.Get(text);
        };
        if (m_check->row == kDownloadToEnd)
        {
            await([&] { return shows(IDS_DOWNLOAD_STARTED); });
            Picture(dialog, "download-start");
            await([&] { return WindowText(dialog).find(L"100%") != std::wstring::npos; });
            PictureNow(dialog);
        }
        else if (m_check->row == kDownloadCanceled)
        {
            await([&] { return !ChildText(dialog, IDC_DOWNLOAD_TIME).empty(); });
            ClickButton(dialog, IDCANCEL);
            await([&] { return shows(IDS_DOWNLOAD_CANCELED); });
            PictureNow(dialog);
        }
    }

    void OnTrace(const std::string& line) override
    {
        m_isStarted = m_isStarted || line == "Outlook: start-up complete";
        m_isFileViewShown = m_isFileViewShown || line.starts_with("Outlook: File view shows tab ");
    }

    std::wstring FileOf(std::string_view row) const
    {
        return GalleryPicture(m_folder, std::string(row), Utf8(m_settings.language));
    }

    void Picture(HWND window, std::string_view row, bool isWantedNow = false)
    {
        if (!FileExists(FileOf(row)))
        {
            m_timeline.Tell(Utf8(m_settings.language), std::string(row));
            TakePicture(window, FileOf(row), isWantedNow);
        }
    }

    // Takes the picture for which the check is made, of a dialog that closes by itself.
    void PictureNow(HWND dialog)
    {
        Picture(dialog, m_check->row, true);
        if (!IsWindow(dialog))
        {
            // It may have been half gone.
            RemovePath(FileOf(m_check->row));
        }
    }

    void Publish(const std::string& text) const { WriteFileBytes(m_settings.updateInfo, text); }

    const std::wstring m_folder;
    const std::string m_offer;
    const CCheck* m_check = kChecks;
    HWND m_about = nullptr;
    bool m_isStarted = false;
    bool m_isFileViewShown = false;
    int m_windowsLeft = 0;
};

} // namespace

bool ShowGallery(const CSettings& settings, CTimeline& timeline)
{
    const std::string offer = ReadFileBytes(settings.updateInfo).value_or("");
    CLanguageTour(settings, timeline, offer).Run();
    WriteFileBytes(settings.updateInfo, offer);
    CSetupTour(settings, timeline).Run();
    const int missing = WriteGalleryPage(settings.out + L"\\gallery", Utf8(settings.language));
    std::printf(missing == 0 ? "\nEvery picture was taken.\n" : "\nPictures NOT taken: %d\n", missing);
    return missing == 0;
}

} // namespace orva::demo
