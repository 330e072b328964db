// The play: Outlook starts with the add-in, its user answers what comes up, asks for a check of his own and
// closes it.
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
    void PlayStart();
    void PlayRequest();
    void RequestInFileView();
    void RequestInAbout();
    void PlayEnd();

    /// Notes everything that must be seen.
    void AskForFacts();
    /// Notes what must follow from the answer to an offer, if there is one.
    void AskForAnswer(bool isOffered);
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

    bool IsSeen(const std::string& fact) const { return m_timeline.IsSeen(fact); }
    void See(const std::string& fact, bool isSeen = true) { m_timeline.See(fact, isSeen); }
    /// Prints what the user does.
    void User(const std::wstring& text);
    /// Presses a button, whose text is printed.
    void Press(HWND window, int id);
    /// Takes the next picture.
    void Picture(HWND window, const std::string& name, bool isWantedNow = false);
    bool IsForPerson() const { return m_settings.play == L"show"; }

    /// "start" for the check at Outlook's start, "request" for the one that the user asks for.
    std::string m_phase = "start";
    HWND m_about = nullptr;
    int m_pictures = 0;
};

} // namespace orva::demo
