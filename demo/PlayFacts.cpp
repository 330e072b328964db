#include "demo/PlayFacts.h"

#include "OrvaVersion.h"
#include "demo/Website.h"

namespace orva::demo
{

namespace
{

void AskForExplicitCheck(const CSettings& settings, CTimeline& timeline)
{
    timeline.Ask("request-fetched", std::string("\"Update\" read ") + kUpdateInfoPath + " again");
    if (settings.outcome == Outcome::Offer)
    {
        timeline.Ask("request-offer", "version " + settings.version + " was offered again");
        timeline.Ask("request-later", "the second offer was declined and closed");
    }
    else if (settings.outcome == Outcome::Silence)
    {
        timeline.Ask("request-latest", "the user was told that the latest version is installed");
    }
    timeline.Ask("request-enabled", "after that check Outlook's window could be used");
}

void AskForStart(const CSettings& settings, CTimeline& timeline)
{
    timeline.Ask("started", "Outlook's start was completed");
    timeline.Ask("start-enabled", "after the start-up check Outlook's window could be used");
    if (settings.outcome == Outcome::Offer)
    {
        timeline.Ask("start-offer", "version " + settings.version + " was offered");
        timeline.Ask("start-offer-texts", "the offer named both versions, in the language of Outlook");
        AskForAnswer(settings, timeline);
    }
    else if (settings.outcome == Outcome::Silence)
    {
        timeline.Ask("start-silence",
                     "nothing was shown at the start, because " ORVA_VERSION " is the latest version");
    }
}

void AskForRequest(const CSettings& settings, CTimeline& timeline)
{
    if (settings.office == 12)
    {
        timeline.Ask("about",
                     "the command in the Help menu opened the About dialog, in the language of Outlook");
        AskForExplicitCheck(settings, timeline);
        timeline.Ask("about-closed", "the About dialog closed");
    }
    else if (settings.office == 15)
    {
        timeline.Ask("no-tab", "the add-in gave no tab (GetCustomUI answered with an empty text)");
        timeline.Ask("no-command", "the add-in added no menu command");
    }
    else if (settings.language == "es")
    {
        timeline.Ask("parse-report",
                     "Outlook reported the Spanish markup as not well-formed and showed no tab");
    }
    else
    {
        timeline.Ask("backstage", "the File view showed the add-in's tab, in the language of Outlook");
        AskForExplicitCheck(settings, timeline);
    }
}

} // namespace

void AskForFacts(const CSettings& settings, CTimeline& timeline)
{
    const char* const form =
        settings.outcome == Outcome::Any ? ", the file as it is" : ", compressed with gzip";
    timeline.Ask("connected", "Outlook loaded and connected the add-in (OnConnection gave S_OK)");
    timeline.Ask("start-fetched",
                 std::string("at Outlook's start the add-in read ") + kUpdateInfoPath + form);
    if (!settings.isForPerson)
    {
        AskForStart(settings, timeline);
        AskForRequest(settings, timeline);
        timeline.Ask("logged", "the add-in's debug log tells of the start-up check");
    }
    timeline.Ask("ended", "Outlook ended by itself");
}

void AskForAnswer(const CSettings& settings, CTimeline& timeline)
{
    if (settings.answer == "later")
    {
        timeline.Ask("start-later", "the offer was declined and closed");
        timeline.Ask("nothing-downloaded", "nothing was downloaded");
        return;
    }
    timeline.Ask("progress", "the download showed its progress");
    if (settings.answer == "cancel")
    {
        timeline.Ask("cancel-shown", "after Cancel the download said so");
        timeline.Ask("download-closed", "the download dialog closed");
        timeline.Ask("canceled-message", "the message about the canceled download was shown");
        timeline.Ask("downloaded-part", "the server sent only a part of the installer");
        timeline.Ask("partial-deleted", "the partial file was deleted");
        timeline.Ask("installer-not-run", "no installer was started");
        return;
    }
    timeline.Ask("downloaded-whole", "the server sent the whole installer");
    timeline.Ask("download-closed", "the download dialog closed");
    timeline.Ask("installer-same",
                 "the downloaded file is what was published, byte for byte, in a fresh temporary folder");
    timeline.Ask("installer-ran", "the installer was started from there");
    timeline.Ask("installer-window", "the installer's window was seen, and closed");
}

} // namespace orva::demo
