// A host that lives long: the add-in loaded, asked, shown and unloaded again and again in one process, and
// what of it the process still holds afterwards.
#include "addin/AddInFixture.h"
#include "harness/ImportHook.h"
#include "harness/Report.h"
#include "harness/Watchdog.h"
#include "long_run/ModuleBlocks.h"
#include "long_run/ProcessFigures.h"

#include <shellapi.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <thread>

namespace orva::test
{
namespace
{

using Microsoft::WRL::ComPtr;

constexpr char kInstaller[] = "/setup.exe";
constexpr DISPID kClick = 1;
constexpr WORD kOfferTemplate = 9;
constexpr int kInstall = 204;
constexpr int kLater = 205;
constexpr DWORD kThoroughDeadline = 12 * 60'000;
constexpr DWORD kShortDeadline = 120'000;

/// What the add-in leaves on purpose: the brushes that its dialogs colour their controls with, and the bold
/// font of the About dialog. Counts what the DLL makes and does not delete, for its lifetime.
class CKeptObjects
{
public:
    explicit CKeptObjects(HMODULE module)
        : m_brush(module, "gdi32.dll", "CreateSolidBrush", &CreateBrush),
          m_font(module, "gdi32.dll", "CreateFontIndirectW", &CreateFont_),
          m_delete(module, "gdi32.dll", "DeleteObject", &Delete)
    {
        the = this;
    }
    ~CKeptObjects() { the = nullptr; }
    CKeptObjects(const CKeptObjects&) = delete;
    CKeptObjects& operator=(const CKeptObjects&) = delete;

    /// Those that still exist: some controls of Wine's delete the brush that they were given.
    long long Brushes() const { return CountExisting(m_brushes); }
    long long Fonts() const { return CountExisting(m_fonts); }
    long long Existing() const { return Brushes() + Fonts(); }
    /// All that were made and not deleted by the DLL.
    long long BrushesMade() const { return static_cast<long long>(m_brushes.size()); }
    /// Deletes them all, for the test's next part.
    void Discard()
    {
        for (const std::vector<HGDIOBJ>* const objects : {&m_brushes, &m_fonts})
        {
            for (const HGDIOBJ object : *objects)
            {
                DeleteObject(object);
            }
        }
        m_brushes.clear();
        m_fonts.clear();
    }

private:
    static long long CountExisting(const std::vector<HGDIOBJ>& objects)
    {
        return std::ranges::count_if(objects, [](HGDIOBJ object) { return GetObjectType(object) != 0; });
    }
    static HBRUSH WINAPI CreateBrush(COLORREF colour)
    {
        const HBRUSH brush = the->m_brush.Original<decltype(CreateBrush)>()(colour);
        the->m_brushes.push_back(brush);
        return brush;
    }
    static HFONT WINAPI CreateFont_(const LOGFONTW* description)
    {
        const HFONT font = the->m_font.Original<decltype(CreateFont_)>()(description);
        the->m_fonts.push_back(font);
        return font;
    }
    static BOOL WINAPI Delete(HGDIOBJ object)
    {
        std::erase(the->m_brushes, object);
        std::erase(the->m_fonts, object);
        return the->m_delete.Original<decltype(Delete)>()(object);
    }

    static CKeptObjects* the;

    std::vector<HGDIOBJ> m_brushes;
    std::vector<HGDIOBJ> m_fonts;
    CImportHook m_brush;
    CImportHook m_font;
    CImportHook m_delete;
};

CKeptObjects* CKeptObjects::the = nullptr;

/// Counts the installers instead of starting them: a few hundred processes are not what is measured here.
class CInstallerCounter
{
public:
    explicit CInstallerCounter(HMODULE module) : m_execute(module, "shell32.dll", "ShellExecuteExW", &Execute)
    {
        count = 0;
    }
    static inline std::atomic<int> count = 0;

private:
    static BOOL WINAPI Execute(SHELLEXECUTEINFOW*)
    {
        ++count;
        return TRUE;
    }

    CImportHook m_execute;
};

/// Presses this button in every dialog of the process that has it.
class CUserWhoAlwaysPresses
{
public:
    explicit CUserWhoAlwaysPresses(int button) : m_thread([this, button] { Press(button); }) {}
    ~CUserWhoAlwaysPresses() { Leave(); }
    CUserWhoAlwaysPresses(const CUserWhoAlwaysPresses&) = delete;
    CUserWhoAlwaysPresses& operator=(const CUserWhoAlwaysPresses&) = delete;
    /// Ends the user's work and says how often he has pressed the button. A dialog may end before the user
    /// has come back from pressing it, so the number is not known sooner.
    int Leave()
    {
        m_stop = true;
        if (m_thread.joinable())
        {
            m_thread.join();
        }
        return m_pressed;
    }

private:
    void Press(int button)
    {
        HWND last = nullptr;
        while (!m_stop)
        {
            CWindowQuery query;
            query.className = kDialogClass;
            query.childId = button;
            const HWND dialog = FindTopLevelWindow(query);
            if (dialog != nullptr && dialog != last && ClickButton(dialog, button))
            {
                ++m_pressed;
                last = dialog;
            }
            else if (dialog == nullptr)
            {
                last = nullptr;
            }
            Sleep(2);
        }
    }

    std::atomic<bool> m_stop = false;
    int m_pressed = 0;
    std::thread m_thread;
};

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
    LongRunTest()
    {
        SetTestDeadline(IsThorough() ? kThoroughDeadline : kShortDeadline);
        for (const wchar_t* const version : {L"12", L"14"})
        {
            m_languages.push_back(std::make_unique<CRegistryValue>(
                HKEY_CURRENT_USER,
                std::wstring(L"SOFTWARE\\Microsoft\\Office\\") + version + L".0\\Common\\LanguageResources",
                L"UILanguage"));
            m_languages.back()->SetDword(1033);
        }
    }

    /// Loads the DLL and makes and connects an object.
    void Load(int mode = ext_cm_AfterStartup)
    {
        m_module = std::make_unique<CAddInModule>();
        ComPtr<IClassFactory> factory;
        ASSERT_EQ(m_module->GetClassObject(kAddInClass, IID_IClassFactory,
                                           reinterpret_cast<void**>(factory.GetAddressOf())),
                  S_OK);
        ASSERT_EQ(factory->CreateInstance(nullptr, IID_IUnknown,
                                          reinterpret_cast<void**>(m_object.ReleaseAndGetAddressOf())),
                  S_OK);
        Connect(mode);
    }

    void Connect(int mode)
    {
        ComPtr<_IDTExtensibility2> addIn;
        ASSERT_EQ(m_object.As(&addIn), S_OK);
        SAFEARRAY* custom = SafeArrayCreateVector(VT_VARIANT, 1, 0);
        EXPECT_EQ(addIn->OnConnection(m_outlook.application.Get(), static_cast<ext_ConnectMode>(mode),
                                      nullptr, &custom),
                  S_OK);
        SafeArrayDestroy(custom);
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

    /// What a part of the test has left.
    struct Left
    {
        CProcessFigures before;
        CProcessFigures after;
        long long brushes = 0;
        long long brushesMade = 0;
        long long fonts = 0;
        /// What the DLL itself has taken of the heap and not given back, once it is watched.
        long long ownBytes = 0;
        CProcessFigures Growth() const { return after - before; }
    };

    /// Runs `part` with the number of repetitions, after a few that do not count.
    template <typename Part> Left Repeat(const std::string& name, int count, Part part)
    {
        NoteTestPart(name);
        part(kWarmUps);
        if (m_kept)
        {
            m_kept->Discard();
        }
        Left left;
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

    /// Checks what is left and reports it. `bitmaps`: what Wine's dialogs have left of their pictures.
    static void Check(const std::string& name, int count, const Left& left, long long heapPerCall,
                      long long bitmaps = 0, const std::string& heapOwner = ", none of it taken by the DLL")
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
            remains +=
                "; " + std::to_string(growth.heapBytes / count) + " bytes of heap each time" + heapOwner;
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
    /// What the system may keep for itself, however often something is done.
    static constexpr long long kSlack = 4;
    static constexpr long long kHeapSlack = 64LL * 1024;
    static constexpr long long kPrivateSlack = 4LL * 1024;
    /// A loading costs 528 bytes: the run-time's record of the thread, which it has in a list for the next
    /// thread.
    static constexpr long long kHeapPerLoad = 1024;
    /// What the system's own libraries take in passing and keep. Measured under Wine: 0 for markup and
    /// pictures, some 150 a check, 250 an offer, 370 an About dialog, 520 a download, none of it taken by the
    /// DLL.
    static constexpr long long kHeapPerCall = 512;

    CHostWindow m_host;
    CFakeOutlook m_outlook{kOutlook2010};
    std::vector<std::unique_ptr<CRegistryValue>> m_languages;
    std::unique_ptr<CAddInModule> m_module;
    ComPtr<IUnknown> m_object;
    std::optional<CKeptObjects> m_kept;
    std::optional<CModuleBlocks> m_blocks;
};

/// Publishes a file to the add-in for its lifetime; gone, it has left nothing in the process.
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

    const int loads = Repetitions(20, 1000);
    const Left loading = Repeat("loading", loads, [this](int count) {
        for (int i = 0; i < count; ++i)
        {
            Load();
            Unload();
        }
    });
    Check("01 DLL loaded, connected, unloaded", loads, loading, kHeapPerLoad, 0,
          ", the C++ run-time's record of the thread");

    Load();
    const HMODULE module = GetModuleHandleW(kAddInModule);
    m_kept.emplace(module);
    m_blocks.emplace(module);
    const CInstallerCounter installers(module);

    const int checks = Repetitions(20, 1000);
    const Left checking = Repeat("checks", checks, [this](int count) {
        const CPublisher publisher(kSameVersion);
        for (int i = 0; i < count; ++i)
        {
            Connect(ext_cm_Startup);
        }
    });
    Check("02 update checks", checks, checking, kHeapPerCall);

    const int texts = Repetitions(20, 1000);
    ComPtr<CFakeObject> control = new CFakeObject(m_outlook.record, "control", {});
    const Left asking = Repeat("markup and pictures", texts, [&](int count) {
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
    const Left offering = Repeat("offers", offers, [&](int count) {
        const CPublisher publisher(kNewer);
        CUserWhoAlwaysPresses user(kLater);
        for (int i = 0; i < count; ++i)
        {
            ButtonClicked();
        }
        EXPECT_EQ(user.Leave(), count);
    });
    // The same dialog template without anything of the add-in's around it.
    const Left bare = Repeat("bare dialogs", offers, [&](int count) {
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
    const Left showing = Repeat("About", abouts, [&](int count) {
        CUserWhoAlwaysPresses user(kAboutClose);
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
    const Left downloading = Repeat("downloads", downloads, [&](int count) {
        const CPrivateTemp temp;
        const CPublisher publisher(kNewer);
        const CUserWhoAlwaysPresses user(kInstall);
        const int before = CInstallerCounter::count;
        for (int i = 0; i < count; ++i)
        {
            ButtonClicked();
        }
        EXPECT_EQ(CInstallerCounter::count - before, count);
    });
    Check("06 offers, answered Install, downloaded", downloads, downloading, kHeapPerCall, bitmaps);
}

} // namespace
} // namespace orva::test
