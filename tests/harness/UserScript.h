// Plays the user on a second thread: answers message boxes and dialogs in a stated order while the code under
// test runs modally.
#pragma once

#include "harness/SeenWindow.h"
#include "harness/WindowDriver.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace orva::test
{

/// Steps are added, then Start is called, then the code under test runs on the test's thread, then Finish;
/// after that, the same again with new steps if need be.
///
/// Only dialogs (class #32770) that come up after Start, in the given process, are looked at. A step that
/// gets another window than it expects, or none in time, is a failure: it is reported by Finish, and from
/// then on every dialog that comes up is closed so that the test ends instead of hanging.
class CUserScript
{
public:
    explicit CUserScript(DWORD process = GetCurrentProcessId());
    /// Finishes, if that has not been done.
    ~CUserScript();
    CUserScript(const CUserScript&) = delete;
    CUserScript& operator=(const CUserScript&) = delete;

    /// Expects a message box with this text and presses the button with this id.
    CUserScript& AnswerBox(std::wstring text, int buttonId = IDOK);
    /// Expects a dialog with this caption and runs `act` with it on the user's thread.
    CUserScript& OnDialog(std::wstring caption, std::function<void(HWND)> act);
    /// Expects a dialog that holds a control with this id and runs `act`.
    CUserScript& OnDialogWith(int childId, std::function<void(HWND)> act);
    /// Takes whatever dialog comes up and runs `act` with it: for a user who does not know what comes.
    CUserScript& OnAnyDialog(std::function<void(HWND)> act);
    /// Runs something between two windows, for instance a wait for another thread; false is a failure.
    CUserScript& Then(std::string what, std::function<bool()> act);
    /// How long each step waits for its window, in milliseconds.
    CUserScript& Patience(DWORD milliseconds);

    void Start();
    /// Starts with another process than the one given at construction. Its dialogs that are already there
    /// count as new.
    void StartFor(DWORD process);
    /// Ends the script, reports each failure as one of the test's, and returns what was seen. With
    /// `waitForSteps` the remaining steps are waited for first; without, a step that has not been taken by
    /// now is a failure. To be called on the test's thread.
    std::vector<CSeenWindow> Finish(bool waitForSteps = false);
    /// The same without reporting: the failures' texts.
    std::vector<std::string> FinishQuietly(bool waitForSteps = false);
    /// What has been seen up to now.
    std::vector<CSeenWindow> Seen() const;

private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace orva::test
