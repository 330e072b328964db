// The add-in loaded, used and unloaded many times in one process, and what the process still holds
// afterwards.
#include "addin/AddInFixture.h"
#include "harness/Compression.h"
#include "harness/Files.h"
#include "harness/GdiPlusCounter.h"
#include "harness/ImportHook.h"
#include "harness/Report.h"
#include "harness/Watchdog.h"
#include "long_run/KeptObjects.h"
#include "long_run/ModuleBlocks.h"
#include "long_run/ProcessFigures.h"

#include <shellapi.h>

#include <optional>

namespace orva::test
{
namespace
{

using Microsoft::WRL::ComPtr;

constexpr char kInstaller[] = "/setup.exe";
constexpr DISPID kClick = 1;
constexpr WORD kOfferTemplate = 9;
constexpr DWORD kThoroughDeadline = 12 * 60'000;
constexpr DWORD kShortDeadline = 120'000;

constexpr int kWarmUps = 3;
constexpr long long kHeapSlack = 64LL * 1024;
constexpr long long kPrivateSlack = 4LL * 1024;
// Heap bytes that the system's own libraries keep for each call. Measured under Wine: 0 for markup and
// pictures, some 150 a check, 250 an offer, 370 an About dialog, 520 a download, none of it allocated by
// the DLL.
constexpr long long kHeapPerCall = 512;

constexpr char kNewer[] =
    R"({"x64":{"majorVersion":9,"minorVersion":0,"buildNumber":0,)"
    R"("downloadLink":"http://files.test/setup.exe","description":{"default":"News."}}})";

INT_PTR CALLBACK BareDialog(HWND dialog, UINT message, WPARAM, LPARAM)
{
    if (message == WM_INITDIALOG)
    {
        EndDialog(dialog, IDOK);
    }
    return FALSE;
}

int g_installers = 0;

// Takes the place of the system's function and starts nothing.
BOOL WINAPI CountInstaller(SHELLEXECUTEINFOW*)
{
    ++g_installers;
    return TRUE;
}

// Publishes an update-information file during its lifetime, and leaves nothing in the process.
class CPublisher
{
public:
    explicit CPublisher(const std::string& text)
    {
        // Compressed, so that what inflating leaves is seen too.
        m_server.On(kUpdateInfoPath, CHttpReply(200, GzipBytes(text)).Header("Content-Encoding", "gzip"));
        m_server.On(kInstaller, CHttpReply(200, std::string(20'000, 'x')));
    }

private:
    CLoopbackServer m_server;
    CProxySetting m_proxy{m_server.Port()};
};

// What the repetitions of something have left in the process.
struct CRemains
{
    CProcessFigures growth;
    long long brushes = 0;
    long long fonts = 0;
    // Bytes that the DLL itself has allocated and not freed.
    long long ownBytes = 0;
};

class LongRunTest : public testing::Test
{
protected:
    LongRunTest() { SetTestDeadline(IsThorough() ? kThoroughDeadline : kShortDeadline); }

    ~LongRunTest() override { Unload(); }

    // Loads the DLL and makes and connects an object.
    void Load(const std::wstring& path)
    {
        m_module = std::make_unique<CAddInModule>(path);
        m_object = m_module->Create();
        Connect(ext_cm_AfterStartup);
    }

    // Loads it and watches what it takes from now on.
    void LoadAndWatch(const std::wstring& path = BuiltFile(kAddInModule))
    {
        Load(path);
        m_kept.emplace(Module());
        m_blocks.emplace(Module());
    }

    static HMODULE Module() { return GetModuleHandleW(kAddInModule); }

    void Connect(int mode)
    {
        EXPECT_EQ(ConnectAddIn(m_object.Get(), m_outlook.application.Get(), mode), S_OK);
        m_outlook.record.clear();
    }

    void Unload()
    {
        m_blocks.reset();
        m_kept.reset();
        m_object.Reset();
        if (m_module != nullptr)
        {
            EXPECT_EQ(m_module->CanUnloadNow(), S_OK);
            m_module.reset();
            EXPECT_FALSE(CAddInModule::IsLoaded());
        }
    }

    template <typename Interface> ComPtr<Interface> Query()
    {
        ComPtr<Interface> found;
        EXPECT_EQ(m_object.As(&found), S_OK);
        return found;
    }

    // Clicks the Backstage's button that often. Each time the user presses `button` in the offer, and watches
    // the download that may follow.
    void ClickUpdate(int count, int button)
    {
        CUserScript user;
        for (int i = 0; i < count; ++i)
        {
            user.OnDialogWith(button, [=](HWND offer) { EXPECT_TRUE(ClickButton(offer, button)); });
            if (button == kInstallButton)
            {
                user.OnDialogWith(kProgressBar, [](HWND) {});
            }
        }
        user.Start();
        for (int i = 0; i < count; ++i)
        {
            EXPECT_EQ(Query<IRibbonCallback>()->ButtonClicked(nullptr), S_OK);
        }
        user.Finish();
    }

    // Runs `part` with the number of repetitions, after a few to warm up.
    template <typename Part> CRemains Repeat(int count, Part part)
    {
        part(kWarmUps);
        if (m_kept)
        {
            m_kept->Discard();
        }
        CRemains left;
        const CProcessFigures before = CProcessFigures::Take();
        const long long ownBefore = m_blocks ? m_blocks->Bytes() : 0;
        part(count);
        left.growth = CProcessFigures::Take() - before;
        left.ownBytes = (m_blocks ? m_blocks->Bytes() : 0) - ownBefore;
        if (m_kept)
        {
            left.brushes = m_kept->Brushes();
            left.fonts = m_kept->Fonts();
        }
        return left;
    }

    // The pictures that Wine's dialogs leave: those of that many dialogs of the offer's template, without the
    // add-in's code. The add-in must have shown a dialog before, for the classes of the template's controls.
    long long CountPicturesOfBareDialogs(int count)
    {
        const CRemains bare = Repeat(count, [](int times) {
            for (int i = 0; i < times; ++i)
            {
                EXPECT_EQ(DialogBoxParamW(Module(), MAKEINTRESOURCEW(kOfferTemplate), nullptr, BareDialog, 0),
                          IDOK);
            }
        });
        EXPECT_LE(bare.growth.gdiObjects, count);
        return bare.growth.gdiObjects;
    }

    // Records what is left and asserts that it is nothing but the brushes and fonts that the add-in leaves on
    // purpose, and `pictures` of Wine's.
    static void ExpectNothingElseLeft(int count, const CRemains& left, long long heapPerCall = kHeapPerCall,
                                      long long pictures = 0)
    {
        const CProcessFigures& growth = left.growth;
        RecordProperty("repetitions", count);
        RecordProperty("handles_left", static_cast<int>(growth.handles));
        RecordProperty("threads_left", static_cast<int>(growth.threads));
        RecordProperty("user_objects_left", static_cast<int>(growth.userObjects));
        RecordProperty("gdi_objects_left", static_cast<int>(growth.gdiObjects));
        RecordProperty("brushes_left_on_purpose", static_cast<int>(left.brushes));
        RecordProperty("fonts_left_on_purpose", static_cast<int>(left.fonts));
        RecordProperty("pictures_left_by_wine", static_cast<int>(pictures));
        RecordProperty("heap_bytes_left_each_time", static_cast<int>(growth.heapBytes / count));
        RecordProperty("bytes_left_by_the_dll_itself", static_cast<int>(left.ownBytes));
        RecordProperty("private_kib_left", static_cast<int>(growth.privateKib));
        EXPECT_LE(growth.handles, kSlack);
        EXPECT_LE(growth.threads, kSlack);
        EXPECT_EQ(growth.userObjects, 0);
        EXPECT_EQ(growth.gdiObjects, left.brushes + left.fonts + pictures);
        EXPECT_EQ(left.ownBytes, 0);
        EXPECT_LE(growth.heapBytes, count * heapPerCall + kHeapSlack);
        EXPECT_LE(growth.privateKib, count * heapPerCall / 1024 + kPrivateSlack);
    }

    CHostWindow m_host;
    CFakeOutlook m_outlook{kOutlook2010};
    COfficeLanguageSetting m_language;
    std::unique_ptr<CAddInModule> m_module;
    ComPtr<IUnknown> m_object;
    std::optional<CKeptObjects> m_kept;
    std::optional<CModuleBlocks> m_blocks;
};

TEST_F(LongRunTest, LoadingConnectingAndUnloadingLeavesNothing)
{
    // Enough to notice half a kilobyte that is left each time.
    const int count = Repetitions(150, 1000);
    const CRemains left = Repeat(count, [this](int times) {
        for (int i = 0; i < times && !HasFailure(); ++i)
        {
            Load(BuiltFile(kAddInModule));
            Unload();
        }
    });
    ExpectNothingElseLeft(count, left, 0);
}

TEST_F(LongRunTest, UpdateChecksLeaveNothing)
{
    LoadAndWatch();
    const int count = Repetitions(20, 1000);
    const CRemains left = Repeat(count, [this](int times) {
        const CPublisher publisher(kSameVersion);
        for (int i = 0; i < times; ++i)
        {
            Connect(ext_cm_Startup);
        }
    });
    ExpectNothingElseLeft(count, left);
}

TEST_F(LongRunTest, MarkupAndPicturesLeaveNothing)
{
    LoadAndWatch();
    const int count = Repetitions(20, 1000);
    const ComPtr<CFakeObject> control = new CFakeObject(m_outlook.record, "control", {});
    const CRemains left = Repeat(count, [&](int times) {
        for (int i = 0; i < times; ++i)
        {
            _bstr_t markup;
            ASSERT_EQ(Query<IRibbonExtensibility>()->GetCustomUI(nullptr, markup.GetAddress()), S_OK);
            ASSERT_GT(markup.length(), 0u);
            ComPtr<IPictureDisp> logo;
            ComPtr<IPictureDisp> icon;
            ASSERT_EQ(Query<IRibbonCallback>()->GetImageLogo(control.Get(), &logo), S_OK);
            ASSERT_EQ(Query<IRibbonCallback>()->GetImageIcon(control.Get(), &icon), S_OK);
            ASSERT_TRUE(logo && icon);
        }
    });
    ExpectNothingElseLeft(count, left);
}

TEST_F(LongRunTest, APictureThatIsMissingLeavesOneStartOfGdiPlusEachTimeAndNothingElse)
{
    // The name of the pictures' resource type, after its length.
    const CAddInCopy copy({{std::string("\x03\0P\0N\0G\0", 8), std::string("\x03\0X\0N\0G\0", 8)}});
    LoadAndWatch(copy.Path());
    const int count = Repetitions(20, 1000);
    const ComPtr<CFakeObject> control = new CFakeObject(m_outlook.record, "control", {});
    std::optional<CGdiPlusCounter> counter(Module());
    const CRemains left = Repeat(count, [&](int times) {
        for (int i = 0; i < times; ++i)
        {
            ComPtr<IPictureDisp> picture;
            ASSERT_EQ(Query<IRibbonCallback>()->GetImageLogo(control.Get(), &picture), S_OK);
            ASSERT_EQ(picture.Get(), nullptr);
        }
    });
    EXPECT_EQ(counter->starts - counter->ends, kWarmUps + count);
    ExpectNothingElseLeft(count, left);
    counter.reset();
    // The copy cannot be deleted while it is loaded.
    Unload();
}

TEST_F(LongRunTest, OffersAnsweredLaterLeaveOnlyTheirBrushes)
{
    LoadAndWatch();
    const int count = Repetitions(6, 300);
    const CRemains left = Repeat(count, [this](int times) {
        const CPublisher publisher(kNewer);
        ClickUpdate(times, kLaterButton);
    });
    ExpectNothingElseLeft(count, left, kHeapPerCall, CountPicturesOfBareDialogs(count));
}

TEST_F(LongRunTest, AboutDialogsLeaveOnlyTheirBrushesAndOneFontEach)
{
    LoadAndWatch();
    const int count = Repetitions(6, 300);
    const CRemains left = Repeat(count, [this](int times) {
        CUserScript user;
        for (int i = 0; i < times; ++i)
        {
            user.OnDialogWith(kAboutClose, [](HWND about) { EXPECT_TRUE(ClickButton(about, kAboutClose)); });
        }
        user.Start();
        for (int i = 0; i < times; ++i)
        {
            DISPPARAMS none{};
            Query<IDispatch>()->Invoke(kClick, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &none, nullptr,
                                       nullptr, nullptr);
        }
        user.Finish();
    });
    ExpectNothingElseLeft(count, left, kHeapPerCall, CountPicturesOfBareDialogs(count));
    EXPECT_EQ(left.fonts, count);
}

TEST_F(LongRunTest, DownloadsLeaveOnlyTheBrushesOfTheirOffers)
{
    LoadAndWatch();
    const CImportHook execute(Module(), "shell32.dll", "ShellExecuteExW", &CountInstaller);
    g_installers = 0;
    const int count = Repetitions(6, 300);
    const CRemains left = Repeat(count, [this](int times) {
        const CPrivateTemp temp;
        const CPublisher publisher(kNewer);
        ClickUpdate(times, kInstallButton);
    });
    EXPECT_EQ(g_installers, kWarmUps + count);
    ExpectNothingElseLeft(count, left, kHeapPerCall, CountPicturesOfBareDialogs(count));
}

} // namespace
} // namespace orva::test
