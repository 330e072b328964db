#include "demo/SetupTour.h"

#include "demo/GalleryPage.h"
#include "harness/Text.h"
#include "harness/WindowDriver.h"

namespace orva::demo
{

using namespace test;

namespace
{

constexpr DWORD kInstallTime = 60'000;

std::wstring InstalledFile(const wchar_t* name)
{
    wchar_t folder[MAX_PATH] = L"";
    GetEnvironmentVariableW(L"ProgramFiles", folder, MAX_PATH);
    return std::wstring(folder) + L"\\ORVA Connector\\" + name;
}

// A loaded DLL, as Outlook has it.
class CLoaded
{
public:
    explicit CLoaded(const std::wstring& path) : m_module(LoadLibraryW(path.c_str())) {}
    ~CLoaded() { FreeLibrary(m_module); }
    CLoaded(const CLoaded&) = delete;
    CLoaded& operator=(const CLoaded&) = delete;

private:
    HMODULE m_module;
};

} // namespace

void CSetupTour::Run()
{
    {
        const CLoaded loaded(InstalledFile(L"OrvaOscAddin.dll"));
        ShowPages(m_settings.installer, "setup-replaces", "setup-replaced");
    }
    CChildProcess older({.program = m_settings.setup});
    const HWND message = WaitForWindow({.process = older.Id(), .className = kDialogClass});
    Picture(message, "setup-newer");
    PressOnlyButton(message);
    older.WaitForExit();
    ShowPages(InstalledFile(L"Uninstall.exe"), "uninstall", "uninstalled");
    ShowPages(m_settings.setup, "setup-installs", "setup-installed");
}

void CSetupTour::ShowPages(const std::wstring& program, const std::string& first, const std::string& last)
{
    const CChildProcess started({.program = program});
    // The uninstaller's pages are those of a copy of it, which works on after its start has returned.
    const HWND window = WaitForWindow({.process = 0, .className = kDialogClass, .childId = kSetupPageText});
    const UniqueHandle process(
        OpenProcess(SYNCHRONIZE, FALSE, window != nullptr ? WindowProcess(window) : 0));
    std::wstring text;
    for (const std::string& row : {first, last})
    {
        text = WaitForSetupPage(window, text, kInstallTime);
        if (!text.empty())
        {
            Picture(window, row);
            ClickButton(window, IDOK);
        }
    }
    WaitForSingleObject(process.get(), kPatience);
}

void CSetupTour::Picture(HWND window, const std::string& row)
{
    const std::string language = Utf8(m_settings.language);
    m_timeline.Tell(language, row);
    TakePicture(window, GalleryPicture(m_settings.out + L"\\gallery", row, language));
}

} // namespace orva::demo
