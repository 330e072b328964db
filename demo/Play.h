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
    CPlay(const CSettings& settings, CTimeline& timeline);

    /// Plays it. Whether everything that was asked for was seen.
    bool Run();

private:
    void Publish();
    void PlayStart();
    void PlayRequest();
    void RequestInFileView();
    void RequestInAbout();
    void PlayEnd();
    void PlayForPerson();
    void TellEnd();

    void Meet(const CMetWindow& window) override;
    void MeetOffer(const CMetWindow& offer);
    void MeetDownload(const CMetWindow& download);
    void CancelDownload(HWND dialog);
    void MeetInstaller(const CMetWindow& installer);
    void MeetMessage(const CMetWindow& message);
    void MeetAbout(const CMetWindow& about);

    void OnTrace(const std::string& line) override;
    void OnRequest(const std::string& line) override;
    void ExamineDownload();
    void ExamineLog();

    bool IsSeen(const std::string& fact) const { return m_timeline.IsSeen(fact); }
    void See(const std::string& fact) { m_timeline.See(fact); }
    /// Prints what the user does.
    void User(const std::wstring& text);
    /// Presses a button, whose text is printed.
    void Press(HWND window, int id);
    /// The file for the next picture, with its number.
    std::wstring NextPicture(const std::string& name);
    void Picture(HWND window, const std::string& name) { m_camera.Take(window, NextPicture(name)); }

    /// "start" for the check at Outlook's start, "request" for the one that the user asks for.
    std::string m_phase = "start";
    HWND m_about = nullptr;
    int m_pictures = 0;
};

} // namespace orva::demo
