// The add-in loaded, used and unloaded many times in one process, and what the process still holds
// afterwards.
#include "addin/AddInFixture.h"
#include "harness/Report.h"
#include "harness/Watchdog.h"
#include "long_run/InstallerCounter.h"
#include "long_run/KeptObjects.h"
#include "long_run/ModuleBlocks.h"
#include "long_run/PersistentUser.h"
#include "long_run/ProcessFigures.h"

#include <cstdio>
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

INT_PTR CALLBACK BareDialog(HWND dialog, UINT message, WPARAM, LPARAM)
{
    if (message == WM_INITDIALOG)
    {
        EndDialog(dialog, IDOK);
    }
    return FALSE;
}

class LongRunTest : public testing::Test
{
protected:
    LongRunTest() { SetTestDeadline(IsThorough() ? kThoroughDeadline : kShortDeadline); }

    // Loads the DLL and makes and connects an object.
    void Load(int mode = ext_cm_AfterStartup)
    {
        m_module = std::make_unique<CAddInModule>();
        m_object = m_module->Create();
        Connect(mode);
    }

    void Connect(int mode)
    {
        EXPECT_EQ(ConnectAddIn(m_object.Get(), m_outlook.application.Get(), mode), S_OK);
        m_outlook.record.clear();
    }

    void Unload()
    {
        m_object.Reset();
        ASSERT_EQ(m_module->CanUnloadNow(), S_OK);
        m_module.reset();
        ASSERT_FALSE(CAddInModule::IsLoaded());
    }

    void ButtonClicked()
    {
        ComPtr<IRibbonCallback> callback;
        ASSERT_EQ(m_object.As(&callback), S_OK);
        EXPECT_EQ(callback->ButtonClicked(nullptr), S_OK);
    }

    // What a part of the test has left in the process.
    struct Remains
    {
        CProcessFigures before;
        CProcessFigures after;
        long long brushes = 0;
        long long brushesMade = 0;
        long long fonts = 0;
        // Bytes that the DLL itself has allocated and not freed, once m_blocks is set.
        long long ownBytes = 0;
        CProcessFigures Growth() const { return after - before; }
    };

    // Runs `part` with the number of repetitions, after a few to warm up.
    template <typename Part> Remains Repeat(const std::string& name, int count, Part part)
    {
        NoteTestPart(name);
        part(kWarmUps);
        if (m_kept)
        {
            m_kept->Discard();
        }
        Remains left;
        left.before = CProcessFigures::Take();
        const long long ownBefore = m_blocks ? m_blocks->Bytes() : 0;
        const ULONGLONG start = GetTickCount64();
        part(count);
        const ULONGLONG end = GetTickCount64();
        left.after = CProcessFigures::Take();
        left.ownBytes = (m_blocks ? m_blocks->Bytes() : 0) - ownBefore;
        if (m_kept)
        {
            left.brushes = m_kept->Brushes();
            left.brushesMade = m_kept->BrushesMade();
            left.fonts = m_kept->Fonts();
            m_kept->Discard();
        }
        const CProcessFigures growth = left.Growth();
        std::printf("%s: %d times in %llu ms; handles %+lld, GDI %+lld, USER %+lld, private KiB %+lld, "
                    "heap bytes %+lld, the DLL's own %+lld, threads %+lld; %lld of %lld brushes and %lld "
                    "fonts kept\n",
                    name.c_str(), count, end - start, growth.handles, growth.gdiObjects, growth.userObjects,
                    growth.privateKib, growth.heapBytes, left.ownBytes, growth.threads, left.brushes,
                    left.brushesMade, left.fonts);
        std::fflush(stdout);
        return left;
    }

    // Checks what is left and reports it. `bitmaps` is how many bitmaps Wine's dialogs have left.
    static void Check(const std::string& name, int count, const Remains& left, long long heapPerCall,
                      long long bitmaps = 0)
    {
        const CProcessFigures growth = left.Growth();
        EXPECT_LE(growth.handles, kSlack) << name;
        EXPECT_LE(growth.threads, kSlack) << name;
        EXPECT_EQ(growth.userObjects, 0) << name;
        EXPECT_EQ(growth.gdiObjects, left.brushes + left.fonts + bitmaps) << name;
        EXPECT_EQ(left.ownBytes, 0) << name;
        EXPECT_LE(growth.heapBytes, count * heapPerCall + kHeapSlack) << name;
        EXPECT_LE(growth.privateKib, count * heapPerCall / 1024 + kPrivateSlack) << name;

        std::string remains =
            left.brushes == 0 ? "nothing" : std::to_string(left.brushes) + " brushes, kept on purpose";
        if (left.fonts != 0)
        {
            remains += "; " + std::to_string(left.fonts) + " bold fonts, kept on purpose";
        }
        if (left.brushesMade != left.brushes)
        {
            remains += "; another " + std::to_string(left.brushesMade - left.brushes) +
                       " brushes were deleted by Wine's controls";
        }
        if (bitmaps != 0)
        {
            remains += "; " + std::to_string(bitmaps) + " pictures of Wine's, which a bare dialog leaves too";
        }
        if (growth.heapBytes > kHeapSlack)
        {
            remains += "; " + std::to_string(growth.heapBytes / count) +
                       " bytes of heap each time, none of it taken by the DLL";
        }
        AddReportRow("long-run",
                     {name, std::to_string(count), FromTo(left.before.handles, left.after.handles),
                      FromTo(left.before.gdiObjects, left.after.gdiObjects),
                      FromTo(left.before.userObjects, left.after.userObjects),
                      FromTo(left.before.privateKib, left.after.privateKib),
                      FromTo(left.before.heapBytes / 1024, left.after.heapBytes / 1024),
                      FromTo(left.before.threads, left.after.threads), remains});
    }

    static constexpr int kWarmUps = 3;
    static constexpr long long kHeapSlack = 64LL * 1024;
    static constexpr long long kPrivateSlack = 4LL * 1024;
    // Heap bytes that the system's own libraries keep for each call. Measured under Wine: 0 for markup and
    // pictures, some 150 a check, 250 an offer, 370 an About dialog, 520 a download, none of it allocated by
    // the DLL.
    static constexpr long long kHeapPerCall = 512;

    CHostWindow m_host;
    CFakeOutlook m_outlook{kOutlook2010};
    COfficeLanguageSetting m_language;
    std::unique_ptr<CAddInModule> m_module;
    ComPtr<IUnknown> m_object;
    std::optional<CKeptObjects> m_kept;
    std::optional<CModuleBlocks> m_blocks;
};

// Publishes an update-information file during its lifetime, and leaves nothing in the process.
class CPublisher
{
public:
    explicit CPublisher(const std::string& text)
    {
        m_server.On(kUpdateInfoPath, CHttpReply(200, text));
        m_server.On(kInstaller, CHttpReply(200, std::string(20'000, 'x')));
    }

private:
    CLoopbackServer m_server;
    CProxySetting m_proxy{m_server.Port()};
};

constexpr char kNewer[] =
    R"({"x64":{"majorVersion":9,"minorVersion":0,"buildNumber":0,)"
    R"("downloadLink":"http://files.test/setup.exe","description":{"default":"News."}}})";

TEST_F(LongRunTest, LeavesOnlyItsBrushesAndFonts)
{
    Load();
    Unload();

    // Enough to notice half a kilobyte that is left each time.
    const int loads = Repetitions(150, 1000);
    const Remains loading = Repeat("loading", loads, [this](int count) {
        for (int i = 0; i < count; ++i)
        {
            Load();
            Unload();
        }
    });
    Check("01 DLL loaded, connected, unloaded", loads, loading, 0);

    Load();
    const HMODULE module = GetModuleHandleW(kAddInModule);
    m_kept.emplace(module);
    m_blocks.emplace(module);
    const CInstallerCounter installers(module);

    const int checks = Repetitions(20, 1000);
    const Remains checking = Repeat("checks", checks, [this](int count) {
        const CPublisher publisher(kSameVersion);
        for (int i = 0; i < count; ++i)
        {
            Connect(ext_cm_Startup);
        }
    });
    Check("02 update checks", checks, checking, kHeapPerCall);

    const int texts = Repetitions(20, 1000);
    ComPtr<CFakeObject> control = new CFakeObject(m_outlook.record, "control", {});
    const Remains asking = Repeat("markup and pictures", texts, [&](int count) {
        ComPtr<IRibbonExtensibility> ribbon;
        ASSERT_EQ(m_object.As(&ribbon), S_OK);
        ComPtr<IRibbonCallback> callback;
        ASSERT_EQ(m_object.As(&callback), S_OK);
        for (int i = 0; i < count; ++i)
        {
            BSTR markup = nullptr;
            ASSERT_EQ(ribbon->GetCustomUI(nullptr, &markup), S_OK);
            ASSERT_GT(SysStringLen(markup), 0u);
            SysFreeString(markup);
            ComPtr<IPictureDisp> logo;
            ComPtr<IPictureDisp> icon;
            ASSERT_EQ(callback->GetImageLogo(control.Get(), &logo), S_OK);
            ASSERT_EQ(callback->GetImageIcon(control.Get(), &icon), S_OK);
            ASSERT_TRUE(logo && icon);
        }
    });
    Check("03 Backstage markup and both pictures", texts, asking, kHeapPerCall);

    const int offers = Repetitions(6, 300);
    const Remains offering = Repeat("offers", offers, [&](int count) {
        const CPublisher publisher(kNewer);
        CPersistentUser user(kLaterButton);
        for (int i = 0; i < count; ++i)
        {
            ButtonClicked();
        }
        EXPECT_EQ(user.Leave(), count);
    });
    // The same dialog template without the add-in's code.
    const Remains bare = Repeat("bare dialogs", offers, [&](int count) {
        for (int i = 0; i < count; ++i)
        {
            EXPECT_EQ(DialogBoxParamW(module, MAKEINTRESOURCEW(kOfferTemplate), nullptr, BareDialog, 0),
                      IDOK);
        }
    });
    const long long bitmaps = bare.Growth().gdiObjects;
    Check("07 for comparison: the offer's template in a bare dialog", offers, bare, kHeapPerCall, bitmaps);
    EXPECT_LE(bitmaps, offers);

    Check("04 offers, answered Later", offers, offering, kHeapPerCall, bitmaps);

    const int abouts = Repetitions(6, 300);
    const Remains showing = Repeat("About", abouts, [&](int count) {
        CPersistentUser user(kAboutClose);
        ComPtr<IDispatch> dispatch;
        ASSERT_EQ(m_object.As(&dispatch), S_OK);
        for (int i = 0; i < count; ++i)
        {
            DISPPARAMS none{};
            dispatch->Invoke(kClick, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &none, nullptr, nullptr,
                             nullptr);
        }
        EXPECT_EQ(user.Leave(), count);
    });
    Check("05 About dialogs", abouts, showing, kHeapPerCall, bitmaps);
    EXPECT_EQ(showing.fonts, abouts);

    const int downloads = Repetitions(6, 300);
    const Remains downloading = Repeat("downloads", downloads, [&](int count) {
        const CPrivateTemp temp;
        const CPublisher publisher(kNewer);
        const CPersistentUser user(kInstallButton);
        const int before = CInstallerCounter::Count();
        for (int i = 0; i < count; ++i)
        {
            ButtonClicked();
        }
        EXPECT_EQ(CInstallerCounter::Count() - before, count);
    });
    Check("06 offers, answered Install, downloaded", downloads, downloading, kHeapPerCall, bitmaps);
}

} // namespace
} // namespace orva::test
