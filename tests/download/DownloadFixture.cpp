#include "download/DownloadFixture.h"

#include "fixture/UserTexts.h"
#include "harness/Files.h"
#include "harness/Text.h"
#include "harness/WindowDriver.h"
#include "ui/StartDownloadDialog.h"

#include <afxwin.h>

#include <gmock/gmock.h>

#include <chrono>
#include <thread>

namespace orva::test
{
namespace
{

constexpr UINT kRun = WM_APP + 100;

LRESULT CALLBACK HostProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == kRun)
    {
        (*reinterpret_cast<const std::function<void()>*>(lParam))();
        return 0;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

// Tells when a window gets WM_DESTROY. One window at a time.
class CDestructionWatch
{
public:
    // On the window's thread.
    explicit CDestructionWatch(HWND window) : m_begun(MakeEvent())
    {
        s_begun = m_begun.get();
        s_original = reinterpret_cast<WNDPROC>(
            SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&Procedure)));
    }

    bool Wait() const { return WaitForSingleObject(m_begun.get(), kPatience) == WAIT_OBJECT_0; }

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
    {
        if (message == WM_DESTROY)
        {
            SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(s_original));
            SetEvent(s_begun);
        }
        return CallWindowProcW(s_original, window, message, wParam, lParam);
    }

    static HANDLE s_begun;
    static WNDPROC s_original;
    UniqueHandle m_begun;
};

HANDLE CDestructionWatch::s_begun = nullptr;
WNDPROC CDestructionWatch::s_original = nullptr;

} // namespace

const std::string kFirstPart(1024, 'a');
const std::string kSecondPart(500, 'b');
const std::string kWholeFile = kFirstPart + kSecondPart;
const CallId kMessage{"PostMessageW", 1};

std::string NameOf(UserEvent event)
{
    constexpr const char* kNames[] = {"Nothing", "Cancel", "Escape", "Close", "Destroy"};
    return kNames[static_cast<int>(event)];
}

std::string NameOf(CallStage stage)
{
    constexpr const char* kNames[] = {"Before", "During", "After"};
    return kNames[static_cast<int>(stage)];
}

CHostWindow::CHostWindow()
    : m_window(CreateWindowExW(0, L"STATIC", L"Host", WS_OVERLAPPEDWINDOW, 0, 0, 100, 100, nullptr, nullptr,
                               GetModuleHandleW(nullptr), nullptr))
{
    SetWindowLongPtrW(m_window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&HostProcedure));
}

CHostWindow::~CHostWindow()
{
    DestroyWindow(m_window);
}

void CHostWindow::Post(std::function<void()> work)
{
    m_posted.push_back(std::move(work));
    PostMessageW(m_window, kRun, 0, reinterpret_cast<LPARAM>(&m_posted.back()));
}

void CHostWindow::Run(const std::function<void()>& work)
{
    const UniqueHandle done = MakeEvent();
    Post([&] {
        work();
        SetEvent(done.get());
    });
    EXPECT_EQ(WaitForSingleObject(done.get(), kPatience), WAIT_OBJECT_0) << "the dialog's thread hangs";
}

CFakeDownloadTest::CFakeDownloadTest()
{
    m_winInet.headers = {
        {HTTP_QUERY_STATUS_CODE, L"200"},
        {HTTP_QUERY_CONTENT_LENGTH, std::to_wstring(kWholeFile.size())},
    };
    m_winInet.body = {kFirstPart, kSecondPart};
    m_system.onSleep = [this] { m_last = Look(); };
}

CFakeDownloadTest::~CFakeDownloadTest() = default;

void CFakeDownloadTest::Download(const std::function<void()>& user)
{
    std::thread thread([&] {
        user();
        m_gates.ReleaseAll();
    });
    m_system.countsThreads = true;
    {
        AFX_MANAGE_STATE(AfxGetStaticModuleState());
        StartDownloadDialog(CString(m_url.c_str()), m_owner.Handle());
    }
    EXPECT_TRUE(m_winInet.Caller() == 0 || m_winInet.HasCallerEnded()) << "the worker outlives its dialog";
    thread.join();
    EXPECT_EQ(m_winInet.OpenHandles(), std::vector<std::string>{});
    EXPECT_TRUE(IsWindowEnabled(m_owner.Handle()));
}

HWND CFakeDownloadTest::Dialog()
{
    return WaitForWindow({.className = kDialogClass, .childId = kProgressBar});
}

void CFakeDownloadTest::Act(UserEvent event, const std::function<void()>& first)
{
    const HWND dialog = Dialog();
    ASSERT_NE(dialog, nullptr);
    EXPECT_FALSE(IsWindowEnabled(m_owner.Handle()));
    switch (event)
    {
    case UserEvent::None:
        break;
    case UserEvent::Cancel:
        m_owner.Run([&] {
            first();
            SendMessageW(GetDlgItem(dialog, IDCANCEL), BM_CLICK, 0, 0);
        });
        break;
    case UserEvent::Escape:
        m_owner.Run([&] {
            first();
            PostKey(dialog, VK_ESCAPE);
        });
        // What is posted later is dispatched later.
        m_owner.Run([] {});
        break;
    case UserEvent::Close:
        m_owner.Run([&] {
            first();
            SendMessageW(dialog, WM_CLOSE, 0, 0);
        });
        break;
    case UserEvent::Destroy:
        std::optional<CDestructionWatch> watch;
        m_owner.Run([&] { watch.emplace(dialog); });
        m_owner.Post([=] {
            first();
            DestroyWindow(dialog);
        });
        EXPECT_TRUE(watch->Wait());
        // Taken by a thread that handles WM_DESTROY only when it waits, which it does for its worker.
        SendMessageW(dialog, WM_NULL, 0, 0);
        break;
    }
}

void CFakeDownloadTest::PostEvent(UserEvent event)
{
    const HWND dialog = Dialog();
    switch (event)
    {
    case UserEvent::None:
        break;
    case UserEvent::Cancel:
        PostMessageW(GetDlgItem(dialog, IDCANCEL), BM_CLICK, 0, 0);
        break;
    case UserEvent::Escape:
        // On the dialog's thread: looking up a key connects a thread to the X server, and Wine 8 now and then
        // stands still when several threads are.
        m_owner.Post([=] { PostKey(dialog, VK_ESCAPE); });
        break;
    case UserEvent::Close:
        PostMessageW(dialog, WM_CLOSE, 0, 0);
        break;
    case UserEvent::Destroy:
        m_owner.Post([=] { DestroyWindow(dialog); });
        break;
    }
}

SeenDownload CFakeDownloadTest::Look()
{
    const HWND dialog = FindTopLevelWindow({.className = kDialogClass, .childId = kProgressBar});
    return {WindowText(dialog), ChildText(dialog, kStatusText), ChildText(dialog, kTimeText),
            ChildText(dialog, kRateText), IsWindowEnabled(ChildById(dialog, IDCANCEL)) != FALSE};
}

std::optional<std::string> CFakeDownloadTest::FileLeft() const
{
    for (const std::wstring& path : ListFolder(m_temp.Path()))
    {
        if (const auto bytes = ReadFileBytes(m_temp.Path() + L"\\" + path))
        {
            return bytes;
        }
    }
    return std::nullopt;
}

CNames CFakeDownloadTest::Lines(const CNames& functions) const
{
    const std::string temp = Utf8(m_temp.Path()) + "\\osc";
    constexpr size_t kRandom = 6;
    CNames lines = m_gates.Lines(functions);
    for (std::string& line : lines)
    {
        if (const size_t found = line.find(temp); found != std::string::npos)
        {
            line.replace(found, temp.size() + kRandom, "FOLDER");
        }
    }
    return lines;
}

void CFakeDownloadTest::ExpectWorkerComesToItsEnd()
{
    const auto start = std::chrono::steady_clock::now();
    EXPECT_TRUE(m_gates.WaitUntilHeld(kMessage, CallStage::Before));
    const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
    RecordProperty("milliseconds_to_the_workers_end", std::to_string(time.count()));
}

void CFakeDownloadTest::ExpectClosed(const CNames& handles) const
{
    CNames lines;
    for (const std::string& handle : handles)
    {
        lines.push_back("InternetCloseHandle(" + handle + (handle.find(')') == std::string::npos ? ")" : ""));
    }
    EXPECT_THAT(Lines({"InternetCloseHandle"}), testing::ElementsAreArray(lines));
}

void CFakeDownloadTest::ExpectShown(const CNames& lines) const
{
    EXPECT_THAT(Lines({"MessageBoxW", "ShellExecuteExW"}), testing::ElementsAreArray(lines));
}

CNames CFakeDownloadTest::Installer()
{
    return {R"(ShellExecuteExW(112, 0x0, null, "runas", "FOLDER\setup.exe", "", null, 1))"};
}

CNames CFakeDownloadTest::Cancellation()
{
    return {"MessageBoxW(owner, \"" + Utf8(kUpdateCanceled) + "\", \"ORVA Connector\", 0x0)"};
}

CNames CFakeDownloadTest::ErrorAndCancellation()
{
    return {"MessageBoxW(dialog, \"" + Utf8(kConnectError) + "\", \"ORVA Connector\", 0x0)",
            Cancellation()[0]};
}

} // namespace orva::test
