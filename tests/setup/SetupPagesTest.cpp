// The setup's and the uninstaller's pages in the language of Windows, as the user reads and operates them.
#include "harness/Files.h"
#include "harness/SeenWindow.h"
#include "harness/Text.h"
#include "harness/WindowDriver.h"
#include "outlook/AddInModule.h"
#include "setup/SetupFixture.h"

namespace orva::test
{
namespace
{

constexpr int kNext = 1;
constexpr int kCancel = 2;

// The sentences of one language; {old} and {new} stand for the two versions.
struct CPageTexts
{
    LANGID language;
    const wchar_t* caption;
    const wchar_t* installs;
    const wchar_t* install;
    const wchar_t* installed;
    const wchar_t* used;
    const wchar_t* replaces;
    const wchar_t* restart;
    const wchar_t* repairs;
    const wchar_t* newer;
    const wchar_t* cannotReplace;
    const wchar_t* nothingChanged;
    const wchar_t* logStays;
    const wchar_t* uninstall;
    const wchar_t* removed;
    const wchar_t* disappears;
};

constexpr CPageTexts kTexts[] = {
    {LANG_ENGLISH, L"ORVA Connector {old} Setup",
     L"Setup installs ORVA Connector {old} for all users of this computer.", L"&Install",
     L"ORVA Connector {old} is installed", L"Outlook uses version {old} from its next start.",
     L"Setup replaces version {old} of the ORVA Connector by {new} for all users of this computer.",
     L"Restart Outlook to use the new version, {new}.",
     L"Version {old} of the ORVA Connector is installed already. Setup installs it once more and so repairs "
     L"it.",
     L"Version {new} of the ORVA Connector is installed. It is newer than {old}, so nothing was changed.",
     L"The file could not be replaced (Windows error 32):", L"Nothing was changed on this computer.",
     L"the log file that the add-in may have written in your profile stays.", L"&Uninstall",
     L"The add-in, its folder and its registration are removed.",
     L"Outlook is still using the add-in. It disappears when Outlook is restarted"},
    {LANG_GERMAN, L"ORVA Connector {old} Setup",
     L"Das Setup installiert den ORVA Connector {old} für alle Benutzer dieses Computers.", L"&Installieren",
     L"ORVA Connector {old} ist installiert",
     L"Outlook verwendet die Version {old}, wenn es das nächste Mal gestartet wird.",
     L"Das Setup ersetzt die Version {old} des ORVA Connectors durch {new}, für alle Benutzer dieses "
     L"Computers.",
     L"Starten Sie Outlook neu, um die neue Version {new} zu verwenden.",
     L"Die Version {old} des ORVA Connectors ist bereits installiert. Das Setup installiert sie noch einmal "
     L"und "
     L"repariert sie so.",
     L"Die Version {new} des ORVA Connectors ist installiert. Sie ist neuer als {old}, deshalb wurde nichts "
     L"geändert.",
     L"Die Datei konnte nicht ersetzt werden (Windows-Fehler 32):",
     L"An diesem Computer wurde nichts geändert.",
     L"die Protokolldatei, die das Add-In vielleicht in Ihrem Profil geschrieben hat, bleibt erhalten.",
     L"&Deinstallieren", L"Das Add-In, sein Ordner und seine Registrierung sind entfernt.",
     L"Outlook verwendet das Add-In noch. Es verschwindet, wenn Outlook neu gestartet wird"},
    {LANG_SPANISH, L"Instalación de ORVA Connector {old}",
     L"El programa instala ORVA Connector {old} para todos los usuarios de este equipo.", L"&Instalar",
     L"ORVA Connector {old} está instalado",
     L"Outlook utilizará la versión {old} la próxima vez que se inicie.",
     L"El programa sustituye la versión {old} de ORVA Connector por la {new} para todos los usuarios de este "
     L"equipo.",
     L"Reinicie Outlook para utilizar la nueva versión {new}.",
     L"La versión {old} de ORVA Connector ya está instalada. El programa la instala de nuevo y así la "
     L"repara.",
     L"La versión {new} de ORVA Connector está instalada. Es más reciente que la {old}, así que no se ha "
     L"cambiado "
     L"nada.",
     L"No se ha podido sustituir el archivo (error de Windows 32):",
     L"No se ha cambiado nada en este equipo.",
     L"el archivo de registro que el complemento haya podido escribir en su perfil se conserva.",
     L"&Desinstalar", L"Se han quitado el complemento, su carpeta y su registro en Outlook.",
     L"Outlook todavía utiliza el complemento. Desaparecerá cuando se reinicie Outlook"},
    {LANG_TURKISH, L"ORVA Connector {old} Kurulumu",
     L"Kurulum, ORVA Connector {old} sürümünü bu bilgisayarın tüm kullanıcıları için yükler.", L"&Kur",
     L"ORVA Connector {old} yüklendi", L"Outlook, {old} sürümünü bir sonraki başlatılışında kullanır.",
     L"Kurulum, ORVA Connector {old} sürümünü bu bilgisayarın tüm kullanıcıları için {new} sürümüyle "
     L"değiştirir.",
     L"Yeni {new} sürümünü kullanmak için Outlook'u yeniden başlatın.",
     L"ORVA Connector {old} sürümü zaten yüklü. Kurulum onu yeniden yükler ve böylece onarır.",
     L"ORVA Connector {new} sürümü yüklü. Bu sürüm {old} sürümünden yeni olduğu için hiçbir şey "
     L"değiştirilmedi.",
     L"Dosya değiştirilemedi (Windows hatası 32):", L"Bu bilgisayarda hiçbir şey değiştirilmedi.",
     L"eklentinin profilinize yazmış olabileceği günlük dosyası da kalır.", L"&Kaldır",
     L"Eklenti, klasörü ve kaydı kaldırıldı.",
     L"Outlook eklentiyi hâlâ kullanıyor. Eklenti, Outlook yeniden başlatılınca"},
};

// The texts that a user of this Windows gets: English, if his language is none of them.
const CPageTexts& Texts()
{
    for (const CPageTexts& texts : kTexts)
    {
        if (texts.language == PRIMARYLANGID(GetUserDefaultUILanguage()))
        {
            return texts;
        }
    }
    return kTexts[0];
}

std::wstring WithVersions(std::wstring text)
{
    for (const auto& [name, version] : {std::pair(std::wstring(L"{old}"), OldVersion().version),
                                        std::pair(std::wstring(L"{new}"), NewVersion().version)})
    {
        for (size_t at = text.find(name); at != std::wstring::npos; at = text.find(name))
        {
            text.replace(at, name.size(), version);
        }
    }
    return text;
}

// Waits until a program shows a dialog with this text, and returns the dialog.
HWND WaitForPage(const std::wstring& text, DWORD process)
{
    const std::wstring expected = WithVersions(text);
    HWND page = nullptr;
    WaitUntil([&] {
        for (const HWND window : FindWindows({.process = process, .className = kDialogClass}))
        {
            if (LookAt(window).text.find(expected) != std::wstring::npos)
            {
                page = window;
            }
        }
        return page != nullptr;
    });
    EXPECT_NE(page, nullptr) << Utf8(expected) << "\n" << DescribeWindows(process);
    return page;
}

// Waits for the page and presses its button once it is enabled.
void Press(const std::wstring& text, int button, DWORD process)
{
    const HWND page = WaitForPage(text, process);
    EXPECT_TRUE(WaitUntil([&] { return ClickButton(page, button); }));
}

// The only button of a message box is "OK" or, on Windows, has the id of "Cancel".
bool PressOk(HWND message)
{
    return ClickButton(message, IDOK) || ClickButton(message, IDCANCEL);
}

class SetupPagesTest : public SetupFixture
{
protected:
    // A language that was asked for has to be there, or the tests would prove another one.
    void SetUp() override
    {
        wchar_t locale[20] = L"";
        wchar_t language[20] = L"";
        GetEnvironmentVariableW(L"ORVA_LOCALE", locale, 20);
        GetLocaleInfoW(MAKELCID(GetUserDefaultUILanguage(), SORT_DEFAULT), LOCALE_SISO639LANGNAME, language,
                       20);
        ASSERT_TRUE(locale[0] == L'\0' || std::wstring(locale).starts_with(language))
            << Utf8(locale) << " is not " << Utf8(language);
    }

    const CPageTexts& m_texts = Texts();
};

TEST_F(SetupPagesTest, SayWhatIsInstalledAndWhenOutlookUsesIt)
{
    CChildProcess setup({.program = OldVersion().setup});
    const HWND first = WaitForPage(m_texts.installs, setup.Id());
    EXPECT_EQ(WindowText(first), WithVersions(m_texts.caption));
    EXPECT_EQ(ChildText(first, kNext), m_texts.install);
    ASSERT_FALSE(FolderExists(InstallFolder()));
    EXPECT_TRUE(ClickButton(first, kNext));
    WaitForPage(m_texts.installed, setup.Id());
    Press(m_texts.used, kNext, setup.Id());
    EXPECT_EQ(setup.WaitForExit(), kSetupDone);
    ExpectInstalled(OldVersion());
}

TEST_F(SetupPagesTest, SayWhichVersionIsReplacedAndThatOutlookHasToBeRestarted)
{
    Install(OldVersion());
    const CAddInModule loaded(InstalledModule());
    CChildProcess setup({.program = NewVersion().setup});
    Press(m_texts.replaces, kNext, setup.Id());
    Press(m_texts.restart, kNext, setup.Id());
    EXPECT_EQ(setup.WaitForExit(), kSetupDone);
    EXPECT_EQ(RegistryString(HKEY_LOCAL_MACHINE, kEntryKey, L"DisplayVersion"), NewVersion().version);
}

TEST_F(SetupPagesTest, SayThatTheSameVersionIsRepairedAndCanBeCancelled)
{
    Install(OldVersion());
    RemovePath(InstalledModule());
    CChildProcess setup({.program = OldVersion().setup});
    Press(m_texts.repairs, kCancel, setup.Id());
    EXPECT_EQ(setup.WaitForExit(), kSetupCancelled);
    EXPECT_FALSE(FileExists(InstalledModule()));
}

TEST_F(SetupPagesTest, AMessageSaysThatANewerVersionIsInstalled)
{
    Install(NewVersion());
    CChildProcess setup({.program = OldVersion().setup});
    EXPECT_TRUE(PressOk(WaitForPage(m_texts.newer, setup.Id())));
    EXPECT_EQ(setup.WaitForExit(), kNewerInstalled);
    ExpectInstalled(NewVersion());
}

TEST_F(SetupPagesTest, AMessageSaysWhichFileCannotBeReplacedAndThatNothingWasChanged)
{
    Install(OldVersion());
    {
        const UniqueHandle file(
            CreateFileW(InstalledModule().c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
        CChildProcess setup({.program = NewVersion().setup});
        Press(m_texts.replaces, kNext, setup.Id());
        const HWND message = WaitForPage(m_texts.cannotReplace, setup.Id());
        EXPECT_EQ(LookAt(message).text, std::wstring(m_texts.cannotReplace) + L"\r\n" + InstalledModule() +
                                            L"\r\n\r\n" + m_texts.nothingChanged);
        EXPECT_TRUE(PressOk(message));
        // The page stays, and closing it ends the program.
        const HWND page =
            WaitForWindow({.process = setup.Id(), .className = kDialogClass, .childId = kCancel});
        EXPECT_TRUE(WaitUntil([&] { return ClickButton(page, kCancel); }));
        EXPECT_EQ(setup.WaitForExit(), kFileFailed);
    }
    ExpectInstalled(OldVersion());
}

TEST_F(SetupPagesTest, OfTheUninstallerSayWhatIsRemovedAndThatTheLogStays)
{
    Install(OldVersion());
    EXPECT_EQ(Run(InstalledUninstaller(), {}), kSetupDone);
    // The pages belong to its copy, another process.
    const HWND first = WaitForPage(m_texts.logStays, 0);
    EXPECT_EQ(ChildText(first, kNext), m_texts.uninstall);
    EXPECT_TRUE(ClickButton(first, kNext));
    Press(m_texts.removed, kNext, 0);
    EXPECT_TRUE(WaitUntilGone(first));
    EXPECT_FALSE(FolderExists(InstallFolder()));
    EXPECT_FALSE(RegistryKeyExists(HKEY_LOCAL_MACHINE, kEntryKey));
}

TEST_F(SetupPagesTest, OfTheUninstallerDoNotAskForARestartOfWindows)
{
    Install(OldVersion());
    const CAddInModule loaded(InstalledModule());
    // So the DLL that is loaded is not even the installed one any more.
    ASSERT_EQ(Run(NewVersion().setup), kSetupDone);
    EXPECT_EQ(Run(InstalledUninstaller(), {}), kSetupDone);
    Press(m_texts.logStays, kNext, 0);
    const HWND last = WaitForPage(m_texts.disappears, 0);
    for (const HWND control : ChildWindows(last))
    {
        const LONG type = GetWindowLongW(control, GWL_STYLE) & BS_TYPEMASK;
        const bool isButton = WindowClassName(control) == L"Button" && IsWindowVisible(control);
        EXPECT_FALSE(isButton && type != BS_PUSHBUTTON && type != BS_DEFPUSHBUTTON)
            << Utf8(WindowText(control));
    }
    EXPECT_TRUE(ClickButton(last, kNext));
    EXPECT_TRUE(WaitUntilGone(last));
}

} // namespace
} // namespace orva::test
