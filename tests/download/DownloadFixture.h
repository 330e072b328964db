// A whole download without a network, and a user who acts on its dialog at a chosen moment.
#pragma once

#include "download/CallGates.h"
#include "download/FakeSystem.h"
#include "download/FakeWinInet.h"
#include "fixture/ProductFixture.h"
#include "harness/TempFolder.h"

#include <gtest/gtest.h>

#include <functional>
#include <list>
#include <optional>
#include <string>
#include <vector>

namespace orva::test
{

/// What happens to a download's dialog.
enum class UserEvent
{
    None,
    /// The Cancel button is pressed.
    Cancel,
    Escape,
    /// WM_CLOSE, as the close box and Alt+F4 send it.
    Close,
    /// The dialog's window is destroyed under it.
    Destroy,
};

/// For the names of tests.
std::string NameOf(UserEvent event);
std::string NameOf(CallStage stage);

/// The name of a test by its parameter's Name().
struct OrderName
{
    template <typename Info> std::string operator()(const Info& test) const { return test.param.Name(); }
};

/// What can be seen of the dialog.
struct SeenDownload
{
    std::wstring caption;
    std::wstring status;
    std::wstring time;
    std::wstring rate;
    bool isCancelEnabled = false;
};

/// The status line.
inline constexpr wchar_t kStarted[] = L"Download started";
inline constexpr wchar_t kCanceled[] = L"Download canceled";

/// The installer, in the parts that come by a read each.
extern const std::string kFirstPart;
extern const std::string kSecondPart;
extern const std::string kWholeFile;

/// The worker's last call, its message for the dialog.
extern const CallId kMessage;

using CNames = std::vector<std::string>;

/// Stands for the host's window. It belongs to the thread that made it, and runs functions there.
class CHostWindow
{
public:
    CHostWindow();
    ~CHostWindow();
    CHostWindow(const CHostWindow&) = delete;
    CHostWindow& operator=(const CHostWindow&) = delete;

    HWND Handle() const { return m_window; }
    /// Runs `work` on the window's thread as soon as that takes messages. Callable from any thread.
    void Post(std::function<void()> work);
    /// The same, and returns when it is done: with whatever had been posted before.
    void Run(const std::function<void()>& work);

private:
    HWND m_window;
    std::list<std::function<void()>> m_posted;
};

/// Runs StartDownloadDialog on the test's thread, in English, with a temporary folder of its own, and asserts
/// afterwards what holds for every download: the worker has ended, no handle is open, the owner is enabled.
class CFakeDownloadTest : public testing::Test
{
protected:
    /// The server has the whole installer.
    CFakeDownloadTest();
    ~CFakeDownloadTest() override;

    /// Downloads; `user` runs on a second thread, and what it holds must be released by it. Afterwards all
    /// gates are open.
    void Download(const std::function<void()>& user = [] {});

    /// For the user's thread: the dialog's window, once it is to be seen.
    HWND Dialog();
    /// For the user's thread: does it and returns when the dialog has dealt with it; of a destruction, when
    /// the dialog waits for its worker. `first` runs on the dialog's thread immediately before.
    void Act(
        UserEvent event, const std::function<void()>& first = [] {});
    /// For the user's thread: does it without waiting for anything.
    void PostEvent(UserEvent event);
    /// For any thread.
    SeenDownload Look();

    /// The file that is left under the temporary folder; absent if there is none.
    std::optional<std::string> FileLeft() const;
    /// The record of these functions, with "FOLDER" for the folder of the download.
    CNames Lines(const CNames& functions) const;

    /// For the user's thread: waits until the worker stands at its last call, which is to be held.
    void ExpectWorkerComesToItsEnd();

    /// The names of the handles in the order in which they were closed.
    void ExpectClosed(const CNames& handles) const;
    /// The message boxes, or the start of the installer.
    void ExpectShown(const CNames& lines) const;
    static CNames Installer();
    static CNames Cancellation();
    static CNames ErrorAndCancellation();

    COfficeLanguage m_language{1033};
    CPrivateTemp m_temp;
    CHostWindow m_owner;
    CCallGates m_gates;
    CFakeWinInet m_winInet{m_gates};
    CFakeSystem m_system{m_gates, m_winInet, m_owner.Handle()};
    /// What was to be seen in the dialog's last second; absent if there was none.
    std::optional<SeenDownload> m_last;
    std::wstring m_url = L"http://downloads.example/outlook/setup.exe";
};

} // namespace orva::test
