// Plays the user on a second thread: answers message boxes and dialogs in a given order while the code under
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

/// Add steps, call Start, run the code under test on the test's thread, then call Finish. After that the
/// object can be used again with new steps.
///
/// Only dialogs (class #32770) of the given process that come up after Start are handled. A step that gets
/// another window than it expects, or none in time, is a failure: Finish reports it, and from then on every
/// dialog that comes up is closed, so that the test does not hang.
class CUserScript
{
public:
    explicit CUserScript(DWORD process = GetCurrentProcessId());
    /// Calls Finish if that has not been done.
    ~CUserScript();
    CUserScript(const CUserScript&) = delete;
    CUserScript& operator=(const CUserScript&) = delete;

    /// Expects a message box with this text and presses the button with this id.
    CUserScript& AnswerBox(std::wstring text, int buttonId = IDOK);
    /// Expects a dialog with this caption and calls `act` with it on the user's thread.
    CUserScript& OnDialog(std::wstring caption, std::function<void(HWND)> act);
    /// Expects a dialog that has a control with this id and calls `act`.
    CUserScript& OnDialogWith(int childId, std::function<void(HWND)> act);
    /// Expects any dialog and calls `act` with it.
    CUserScript& OnAnyDialog(std::function<void(HWND)> act);
    /// Calls `act` between two windows, for instance to wait for another thread; false is a failure.
    CUserScript& Then(std::string what, std::function<bool()> act);

    void Start();
    /// Starts with another process than the one given at construction. Dialogs that it already shows count as
    /// new.
    void StartFor(DWORD process);
    /// Ends the script, adds each failure to the test, and returns the dialogs that were seen. A step that is
    /// not done is a failure. Call it on the test's thread.
    std::vector<CSeenWindow> Finish();
    /// Like Finish, but returns the failures' texts instead of adding them to the test.
    std::vector<std::string> FinishQuietly();
    /// The dialogs that have been seen so far.
    std::vector<CSeenWindow> Seen() const;

private:
    class Impl;

    CUserScript& Expect(std::string what, std::function<bool(const CSeenWindow&)> matches,
                        std::function<void(HWND)> act);

    std::unique_ptr<Impl> m_impl;
};

} // namespace orva::test
