#include "demo/Gallery.h"

#include "OrvaVersion.h"
#include "demo/GalleryPage.h"
#include "demo/Stage.h"
#include "harness/Files.h"
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
constexpr DWORD kStartTime = 180'000;
constexpr DWORD kCheckTime = 60'000;
constexpr DWORD kEndTime = 30'000;
constexpr int kAttempts = 3;

constexpr char kInstaller[] = "OrvaSetup-1.3.0.exe";
constexpr char kNewer[] = "1.3.0";

enum class Reply
{
    Same,
    Nothing,
    Incomplete,
    Newer
};

// A check that the user asks for in the About dialog. Where there is an offer, it is accepted.
struct CCheck
{
    /// The picture for which it is made.
    std::string_view row;
    Reply reply;
    /// The end of the link.
    const char* installer = "";
};

constexpr std::string_view kDownloadToEnd = "download-end";
constexpr std::string_view kDownloadCanceled = "download-canceled";

constexpr CCheck kChecks[] = {
    {"latest", Reply::Same},
    {"no-connection", Reply::Nothing},
    {"not-parsed", Reply::Incomplete},
    {"bad-link", Reply::Newer},
    {"file-not-created", Reply::Newer, "OrvaSetup:1.3.0.exe"},
    {"download-failed", Reply::Newer, "missing.exe"},
    {kDownloadToEnd, Reply::Newer, kInstaller},
    {kDownloadCanceled, Reply::Newer, kInstaller},
};

// The windows in one language.
class CLanguageTour : public CStage
{
public:
    CLanguageTour(const CSettings& settings, CTimeline& timeline)
        : CStage(settings, timeline), m_folder(settings.out + L"\\gallery")
    {
        m_website.AddInstaller(kInstaller);
    }

    void Run()
    {
        m_website.PublishVersion(ORVA_VERSION, kInstaller);
        if (Begin(12))
        {
            ShowAbout();
            End();
        }
        if (WhyNoWindow("file-view", m_settings.language) == nullptr && Begin(14))
        {
            ClickButton(m_main, host::kFileButton);
            if (Watch(kPatience, [this] { return m_isFileViewShown; }))
            {
                Picture(m_main, "file-view");
            }
            End();
        }
    }

private:
    bool Begin(int office)
    {
        m_isStarted = false;
        StartOutlook(office);
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
        Tell("help-menu");
        m_camera.TakeScreen(FileOf("help-menu"));
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
                Play(check);
            }
        }
        ClickButton(m_about, IDC_ABOUT_CLOSE);
        WaitUntilGone(m_about);
    }

    void Play(const CCheck& check)
    {
        m_check = &check;
        switch (check.reply)
        {
        case Reply::Same:
            m_website.PublishVersion(ORVA_VERSION, kInstaller);
            break;
        case Reply::Nothing:
            m_website.PublishNothing();
            break;
        case Reply::Incomplete:
            m_website.PublishText("{}");
            break;
        case Reply::Newer:
            m_website.PublishVersion(kNewer, check.installer);
            break;
        }
        m_isAsked = false;
        // Only a download that ends starts the installer.
        m_isInstallerClosed = check.row != kDownloadToEnd;
        ClickButton(m_about, IDC_ABOUT_UPDATE);
        // Disabled from before the request until the check is over.
        Watch(kCheckTime, [this] { return m_isAsked && m_isInstallerClosed && IsWindowEnabled(m_about); });
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
            Picture(met.window,
                    met.text == m_texts.Get(IDS_UPDATE_CANCELED) ? "update-canceled" : m_check->row);
            PressOnlyButton(met.window);
            WaitUntilGone(met.window);
            break;
        case WindowKind::Installer:
            PressOnlyButton(met.window);
            m_isInstallerClosed = WaitUntilGone(met.window);
            break;
        case WindowKind::Other:
            break;
        }
    }

    // The dialog shows its end for one second.
    void MeetDownload(HWND dialog)
    {
        const auto shows = [&](UINT text) {
            return ChildText(dialog, IDC_DOWNLOAD_STATUS) == m_texts.Get(text);
        };
        if (m_check->row == kDownloadToEnd)
        {
            WaitUntil([&] { return shows(IDS_DOWNLOAD_STARTED) || !IsWindow(dialog); });
            Picture(dialog, "download-start");
            WaitUntil(
                [&] { return WindowText(dialog).find(L"100%") != std::wstring::npos || !IsWindow(dialog); },
                kCheckTime);
            PictureNow(dialog);
        }
        else if (m_check->row == kDownloadCanceled)
        {
            WaitUntil([&] { return shows(IDS_DOWNLOAD_STARTED) || !IsWindow(dialog); });
            ClickButton(dialog, IDCANCEL);
            WaitUntil([&] { return shows(IDS_DOWNLOAD_CANCELED) || !IsWindow(dialog); });
            PictureNow(dialog);
        }
    }

    void OnTrace(const std::string& line) override
    {
        m_isStarted = m_isStarted || line == "Outlook: start-up complete";
        m_isFileViewShown = m_isFileViewShown || line.starts_with("Outlook: File view shows tab ");
    }

    void OnRequest(const std::string& line) override
    {
        m_isAsked = m_isAsked || line.find(kUpdateInfoPath) != std::string::npos;
    }

    void Tell(std::string_view row) { m_timeline.Tell(m_settings.language, std::string(row)); }

    std::wstring FileOf(std::string_view row) const
    {
        return GalleryPicture(m_folder, std::string(row), m_settings.language);
    }

    void Picture(HWND window, std::string_view row)
    {
        if (!FileExists(FileOf(row)))
        {
            Tell(row);
            m_camera.Take(window, FileOf(row));
        }
    }

    // Takes the picture for which the check is made, of a dialog that closes by itself.
    void PictureNow(HWND dialog)
    {
        Tell(m_check->row);
        m_camera.TakeNow(dialog, FileOf(m_check->row));
        if (!IsWindow(dialog))
        {
            // It may have been half gone.
            RemovePath(FileOf(m_check->row));
        }
    }

    const std::wstring m_folder;
    const CCheck* m_check = kChecks;
    HWND m_about = nullptr;
    bool m_isStarted = false;
    bool m_isFileViewShown = false;
    bool m_isAsked = false;
    bool m_isInstallerClosed = false;
};

} // namespace

bool ShowGallery(CSettings settings, CTimeline& timeline)
{
    for (const char* const language : kGalleryLanguages)
    {
        settings.language = language;
        CLanguageTour(settings, timeline).Run();
    }
    const int missing = WriteGalleryPage(settings.out + L"\\gallery");
    std::printf(missing == 0 ? "\nEvery picture was taken.\n" : "\n%d pictures were NOT taken.\n", missing);
    return missing == 0;
}

} // namespace orva::demo
