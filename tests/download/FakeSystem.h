// What the download asks of Windows besides WinINet, so far as a test has to hold it, fail it or see it.
#pragma once

#include "download/FakeWinInet.h"

#include <windows.h>

#include <functional>
#include <string>
#include <vector>

namespace orva::test
{

/// Stands between the program and some functions of Windows for its lifetime, by the same means and through
/// the same gates as CFakeWinInet. What is not named here goes on to Windows unseen, as does everything when
/// there is no object.
///
/// - On the thread that opened the WinINet session, WriteFile, CloseHandle of a file and PostMessageW are
///   passed on to Windows, even those that are scripted to fail; GetTickCount gives the times of `ticks`.
/// - On the thread that made this object, Sleep returns at once. _beginthreadex can be made to fail.
/// - MessageBoxW is answered with OK without being shown, unless `showsBoxes`. ShellExecuteExW does nothing.
class CFakeSystem
{
public:
    /// `owner`: the window that the record names so.
    CFakeSystem(CCallGates& gates, CFakeWinInet& winInet, HWND owner);
    ~CFakeSystem();
    CFakeSystem(const CFakeSystem&) = delete;
    CFakeSystem& operator=(const CFakeSystem&) = delete;

    /// The clock's milliseconds from one question to the next; the last one stays.
    std::vector<DWORD> ticks{1000};
    bool showsBoxes = false;
    /// Whether _beginthreadex is recorded: not as long as the test makes its own threads.
    bool countsThreads = false;
    /// Called instead of sleeping.
    std::function<void()> onSleep;

    struct Functions;

private:
    friend struct Functions;

    CCallGates& m_gates;
    CFakeWinInet& m_winInet;
    HWND m_owner;
    DWORD m_thread;
    size_t m_tick = 0;
};

} // namespace orva::test
