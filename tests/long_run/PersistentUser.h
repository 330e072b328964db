// A user who presses the same button whenever it comes up.
#pragma once

#include <atomic>
#include <thread>

namespace orva::test
{

/// Presses this button in every dialog of the process that has it, on a thread of its own.
class CPersistentUser
{
public:
    explicit CPersistentUser(int button) : m_thread([this, button] { Press(button); }) {}
    ~CPersistentUser() { Leave(); }
    CPersistentUser(const CPersistentUser&) = delete;
    CPersistentUser& operator=(const CPersistentUser&) = delete;

    /// Ends the thread and returns how often the button was pressed. Not known sooner: a dialog may end
    /// before the thread has counted its press.
    int Leave();

private:
    void Press(int button);

    std::atomic<bool> m_stop = false;
    int m_pressed = 0;
    std::thread m_thread;
};

} // namespace orva::test
