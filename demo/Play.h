// The play: the connector is installed, Outlook starts with the add-in, its user answers what comes up, asks
// for a check of his own and closes it. After an update he starts it once more.
#pragma once

#include "demo/Stage.h"

#include <string>

namespace orva::demo
{

class CPlay : public CStage
{
public:
    using CStage::CStage;

    /// Plays it. Whether everything that was asked for was seen.
    bool Run();

private:
    void PlayInstallation();
    /// Outlook from its start, the phase of this name, to its end.
    void PlayOutlook(const std::string& phase, bool hasRequest);
    void PlayStart();
    void PlayRequest();
    /// An installer that is changed on its way is downloaded and refused.
    void PlayChangedInstaller();
    /// The user looks at "Programs and Features".
    void PlayPrograms();
    void RequestInFileView();
    void RequestInAbout();
    void PlayEnd(const std::string& phase);

    /// Notes everything that must be seen.
    void AskForFacts();
    /// Notes what must follow from the answer to an offer, if there is one.
    void AskForAnswer(bool isOffered);
    /// Notes what must follow from an installer that was changed on its way.
    void AskForRefusal(bool isChanged);
    /// Notes what must follow from an update to this version.
    void AskForUpdate(const std::string& version);
    void OnTrace(const std::string& line) override;
    void OnRequest(const std::string& line) override;
    void ExamineDownload();
    void ExamineLog();

    void Meet(const CMetWindow& window) override;
    void MeetMain(const CMetWindow& main);
    void MeetOffer(const CMetWindow& offer);
    void MeetDownload(const CMetWindow& download);
    void MeetInstaller(const CMetWindow& installer);
    void MeetMessage(const CMetWindow& message);
    void MeetAbout(const CMetWindow& about);
    void MeetOther(const CMetWindow& other);

    /// The add-in's line about the version that Outlook has loaded.
    std::wstring VersionLine() const;
    bool IsSeen(const std::string& fact) const { return m_timeline.IsSeen(fact); }
    void See(const std::string& fact, bool isSeen = true) { m_timeline.See(fact, isSeen); }
    /// Prints what the user does.
    void User(const std::wstring& text);
    /// Presses a button, whose text is printed.
    void Press(HWND window, int id);
    /// Takes the next picture.
    void Picture(HWND window, const std::string& name, bool isWantedNow = false);
    bool IsForPerson() const { return m_settings.play == L"show"; }
    /// Whether the published version is to be installed.
    bool IsUpdate() const
    {
        return !IsForPerson() && m_settings.outcome == L"offer" && m_settings.answer == L"install";
    }
    /// The facts about a check have the name of its phase.
    std::string InPhase(const char* fact) const { return m_phase + "-" + fact; }

    /// "start" for Outlook's start, before that "changed" for one whose installer is refused, "restart" for
    /// the one after the update, and "request" for the check that the user asks for in the last of them.
    std::string m_phase;
    /// The version that Outlook has loaded.
    std::wstring m_version;
    HWND m_about = nullptr;
    int m_pictures = 0;
};

} // namespace orva::demo
