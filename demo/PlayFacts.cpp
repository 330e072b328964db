// What must be seen in the play, and what the logs and the disk tell of it.
#include "OrvaVersion.h"
#include "demo/Play.h"
#include "fixture/UpdateInfo.h"
#include "harness/Files.h"
#include "harness/LogFile.h"
#include "harness/Text.h"

#include <iomanip>
#include <sstream>

namespace orva::demo
{

using namespace test;

namespace
{

bool Has(const std::string& text, const char* part)
{
    return text.find(part) != std::string::npos;
}

} // namespace

void CPlay::AskForFacts()
{
    const bool isUsers = !IsForPerson();
    const bool isOffer = isUsers && m_settings.outcome == L"offer";
    const bool isSilence = isUsers && m_settings.outcome == L"silence";
    const bool is12 = isUsers && m_settings.office == L"12";
    const bool is15 = isUsers && m_settings.office == L"15";
    const bool isBroken = isUsers && m_settings.office == L"14" && m_settings.language == L"es";
    const bool isTab = isUsers && m_settings.office == L"14" && !isBroken;
    const bool isRequest = is12 || isTab;
    const std::string version = Utf8(m_settings.publish);
    const std::string lastVersion = IsUpdate() ? version : ORVA_VERSION;
    const std::string file = std::string(kUpdateInfoPath);
    const auto ask = [this](bool isAsked, const char* fact, const std::string& text) {
        m_timeline.Ask(isAsked, fact, text);
    };
    ask(true, "installed", "the setup installed version " ORVA_VERSION);
    AskForRefusal(IsUpdate() && m_settings.signing == L"signed");
    ask(true, "start-connected", "Outlook loaded and connected the add-in (OnConnection gave S_OK)");
    ask(true, "start-fetched",
        "at Outlook's start the add-in read " + file +
            (m_settings.outcome == L"any" ? ", the file as it is" : ", compressed with gzip"));
    ask(isUsers, "start-completed", "Outlook's start was completed");
    ask(isUsers, "start-enabled", "after the start-up check Outlook's window could be used");
    ask(isOffer, "start-offer", "version " + version + " was offered");
    ask(isOffer, "start-offer-texts", "the offer named both versions, in the language of Outlook");
    AskForAnswer(isOffer);
    AskForUpdate(version);
    ask(isSilence, "start-silence",
        "nothing was shown at the start, because " ORVA_VERSION " is the latest version");
    ask(is12, "about",
        "the command in the Help menu opened the About dialog with version " + lastVersion +
            ", in the language of Outlook");
    ask(isBroken, "parse-report", "Outlook reported the Spanish markup as not well-formed and showed no tab");
    ask(isTab, "backstage",
        "the File view showed the add-in's tab with version " + lastVersion + ", in the language of Outlook");
    ask(isRequest, "request-fetched", "\"Update\" read " + file + " again");
    ask(isRequest && isOffer && !IsUpdate(), "request-offer", "version " + version + " was offered again");
    ask(isRequest && isOffer && !IsUpdate(), "request-later", "the second offer was declined and closed");
    ask(isRequest && (isSilence || IsUpdate()), "request-latest",
        "the user was told that the latest version is installed");
    ask(isRequest, "request-enabled", "after that check Outlook's window could be used");
    ask(is12, "about-closed", "the About dialog closed");
    ask(is15, "no-tab", "the add-in gave no tab (GetCustomUI answered with an empty text)");
    ask(is15, "no-command", "the add-in added no menu command");
    ask(isUsers, "logged", "the add-in's debug log tells of the start-up check");
    ask(true, "start-ended", "Outlook ended by itself");
    ask(IsUpdate(), "restart-ended", "started again, it ended by itself, too");
}

void CPlay::AskForRefusal(bool isChanged)
{
    const auto ask = [&](const char* fact, const char* text) { m_timeline.Ask(isChanged, fact, text); };
    ask("changed-offer", "while the installer was changed on its way, the version was offered");
    ask("changed-downloaded-whole", "the server sent the whole changed installer");
    ask("changed-error-message", "its signature was found to be wrong, and the user saw an error");
    ask("changed-canceled-message", "after it the message about the canceled download was shown");
    ask("changed-deleted", "the changed installer was deleted");
    ask("changed-not-run", "and not started");
    ask("changed-ended", "Outlook ended by itself");
}

void CPlay::AskForAnswer(bool isOffered)
{
    const bool isLater = isOffered && m_settings.answer == L"later";
    const bool isCancel = isOffered && m_settings.answer == L"cancel";
    const bool isInstall = isOffered && m_settings.answer == L"install";
    const auto ask = [this](bool isAsked, const char* fact, const char* text) {
        m_timeline.Ask(isAsked, fact, text);
    };
    ask(isLater, "start-later", "the offer was declined and closed");
    ask(isLater, "nothing-downloaded", "nothing was downloaded");
    ask(isInstall || isCancel, "start-progress", "the download showed its progress");
    ask(isCancel, "cancel-shown", "after Cancel the download said so");
    ask(isInstall, "start-downloaded-whole", "the server sent the whole installer");
    ask(isInstall || isCancel, "start-download-closed", "the download dialog closed");
    ask(isCancel, "start-canceled-message", "the message about the canceled download was shown");
    ask(isCancel, "start-downloaded-part", "the server sent only a part of the installer");
    ask(isCancel, "start-deleted", "the partial file was deleted");
    ask(isCancel, "start-not-run", "no installer was started");
    ask(isInstall, "installer-same",
        "the downloaded file is what was published, byte for byte, in a fresh temporary folder");
    ask(isInstall, "installer-ran", "the installer was started from there");
    ask(isInstall, "installer-window", "its pages were seen, and closed");
}

void CPlay::AskForUpdate(const std::string& version)
{
    const auto ask = [this](const char* fact, const std::string& text) {
        m_timeline.Ask(IsUpdate(), fact, text);
    };
    ask("setup-pages", "the setup's pages said that " ORVA_VERSION " is replaced by " + version);
    ask("outlook-open", "Outlook was open until the setup's end");
    ask("updated", "\"Programs and Features\" was opened, where the entry has version " + version);
    ask("restart-connected", "Outlook, started again, loaded and connected the add-in");
    ask("restart-fetched", "the add-in read the file again");
    ask("restart-silence", "nothing was shown at that start, because " + version + " is the latest version");
}

void CPlay::OnTrace(const std::string& line)
{
    bool isTold = true;
    for (const char* const detail :
         {"QueryInterface", "GetIDsOfNames", "CLSIDFromProgID", "references to", "Outlook: menu &"})
    {
        isTold = isTold && !Has(line, detail);
    }
    if (isTold)
    {
        // "WHO -> WHOM: CALL", or "WHO: EVENT". Whose object the add-in has called is of interest.
        const bool isCall = Has(line, " -> ");
        const bool isAddIns = line.starts_with("add-in");
        const size_t text = isAddIns ? line.find("-> ") + 3 : line.find(": ") + 2;
        m_timeline.Tell(isAddIns ? "add-in" : "Outlook", (isCall ? "called " : "") + line.substr(text));
    }
    See(InPhase("connected"), Has(line, "OnConnection(ConnectMode 1) = 0x00000000"));
    See(InPhase("completed"), Has(line, "Outlook: start-up complete"));
    See("parse-report", Has(line, "Outlook: custom UI of OrvaOscAddin.Connect refused: "));
    See("no-tab", Has(line, "Outlook: custom UI of OrvaOscAddin.Connect: 0 characters"));
    See("file-view", Has(line, "Outlook: File view shows "));
    See("update-pressed", Has(line, "Invoke 42000 ButtonClicked("));
    See("command", Has(line, "add-in -> ") && Has(line, "Add("));
}

void CPlay::OnRequest(const std::string& line)
{
    std::string status;
    std::string encoding;
    std::string target;
    std::string word;
    size_t size = 0;
    std::istringstream fields(line);
    fields >> word >> status >> size >> word >> word >> std::quoted(encoding) >> word >> std::quoted(target);
    m_timeline.Tell("server", target + ": " + status + ", " + std::to_string(size) + " bytes" +
                                  (encoding == "-" ? "" : " in " + encoding));
    const bool isFile = Has(target, kUpdateInfoPath);
    const bool isInstaller = !isFile && Has(target, ".exe");
    See(InPhase("asked"), isFile);
    // A file of the caller's may be too short to be worth compressing.
    See(InPhase("fetched"),
        isFile && status == "200" && (encoding == "gzip" || m_settings.outcome == L"any"));
    See("downloaded", isInstaller);
    const bool isWhole = size >= ReadFileBytes(m_settings.installer).value_or("").size();
    See(InPhase("downloaded-whole"), isInstaller && isWhole);
    See(InPhase("downloaded-part"), isInstaller && !isWhole);
}

// What the download has left on disk.
void CPlay::ExamineDownload()
{
    bool isKept = false;
    for (const std::wstring& path : Downloads())
    {
        if (path.ends_with(L".exe"))
        {
            isKept = true;
            See("installer-same",
                m_phase == "start" && ReadFileBytes(path) == ReadFileBytes(m_settings.installer));
        }
    }
    See(InPhase("deleted"), !isKept && IsSeen(InPhase("progress")));
    See(InPhase("not-run"), !IsSeen("installer-ran"));
    See("nothing-downloaded", !IsSeen("downloaded"));
}

void CPlay::ExamineLog()
{
    const std::string log = ReadLog();
    if (log.empty())
    {
        m_timeline.Tell("", "the add-in wrote no log");
        return;
    }
    WriteFileBytes(m_settings.out + L"\\orva.log", log);
    See("logged", Has(log, "CConnect::OnConnection() check for updates ") &&
                      Has(log, "CheckForUpdate() TextRequest succeeded "));
}

} // namespace orva::demo
