// A download dialog that reports the messages it gets, and an owner window that can destroy it.
#pragma once

#include "ui/UpdateDownloadDlg.h"

#include <functional>

namespace orva::test
{

/// The product's dialog, unchanged but for the two calls around each message. Both come on its own thread.
class CObservedDownload : public CUpdateDownloadDlg
{
public:
    std::function<void(HWND dialog, UINT message, WPARAM wParam)> before;
    std::function<void(HWND dialog, UINT message, WPARAM wParam)> after;

protected:
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;
};

/// Whether this message is what a click on the dialog's Cancel button, or Escape, leads to.
bool IsCancelCommand(UINT message, WPARAM wParam);

/// Stands for the host's window.
class CDownloadOwner
{
public:
    CDownloadOwner();
    ~CDownloadOwner();
    CDownloadOwner(const CDownloadOwner&) = delete;
    CDownloadOwner& operator=(const CDownloadOwner&) = delete;

    HWND Handle() const { return m_window; }
    /// Makes the thread of `owner` destroy this dialog of its own. Callable from any thread.
    static void DestroyDialog(HWND owner, HWND dialog);
    /// Whether it is being destroyed for that reason.
    static bool IsTakenDown(HWND dialog);

private:
    HWND m_window;
};

/// The size of a file in bytes; -1 if there is none.
long long FileSize(const wchar_t* path);

} // namespace orva::test
