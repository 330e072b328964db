// Every text that a dialog shows fits its control in every language, measured with the control's own font.
#include "harness/Text.h"
#include "res/ModuleResources.h"
#include "res/resource.h"

#include <gtest/gtest.h>

#include <windows.h>
#include <commctrl.h>

#include <functional>

using namespace orva::test;

namespace
{
enum class Kind
{
    Line,      // One line, cut off where it does not fit.
    Paragraph, // Wrapped at the control's width.
    Button,
    Group,
    Link,
};

struct CShown
{
    int control;
    Kind kind;
    std::wstring text;
    bool bold = false;
};

// Puts the arguments into the placeholders of a string, one after the other; "%%" becomes "%".
std::wstring Fill(const std::wstring& format, const std::vector<std::wstring>& arguments)
{
    std::wstring text;
    auto argument = arguments.begin();
    for (size_t position = 0; position != format.size(); ++position)
    {
        if (format[position] != L'%')
        {
            text += format[position];
            continue;
        }
        ++position;
        text += format.at(position) == L'%' ? L"%" : *argument++;
    }
    return text;
}

// The longest values that a user is likely to see.
constexpr wchar_t kVersion[] = L"12.34.5678";
constexpr wchar_t kFile[] = L"OrvaSetup-1.3.0-x64.exe";
constexpr wchar_t kServer[] = L"www.orva.example";

std::vector<CShown> UpdateAvailableTexts(WORD language)
{
    const auto text = [&](UINT id) { return ModuleString(language, id); };
    return {
        {IDC_UPDATE_INSTALL, Kind::Button, text(IDS_UPDATE_INSTALL)},
        {IDC_UPDATE_LATER, Kind::Button, text(IDS_UPDATE_LATER)},
        {IDC_UPDATE_AVAILABLE_VERSION, Kind::Line, Fill(text(IDS_AVAILABLE_VERSION), {kVersion})},
        {IDC_UPDATE_INSTALLED_VERSION, Kind::Line, Fill(text(IDS_INSTALLED_VERSION), {kVersion})},
    };
}

std::vector<CShown> DownloadTexts(WORD language)
{
    const auto text = [&](UINT id) { return ModuleString(language, id); };
    const std::wstring sizes = Fill(text(IDS_KB_OF_KB), {L"102400", L"204800"});
    return {
        {IDC_DOWNLOAD_STATUS, Kind::Line, text(IDS_DOWNLOAD_STARTED)},
        {IDC_DOWNLOAD_STATUS, Kind::Line, text(IDS_DOWNLOAD_CANCELED)},
        {IDC_DOWNLOAD_SOURCE, Kind::Line, Fill(text(IDS_FILE_OF_SERVER), {kFile, kServer})},
        {IDC_DOWNLOAD_TIME_LABEL, Kind::Line, text(IDS_TIME_REMAINING)},
        {IDC_DOWNLOAD_RATE_LABEL, Kind::Line, text(IDS_TRANSFER_RATE)},
        {IDC_DOWNLOAD_TIME, Kind::Line, Fill(text(IDS_SECONDS_COMPLETE), {L"3599", sizes})},
        {IDC_DOWNLOAD_RATE, Kind::Line, Fill(text(IDS_KB_PER_SECOND), {L"125000"})},
        {IDCANCEL, Kind::Button, text(IDS_CANCEL)},
    };
}

std::vector<CShown> AboutTexts(WORD language)
{
    const auto text = [&](UINT id) { return ModuleString(language, id); };
    const std::wstring description =
        text(IDS_DESCRIPTION1) + L"\n\n" + text(IDS_DESCRIPTION2) + L"\n\n" + text(IDS_DESCRIPTION3);
    return {
        {IDC_ABOUT_TITLE, Kind::Line, text(IDS_APPTITLE), true},
        {IDC_ABOUT_DESCRIPTION, Kind::Paragraph, description},
        {IDC_ABOUT_LINKS_GROUP, Kind::Group, text(IDS_LINKS_TITLE)},
        {IDC_ABOUT_LINKS_TEXT, Kind::Paragraph, text(IDS_LINKS_DESCRIPTION)},
        {IDC_ABOUT_LINK1, Kind::Link, text(IDS_LINK1_TITLE)},
        {IDC_ABOUT_LINK2, Kind::Link, text(IDS_LINK2_TITLE)},
        {IDC_ABOUT_LINK3, Kind::Link, text(IDS_LINK3_TITLE)},
        {IDC_ABOUT_VERSION_GROUP, Kind::Group, text(IDS_VERSION_TITLE)},
        {IDC_ABOUT_VERSION_TEXT, Kind::Paragraph, text(IDS_VERSION_DESCRIPTION)},
        {IDC_ABOUT_UPDATE, Kind::Button, text(IDS_UPDBUTTON_LABEL)},
        {IDC_ABOUT_VERSION_LINE1, Kind::Paragraph, Fill(text(IDS_VERSION_LINE1), {L"1", L"2", L"0", L"64"})},
        {IDC_ABOUT_VERSION_LINE2, Kind::Paragraph, text(IDS_VERSION_LINE2)},
        {IDC_ABOUT_CLOSE, Kind::Button, text(IDS_CLOSE)},
    };
}

// A dialog of this module, made from its template under common controls 6 and never shown.
class CHiddenDialog
{
public:
    explicit CHiddenDialog(WORD id)
    {
        m_richEdit = LoadLibraryW(L"riched20.dll");
        wchar_t path[MAX_PATH] = {};
        GetModuleFileNameW(nullptr, path, MAX_PATH);
        ACTCTXW context = {};
        context.cbSize = sizeof(context);
        context.dwFlags = ACTCTX_FLAG_HMODULE_VALID | ACTCTX_FLAG_RESOURCE_NAME_VALID;
        context.lpSource = path;
        context.lpResourceName = MAKEINTRESOURCEW(IDR_MANIFEST);
        context.hModule = GetModuleHandleW(nullptr);
        m_context = CreateActCtxW(&context);
        ActivateActCtx(m_context, &m_cookie);
        const INITCOMMONCONTROLSEX controls = {sizeof(controls), ICC_LINK_CLASS | ICC_PROGRESS_CLASS};
        InitCommonControlsEx(&controls);
        m_window = CreateDialogParamW(
            GetModuleHandleW(nullptr), MAKEINTRESOURCEW(id), nullptr,
            [](HWND, UINT, WPARAM, LPARAM) -> INT_PTR { return FALSE; }, 0);
    }

    ~CHiddenDialog()
    {
        DestroyWindow(m_window);
        DeactivateActCtx(0, m_cookie);
        ReleaseActCtx(m_context);
        FreeLibrary(m_richEdit);
    }

    CHiddenDialog(const CHiddenDialog&) = delete;
    CHiddenDialog& operator=(const CHiddenDialog&) = delete;

    HWND Window() const { return m_window; }

private:
    HMODULE m_richEdit = nullptr;
    HANDLE m_context = nullptr;
    ULONG_PTR m_cookie = 0;
    HWND m_window = nullptr;
};

// The size of a text in a window's font, wrapped at `width` if that is above 0.
SIZE Measure(HWND window, const std::wstring& text, int width, bool bold)
{
    auto font = reinterpret_cast<HFONT>(SendMessageW(window, WM_GETFONT, 0, 0));
    LOGFONTW attributes = {};
    GetObjectW(font, sizeof(attributes), &attributes);
    attributes.lfWeight = bold ? FW_BOLD : attributes.lfWeight;
    font = CreateFontIndirectW(&attributes);
    const HDC device = GetDC(window);
    const HGDIOBJ before = SelectObject(device, font);
    RECT needed = {0, 0, width, 0};
    DrawTextW(device, text.c_str(), static_cast<int>(text.size()), &needed,
              DT_CALCRECT | DT_NOPREFIX | DT_EXPANDTABS | (width > 0 ? DT_WORDBREAK : DT_SINGLELINE));
    SelectObject(device, before);
    ReleaseDC(window, device);
    DeleteObject(font);
    return {needed.right, needed.bottom};
}

// "" if the text fits; otherwise the control, its size and the size that the text needs.
std::string Overflow(HWND dialog, const CShown& shown)
{
    const HWND control = GetDlgItem(dialog, shown.control);
    if (control == nullptr)
    {
        return "no control " + std::to_string(shown.control);
    }
    RECT room = {};
    GetClientRect(control, &room);
    SIZE space = {room.right, room.bottom};
    if (shown.kind == Kind::Button)
    {
        // The frame and the focus rectangle inside of it.
        space.cx -= 8;
    }
    else if (shown.kind == Kind::Group)
    {
        // The frame is visible on both sides of its title.
        space.cx -= 20;
    }
    const SIZE needed =
        Measure(control, shown.text, shown.kind == Kind::Paragraph ? room.right : 0, shown.bold);
    if (!shown.text.empty() && needed.cx <= space.cx && needed.cy <= space.cy)
    {
        return "";
    }
    return "control " + std::to_string(shown.control) + " has " + std::to_string(space.cx) + "x" +
           std::to_string(space.cy) + ", needs " + std::to_string(needed.cx) + "x" +
           std::to_string(needed.cy) + ": " + Utf8(shown.text);
}

void ExpectTextsFit(WORD dialogId, const std::function<std::vector<CShown>(WORD)>& texts)
{
    const CHiddenDialog dialog(dialogId);
    ASSERT_NE(dialog.Window(), nullptr) << GetLastError();
    for (const WORD language : kLanguages)
    {
        for (const CShown& shown : texts(language))
        {
            EXPECT_EQ(Overflow(dialog.Window(), shown), "") << LanguageName(language);
        }
    }
}

// Asserts that a caption, in the caption's font, fits the dialog's width in every language.
void ExpectCaptionsFit(WORD dialogId, const std::function<std::wstring(WORD)>& caption)
{
    const CHiddenDialog dialog(dialogId);
    ASSERT_NE(dialog.Window(), nullptr) << GetLastError();
    NONCLIENTMETRICSW metrics = {};
    metrics.cbSize = sizeof(metrics);
    SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof(metrics), &metrics, 0);
    const HFONT font = CreateFontIndirectW(&metrics.lfCaptionFont);
    const HWND window = dialog.Window();
    SendMessageW(window, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
    RECT room = {};
    GetClientRect(window, &room);
    for (const WORD language : kLanguages)
    {
        EXPECT_LE(Measure(window, caption(language), 0, false).cx, room.right - 12)
            << LanguageName(language) << ": " << Utf8(caption(language));
    }
    DeleteObject(font);
}
} // namespace

TEST(DialogTextsFitTest, UpdateAvailable)
{
    ExpectTextsFit(IDD_UPDATE_AVAILABLE, UpdateAvailableTexts);
}

TEST(DialogTextsFitTest, Download)
{
    ExpectTextsFit(IDD_UPDATE_DOWNLOAD, DownloadTexts);
}

TEST(DialogTextsFitTest, About)
{
    ExpectTextsFit(IDD_ABOUT, AboutTexts);
}

TEST(DialogTextsFitTest, UpdateAvailableCaption)
{
    ExpectCaptionsFit(IDD_UPDATE_AVAILABLE,
                      [](WORD language) { return ModuleString(language, IDS_UPDATE_TITLE); });
}

TEST(DialogTextsFitTest, DownloadCaption)
{
    ExpectCaptionsFit(IDD_UPDATE_DOWNLOAD, [](WORD language) {
        return Fill(ModuleString(language, IDS_DOWNLOAD_PERCENT), {L"100", kFile});
    });
}

TEST(DialogTextsFitTest, AboutCaption)
{
    ExpectCaptionsFit(IDD_ABOUT, [](WORD language) { return ModuleString(language, IDS_APPTITLE); });
}

TEST(DialogTextsFitTest, ATextThatIsTooLongIsNamed)
{
    const CHiddenDialog dialog(IDD_UPDATE_DOWNLOAD);
    const CShown tooLong = {IDC_DOWNLOAD_RATE_LABEL, Kind::Line, L"Geschwindigkeit der \u00DCbertragung:"};
    const std::string overflow = Overflow(dialog.Window(), tooLong);
    EXPECT_TRUE(overflow.starts_with("control 2790 has ")) << overflow;
    EXPECT_TRUE(overflow.ends_with(": Geschwindigkeit der \u00DCbertragung:")) << overflow;
}
