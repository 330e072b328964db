// A user who presses the same button in every dialog.
#pragma once

#include <atomic>
#include <thread>

namespace orva::test
{

/// Presses the button with this id in every dialog of the process, on a thread of its own.
class CPersistentUser
{
public:
    explicit CPersistentUser(int button) : m_thread([this, button] { Press(button); }) {}
    ~CPersistentUser() { Leave(); }
    CPersistentUser(const CPersistentUser&) = delete;
    CPersistentUser& operator=(const CPersistentUser&) = delete;

    /// Ends the thread and returns how often it has pressed the button. Before that the count may lag behind
    /// the dialogs.
    int Leave();

private:
    void Press(int button);

    std::atomic<bool> m_stop = false;
    int m_pressed = 0;
    std::thread m_thread;
};

} // namespace orva::test
