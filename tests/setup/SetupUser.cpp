#include "setup/SetupUser.h"

#include "harness/SeenWindow.h"
#include "harness/Text.h"
#include "setup/SetupFixture.h"

namespace orva::test
{
namespace
{

constexpr CSetupTexts kTexts[] = {
    {.language = LANG_ENGLISH,
     .caption = L"ORVA Connector {old} Setup",
     .installs = L"Setup installs ORVA Connector {old} for all users of this computer.",
     .install = L"&Install",
     .used = L"Outlook uses version {old} from its next start.",
     .replaces =
         L"Setup replaces version {old} of the ORVA Connector with {new} for all users of this computer.",
     .newCaption = L"ORVA Connector {new} Setup",
     .usesNew = L"Outlook uses version {new} from its next start.",
     .restart = L"Restart Outlook to use the new version, {new}.",
     .repairs = L"Version {old} of the ORVA Connector is installed already. Setup installs it once more and "
                L"so repairs it.",
     .repaired = L"Version {old} is repaired.\r\n\r\nRestart Outlook to use the repaired files.",
     .uninstallCaption = L"Uninstall ORVA Connector {new}",
     .logStays = L"the log file that the add-in may have written in your profile stays.",
     .uninstall = L"&Uninstall",
     .removed = L"The add-in, its folder and its registration are removed.",
     .disappears = L"Outlook is still using the add-in. It disappears when Outlook is restarted",
     .newer =
         L"Version {new} of the ORVA Connector is installed. It is newer than {old}, so nothing was changed.",
     .busy = L"Another setup of the ORVA Connector is running.\r\n\r\nPlease start this one again when the "
             L"other has ended.",
     .nothingChanged = L"Nothing was changed on this computer.",
     .cannotWrite = L"The files could not be written into this folder:\r\n{folder}",
     .diskFull = L"Nothing was changed on this computer, because this file could not be written. There may "
                 L"be no space left on its drive.\r\n\r\n",
     .cannotReplace = L"The file could not be replaced:\r\n{module}\r\n\r\nWindows error 32: ",
     .cannotRemove = L"The file could not be removed:\r\n{module}\r\n\r\nWindows error 32: ",
     .stillInstalled = L"The ORVA Connector is still installed.",
     .cannotSave = L"The add-in's present registration could not be saved.",
     .cannotRegister = L"The add-in could not be registered with Outlook (regsvr32 ended with 5).",
     .cannotStartRegsvr32 =
         L"The add-in could not be registered with Outlook: regsvr32 could not be started.",
     .cannotWriteEntry = L"The entry in Programs and Features could not be written.",
     .cannotUnregister = L"The add-in's registration could not be removed. Start the uninstallation again.",
     .cannotRemoveEntry =
         L"The entry in Programs and Features could not be removed. Start the uninstallation again.",
     .removing = L"Please wait while the ORVA Connector is being removed.",
     .notUninstalled = L"Uninstall was not completed successfully."},
    {.language = LANG_GERMAN,
     .caption = L"ORVA Connector {old} Setup",
     .installs = L"Das Setup installiert den ORVA Connector {old} für alle Benutzer dieses Computers.",
     .install = L"&Installieren",
     .used = L"Outlook verwendet die Version {old}, wenn es das nächste Mal gestartet wird.",
     .replaces = L"Das Setup ersetzt die Version {old} des ORVA Connectors durch {new}, für alle Benutzer "
                 L"dieses Computers.",
     .newCaption = L"ORVA Connector {new} Setup",
     .usesNew = L"Outlook verwendet die Version {new}, wenn es das nächste Mal gestartet wird.",
     .restart = L"Starten Sie Outlook neu, um die neue Version {new} zu verwenden.",
     .repairs = L"Die Version {old} des ORVA Connectors ist bereits installiert. Das Setup installiert sie "
                L"noch einmal und repariert sie so.",
     .repaired = L"Die Version {old} ist repariert.\r\n\r\nStarten Sie Outlook neu, um die reparierten "
                 L"Dateien zu verwenden.",
     .uninstallCaption = L"ORVA Connector {new} deinstallieren",
     .logStays =
         L"die Protokolldatei, die das Add-In vielleicht in Ihrem Profil geschrieben hat, bleibt erhalten.",
     .uninstall = L"&Deinstallieren",
     .removed = L"Das Add-In, sein Ordner und seine Registrierung sind entfernt.",
     .disappears = L"Outlook verwendet das Add-In noch. Es verschwindet, wenn Outlook neu gestartet wird",
     .newer = L"Die Version {new} des ORVA Connectors ist installiert. Sie ist neuer als {old}, deshalb "
              L"wurde nichts geändert.",
     .busy = L"Ein anderes Setup des ORVA Connectors läuft gerade.\r\n\r\nBitte starten Sie dieses noch "
             L"einmal, wenn das andere beendet ist.",
     .nothingChanged = L"An diesem Computer wurde nichts geändert.",
     .cannotWrite = L"Die Dateien konnten nicht in diesen Ordner geschrieben werden:\r\n{folder}",
     .diskFull = L"An diesem Computer wurde nichts geändert, weil diese Datei nicht geschrieben werden "
                 L"konnte. Vielleicht ist auf dem Laufwerk kein Platz mehr.\r\n\r\n",
     .cannotReplace = L"Die Datei konnte nicht ersetzt werden:\r\n{module}\r\n\r\nWindows-Fehler 32: ",
     .cannotRemove = L"Die Datei konnte nicht entfernt werden:\r\n{module}\r\n\r\nWindows-Fehler 32: ",
     .stillInstalled = L"Der ORVA Connector ist weiterhin installiert.",
     .cannotSave = L"Die jetzige Registrierung des Add-Ins konnte nicht gesichert werden.",
     .cannotRegister = L"Das Add-In konnte nicht bei Outlook registriert werden (regsvr32 endete mit 5).",
     .cannotStartRegsvr32 =
         L"Das Add-In konnte nicht bei Outlook registriert werden: regsvr32 konnte nicht gestartet werden.",
     .cannotWriteEntry = L"Der Eintrag in „Programme und Funktionen“ konnte nicht geschrieben werden.",
     .cannotUnregister = L"Die Registrierung des Add-Ins konnte nicht entfernt werden. Starten Sie die "
                         L"Deinstallation noch einmal.",
     .cannotRemoveEntry = L"Der Eintrag in „Programme und Funktionen“ konnte nicht entfernt werden. Starten "
                          L"Sie die Deinstallation noch einmal.",
     .removing = L"Bitte warten Sie, während der ORVA Connector entfernt wird.",
     .notUninstalled = L"Die Deinstallation wurde nicht vollständig abgeschlossen."},
    {.language = LANG_SPANISH,
     .caption = L"Instalación de ORVA Connector {old}",
     .installs = L"El programa instala ORVA Connector {old} para todos los usuarios de este equipo.",
     .install = L"&Instalar",
     .used = L"Outlook utilizará la versión {old} la próxima vez que se inicie.",
     .replaces = L"El programa sustituye la versión {old} de ORVA Connector por la {new} para todos los "
                 L"usuarios de este equipo.",
     .newCaption = L"Instalación de ORVA Connector {new}",
     .usesNew = L"Outlook utilizará la versión {new} la próxima vez que se inicie.",
     .restart = L"Reinicie Outlook para utilizar la nueva versión {new}.",
     .repairs = L"La versión {old} de ORVA Connector ya está instalada. El programa la instala de nuevo y "
                L"así la repara.",
     .repaired =
         L"La versión {old} está reparada.\r\n\r\nReinicie Outlook para utilizar los archivos reparados.",
     .uninstallCaption = L"Desinstalar ORVA Connector {new}",
     .logStays = L"el archivo de registro que el complemento haya podido escribir en su perfil se conserva.",
     .uninstall = L"&Desinstalar",
     .removed = L"Se han quitado el complemento, su carpeta y su inscripción en Outlook.",
     .disappears = L"Outlook todavía utiliza el complemento. Desaparecerá cuando se reinicie Outlook",
     .newer = L"La versión {new} de ORVA Connector está instalada. Es más reciente que la {old}, así que no "
              L"se ha cambiado nada.",
     .busy = L"Otra instalación de ORVA Connector está en curso.\r\n\r\nInicie esta de nuevo cuando la otra "
             L"haya terminado.",
     .nothingChanged = L"No se ha cambiado nada en este equipo.",
     .cannotWrite = L"No se han podido escribir los archivos en esta carpeta:\r\n{folder}",
     .diskFull = L"No se ha cambiado nada en este equipo, porque no se ha podido escribir este archivo. "
                 L"Puede que no quede espacio en la unidad.\r\n\r\n",
     .cannotReplace = L"No se ha podido sustituir el archivo:\r\n{module}\r\n\r\nError de Windows 32: ",
     .cannotRemove = L"No se ha podido quitar el archivo:\r\n{module}\r\n\r\nError de Windows 32: ",
     .stillInstalled = L"ORVA Connector sigue instalado.",
     .cannotSave = L"No se ha podido guardar la inscripción actual del complemento en Outlook.",
     .cannotRegister = L"No se ha podido registrar el complemento en Outlook (regsvr32 terminó con 5).",
     .cannotStartRegsvr32 =
         L"No se ha podido registrar el complemento en Outlook: no se ha podido iniciar regsvr32.",
     .cannotWriteEntry = L"No se ha podido escribir la entrada de Programas y características.",
     .cannotUnregister = L"No se ha podido quitar la inscripción del complemento en Outlook. Inicie la "
                         L"desinstalación de nuevo.",
     .cannotRemoveEntry = L"No se ha podido quitar la entrada de Programas y características. Inicie la "
                          L"desinstalación de nuevo.",
     .removing = L"Espere mientras se quita ORVA Connector.",
     .notUninstalled = L"La desinstalación no se completó correctamente."},
    {.language = LANG_TURKISH,
     .caption = L"ORVA Connector {old} Kurulumu",
     .installs = L"Kurulum, ORVA Connector {old} sürümünü bu bilgisayarın tüm kullanıcıları için yükler.",
     .install = L"&Kur",
     .used = L"Outlook, {old} sürümünü bir sonraki başlatılışında kullanır.",
     .replaces = L"Kurulum, ORVA Connector {old} sürümünü bu bilgisayarın tüm kullanıcıları için {new} "
                 L"sürümüyle değiştirir.",
     .newCaption = L"ORVA Connector {new} Kurulumu",
     .usesNew = L"Outlook, {new} sürümünü bir sonraki başlatılışında kullanır.",
     .restart = L"Yeni {new} sürümünü kullanmak için Outlook'u yeniden başlatın.",
     .repairs = L"ORVA Connector {old} sürümü zaten yüklü. Kurulum onu yeniden yükler ve böylece onarır.",
     .repaired =
         L"{old} sürümü onarıldı.\r\n\r\nOnarılan dosyaları kullanmak için Outlook'u yeniden başlatın.",
     .uninstallCaption = L"ORVA Connector {new} kaldırma",
     .logStays = L"eklentinin profilinize yazmış olabileceği günlük dosyası da kalır.",
     .uninstall = L"&Kaldır",
     .removed = L"Eklenti, klasörü ve kaydı kaldırıldı.",
     .disappears = L"Outlook eklentiyi hâlâ kullanıyor. Eklenti, Outlook yeniden başlatılınca",
     .newer = L"ORVA Connector {new} sürümü yüklü. Bu sürüm {old} sürümünden yeni olduğu için hiçbir şey "
              L"değiştirilmedi.",
     .busy =
         L"Başka bir ORVA Connector kurulumu çalışıyor.\r\n\r\nLütfen öteki bitince bunu yeniden başlatın.",
     .nothingChanged = L"Bu bilgisayarda hiçbir şey değiştirilmedi.",
     .cannotWrite = L"Dosyalar şu klasöre yazılamadı:\r\n{folder}",
     .diskFull = L"Bu bilgisayarda hiçbir şey değiştirilmedi, çünkü şu dosya yazılamadı. Sürücüde yer "
                 L"kalmamış olabilir.\r\n\r\n",
     .cannotReplace = L"Dosya değiştirilemedi:\r\n{module}\r\n\r\nWindows hatası 32: ",
     .cannotRemove = L"Dosya kaldırılamadı:\r\n{module}\r\n\r\nWindows hatası 32: ",
     .stillInstalled = L"ORVA Connector hâlâ yüklü.",
     .cannotSave = L"Eklentinin şimdiki kaydı yedeklenemedi.",
     .cannotRegister = L"Eklenti Outlook'a kaydedilemedi (regsvr32 5 koduyla bitti).",
     .cannotStartRegsvr32 = L"Eklenti Outlook'a kaydedilemedi: regsvr32 başlatılamadı.",
     .cannotWriteEntry = L"Programlar ve Özellikler'deki kayıt yazılamadı.",
     .cannotUnregister = L"Eklentinin kaydı kaldırılamadı. Kaldırmayı yeniden başlatın.",
     .cannotRemoveEntry = L"Programlar ve Özellikler'deki kayıt kaldırılamadı. Kaldırmayı yeniden başlatın.",
     .removing = L"ORVA Connector kaldırılırken lütfen bekleyin.",
     .notUninstalled = L"Kaldırma İşlemi tamamlanamadı."},
};

} // namespace

const CSetupTexts& Texts()
{
    for (const CSetupTexts& texts : kTexts)
    {
        if (texts.language == PRIMARYLANGID(GetUserDefaultUILanguage()))
        {
            return texts;
        }
    }
    return kTexts[0];
}

bool IsAskedLanguage()
{
    wchar_t locale[20] = L"";
    wchar_t language[20] = L"";
    GetEnvironmentVariableW(L"ORVA_LOCALE", locale, 20);
    GetLocaleInfoW(MAKELCID(GetUserDefaultUILanguage(), SORT_DEFAULT), LOCALE_SISO639LANGNAME, language, 20);
    return locale[0] == L'\0' || std::wstring(locale).starts_with(language);
}

std::wstring Filled(std::wstring text)
{
    for (const auto& [name, value] : {std::pair(std::wstring(L"{old}"), OldVersion().version),
                                      std::pair(std::wstring(L"{new}"), NewVersion().version),
                                      std::pair(std::wstring(L"{folder}"), InstallFolder()),
                                      std::pair(std::wstring(L"{module}"), InstalledModule())})
    {
        for (size_t at = text.find(name); at != std::wstring::npos; at = text.find(name))
        {
            text.replace(at, name.size(), value);
        }
    }
    return text;
}

std::wstring InUseText()
{
    wchar_t text[500] = L"";
    FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK,
                   nullptr, ERROR_SHARING_VIOLATION, 0, text, 500, nullptr);
    EXPECT_NE(text[0], L'\0');
    return text;
}

HWND WaitForPage(const std::wstring& text, DWORD process)
{
    const std::wstring expected = Filled(text);
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

void Press(const std::wstring& text, int button, DWORD process)
{
    const HWND page = WaitForPage(text, process);
    EXPECT_TRUE(WaitUntil([&] { return ClickButton(page, button); }));
}

void AnswerMessage(const std::wstring& text, DWORD process)
{
    const HWND message = WaitForPage(text, process);
    EXPECT_EQ(LookAt(message).text, Filled(text));
    // The only button of a message box is "OK" or, on Windows, has the id of "Cancel".
    EXPECT_TRUE(ClickButton(message, IDOK) || ClickButton(message, IDCANCEL));
    EXPECT_TRUE(WaitUntilGone(message));
}

} // namespace orva::test
