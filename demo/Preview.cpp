#include "demo/Preview.h"

#include "demo/GalleryPage.h"
#include "demo/Stage.h"
#include "harness/Files.h"
#include "harness/Text.h"
#include "harness/WindowDriver.h"
#include "res/resource.h"

#include <algorithm>
#include <cstdio>

namespace orva::demo
{

using namespace test;

namespace
{

// Milliseconds.
constexpr DWORD kCheckTime = 60'000;
constexpr DWORD kAnswerTime = 1'000;

// What users of one language see.
class CPreview : public CStage
{
public:
    using CStage::CStage;

    // False if a check did not end.
    bool Run()
    {
        StartOutlook(L"12", L"host.log");
        const bool isSeen =
            Watch(kStartTime, [this] { return m_isStarted; }) && WaitUntilEnabled(m_main) && Request();
        PostMessageW(m_main, WM_CLOSE, 0, 0);
        Watch(kEndTime, [this] { return IsOver(); });
        return isSeen;
    }

private:
    bool Request()
    {
        if (m_shown == 0)
        {
            Tell(L"sees nothing");
        }
        OpenMenuAtLastItem(m_main, L'h');
        PostKey(m_main, VK_RETURN);
        if (!Watch(kPatience, [this] { return m_about != nullptr; }))
        {
            return false;
        }
        m_phase = L"request";
        m_shown = 0;
        ClickButton(m_about, IDC_ABOUT_UPDATE);
        // A check that somebody asked for always shows something.
        if (!Watch(kCheckTime, [this] { return m_shown > 0 && IsAtRest(m_about); }))
        {
            return false;
        }
        ClickButton(m_about, IDC_ABOUT_CLOSE);
        return WaitUntilGone(m_about);
    }

    // Between two messages the dialog is enabled for a moment, in which its thread does not answer.
    static bool IsAtRest(HWND dialog)
    {
        for (int look = 0; look < 2; ++look)
        {
            DWORD_PTR result = 0;
            if (!IsWindowEnabled(dialog) ||
                SendMessageTimeoutW(dialog, WM_NULL, 0, 0, SMTO_NORMAL, kAnswerTime, &result) == 0)
            {
                return false;
            }
        }
        return IsWindowEnabled(dialog);
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
            break;
        case WindowKind::Offer:
            Tell(L"is offered \"" + met.Control(IDC_UPDATE_AVAILABLE_VERSION) + L"\" with the text \"" +
                 met.Control(IDC_UPDATE_DESCRIPTION) + L"\"");
            Picture(met.window, L"offer-" + m_settings.language);
            ClickButton(met.window, IDC_UPDATE_LATER);
            Close(met.window);
            break;
        case WindowKind::Message:
            Tell(L"sees the message \"" + met.text + L"\"");
            Picture(met.window, L"message-" + m_phase + L"-" + m_settings.language +
                                    (m_shown > 0 ? L"-" + std::to_wstring(m_shown + 1) : L""));
            PressOnlyButton(met.window);
            Close(met.window);
            break;
        default:
            break;
        }
    }

    void Close(HWND window)
    {
        WaitUntilGone(window);
        ++m_shown;
    }

    void OnTrace(const std::string& line) override
    {
        m_isStarted = m_isStarted || line == "Outlook: start-up complete";
    }

    void Tell(std::wstring text)
    {
        std::erase(text, L'\r');
        std::replace(text.begin(), text.end(), L'\n', L' ');
        m_timeline.Tell(Utf8(m_settings.language),
                        (m_phase == L"start" ? "at Outlook's start " : "on request ") + Utf8(text));
    }

    // The offer at the start and the one on request are the same.
    void Picture(HWND window, const std::wstring& name)
    {
        if (const std::wstring file = m_settings.out + L"\\" + name + L".png"; !FileExists(file))
        {
            TakePicture(window, file);
        }
    }

    std::wstring m_phase = L"start";
    /// How many windows the check has shown.
    int m_shown = 0;
    HWND m_about = nullptr;
    bool m_isStarted = false;
};

} // namespace

bool ShowPreview(CSettings settings, CTimeline& timeline)
{
    bool isSeen = true;
    for (const char* const language : kGalleryLanguages)
    {
        settings.language = Widen(language);
        isSeen = CPreview(settings, timeline).Run() && isSeen;
    }
    std::puts(isSeen ? "\nEvery language was seen." : "\nNOT every check was seen to its end");
    return isSeen;
}

} // namespace orva::demo
