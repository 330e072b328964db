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

    /// Ends the user's work and says how often he has pressed the button. A dialog may end before the user
    /// has come back from pressing it, so the number is not known sooner.
    int Leave();

private:
    void Press(int button);

    std::atomic<bool> m_stop = false;
    int m_pressed = 0;
    std::thread m_thread;
};

} // namespace orva::test
