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

// The path of the program that this installer's trace tells of, if it is in a folder that the add-in makes;
// otherwise empty.
std::string StartedFrom(const std::string& trace)
{
    const std::string path = trace.substr(0, trace.find('\r'));
    const size_t folder = path.find("\\osc");
    constexpr size_t kFolderLength = 10;
    return path.starts_with("path C:") && folder != std::string::npos &&
                   path.substr(folder + kFolderLength).starts_with("\\OrvaSetup")
               ? path.substr(path.find("C:"))
               : "";
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
    const std::string file = std::string(kUpdateInfoPath);
    const auto ask = [this](bool isAsked, const char* fact, const std::string& text) {
        m_timeline.Ask(isAsked, fact, text);
    };
    ask(true, "connected", "Outlook loaded and connected the add-in (OnConnection gave S_OK)");
    ask(true, "start-fetched",
        "at Outlook's start the add-in read " + file +
            (m_settings.outcome == L"any" ? ", the file as it is" : ", compressed with gzip"));
    ask(isUsers, "started", "Outlook's start was completed");
    ask(isUsers, "start-enabled", "after the start-up check Outlook's window could be used");
    ask(isOffer, "start-offer", "version " + version + " was offered");
    ask(isOffer, "start-offer-texts", "the offer named both versions, in the language of Outlook");
    AskForAnswer(isOffer);
    ask(isSilence, "start-silence",
        "nothing was shown at the start, because " ORVA_VERSION " is the latest version");
    ask(is12, "about", "the command in the Help menu opened the About dialog, in the language of Outlook");
    ask(isBroken, "parse-report", "Outlook reported the Spanish markup as not well-formed and showed no tab");
    ask(isTab, "backstage", "the File view showed the add-in's tab, in the language of Outlook");
    ask(isRequest, "request-fetched", "\"Update\" read " + file + " again");
    ask(isRequest && isOffer, "request-offer", "version " + version + " was offered again");
    ask(isRequest && isOffer, "request-later", "the second offer was declined and closed");
    ask(isRequest && isSilence, "request-latest", "the user was told that the latest version is installed");
    ask(isRequest, "request-enabled", "after that check Outlook's window could be used");
    ask(is12, "about-closed", "the About dialog closed");
    ask(is15, "no-tab", "the add-in gave no tab (GetCustomUI answered with an empty text)");
    ask(is15, "no-command", "the add-in added no menu command");
    ask(isUsers, "logged", "the add-in's debug log tells of the start-up check");
    ask(true, "ended", "Outlook ended by itself");
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
    ask(isInstall || isCancel, "progress", "the download showed its progress");
    ask(isCancel, "cancel-shown", "after Cancel the download said so");
    ask(isInstall, "downloaded-whole", "the server sent the whole installer");
    ask(isInstall || isCancel, "download-closed", "the download dialog closed");
    ask(isCancel, "canceled-message", "the message about the canceled download was shown");
    ask(isCancel, "downloaded-part", "the server sent only a part of the installer");
    ask(isCancel, "partial-deleted", "the partial file was deleted");
    ask(isCancel, "installer-not-run", "no installer was started");
    ask(isInstall, "installer-same",
        "the downloaded file is what was published, byte for byte, in a fresh temporary folder");
    ask(isInstall, "installer-ran", "the installer was started from there");
    ask(isInstall, "installer-window", "the installer's window was seen, and closed");
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
    See("connected", Has(line, "OnConnection(ConnectMode 1) = 0x00000000"));
    See("started", Has(line, "Outlook: start-up complete"));
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
    See(m_phase + "-asked", isFile);
    // A file of the caller's may be too short to be worth compressing.
    See(m_phase + "-fetched",
        isFile && status == "200" && (encoding == "gzip" || m_settings.outcome == L"any"));
    See("downloaded", isInstaller);
    const bool isWhole = size >= ReadFileBytes(m_settings.installer).value_or("").size();
    See("downloaded-whole", isInstaller && isWhole);
    See("downloaded-part", isInstaller && !isWhole);
}

// What the download has left on disk.
void CPlay::ExamineDownload()
{
    bool isKept = false;
    bool isStarted = false;
    for (const std::wstring& path : Downloads())
    {
        const std::string bytes = ReadFileBytes(path).value_or("");
        if (path.ends_with(L".exe"))
        {
            isKept = true;
            See("installer-same", bytes == ReadFileBytes(m_settings.installer));
        }
        else if (path.ends_with(L".trace.txt"))
        {
            isStarted = true;
            if (const std::string from = StartedFrom(bytes); !from.empty())
            {
                m_timeline.Tell("installer", "says: ran from " + from);
                See("installer-ran");
            }
        }
    }
    See("partial-deleted", !isKept && IsSeen("progress"));
    See("installer-not-run", !isStarted);
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
