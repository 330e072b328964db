#include "addin/AddInFixture.h"

#include "harness/Files.h"
#include "harness/Text.h"

#include <atomic>
#include <stdexcept>

namespace orva::test
{
namespace
{

using Microsoft::WRL::ComPtr;

constexpr UINT kRun = WM_APP + 1;

// What the registration of the host's type libraries writes.
constexpr const wchar_t* kTypeLibraryKeys[] = {
    L"Software\\Classes\\TypeLib\\{AC0714F2-3D04-11D1-AE7D-00A0C90F26F4}",
    L"Software\\Classes\\TypeLib\\{2DF8D04C-5BFA-101B-BDE5-00AA0044DE52}",
    L"Software\\Classes\\Interface\\{B65AD801-ABAF-11D0-BB8B-00A0C90F2744}",
    L"Software\\Classes\\Interface\\{000C0395-0000-0000-C000-000000000046}",
    L"Software\\Classes\\Interface\\{000C0396-0000-0000-C000-000000000046}",
    L"Software\\Classes\\Interface\\{000C0351-0000-0000-C000-000000000046}",
};

// The host's type libraries, registered during its lifetime.
class COfficeLibraries
{
public:
    COfficeLibraries()
    {
        for (const wchar_t* const file :
             {L"platform\\office\\AddInDesignerObjects.tlb", L"platform\\office\\Office.tlb"})
        {
            std::wstring path = BuiltFile(file);
            ComPtr<ITypeLib> library;
            EXPECT_EQ(LoadTypeLibEx(path.c_str(), REGKIND_NONE, &library), S_OK) << Utf8(path);
            EXPECT_EQ(RegisterTypeLib(library.Get(), path.data(), nullptr), S_OK) << Utf8(path);
        }
    }

private:
    CBothHivesGuard m_keys{kTypeLibraryKeys};
};

// Switches the log on and registers the libraries and the add-in for the whole test program.
class CMachine : public testing::Environment
{
public:
    void SetUp() override
    {
        m_log = std::make_unique<CDebugLogOn>();
        m_guard = std::make_unique<CRegistrationGuard>();
        m_guard->Remove();
        m_libraries = std::make_unique<COfficeLibraries>();
        ASSERT_EQ(CAddInModule().Register(), S_OK);
    }
    void TearDown() override
    {
        m_libraries.reset();
        m_guard.reset();
        m_log.reset();
    }

private:
    std::unique_ptr<CDebugLogOn> m_log;
    std::unique_ptr<CRegistrationGuard> m_guard;
    std::unique_ptr<COfficeLibraries> m_libraries;
};

testing::Environment* const g_machine = testing::AddGlobalTestEnvironment(new CMachine);

} // namespace

CAddInCopy::CAddInCopy(const std::vector<std::pair<std::string, std::string>>& changes)
{
    std::string bytes = ReadFileBytes(BuiltFile(kAddInModule)).value_or("");
    for (const auto& [before, after] : changes)
    {
        const size_t found = bytes.find(before);
        if (before.size() != after.size() || found == std::string::npos ||
            bytes.find(before, found + 1) != std::string::npos)
        {
            throw std::runtime_error("the DLL does not hold the bytes exactly once");
        }
        bytes.replace(found, before.size(), after);
    }
    WriteFileBytes(Path(), bytes);
}

CHostWindow::CHostWindow()
{
    WNDCLASSW windowClass = {};
    windowClass.lpfnWndProc = Procedure;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.lpszClassName = L"OrvaTestHost";
    RegisterClassW(&windowClass);
    m_window = CreateWindowExW(0, windowClass.lpszClassName, L"Outlook", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 30,
                               30, 640, 480, nullptr, nullptr, windowClass.hInstance, nullptr);
    SetWindowLongPtrW(m_window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    SetForegroundWindow(m_window);
}

CHostWindow::~CHostWindow()
{
    DestroyWindow(m_window);
}

void CHostWindow::Post(std::function<void()> work)
{
    auto kept = std::make_unique<std::function<void()>>(std::move(work));
    if (PostMessageW(m_window, kRun, 0, reinterpret_cast<LPARAM>(kept.get())))
    {
        // The window owns it now.
        static_cast<void>(kept.release());
    }
}

LRESULT CALLBACK CHostWindow::Procedure(HWND window, UINT message, WPARAM first, LPARAM second)
{
    auto* const host = reinterpret_cast<CHostWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (message == WM_ENABLE && host != nullptr)
    {
        host->m_history.push_back(first != FALSE);
    }
    if (message == kRun)
    {
        const std::unique_ptr<std::function<void()>> work(reinterpret_cast<std::function<void()>*>(second));
        (*work)();
        return 0;
    }
    return DefWindowProcW(window, message, first, second);
}

HANDLE ActiveContext()
{
    HANDLE context = nullptr;
    GetCurrentActCtx(&context);
    ReleaseActCtx(context);
    return context;
}

CAddInTest::CAddInTest()
{
    m_module = std::make_unique<CAddInModule>();
}

CAddInTest::~CAddInTest()
{
    if (m_module != nullptr)
    {
        ReleaseAll();
    }
}

void CAddInTest::LoadInstead(const std::wstring& path)
{
    ReleaseAll();
    m_module = std::make_unique<CAddInModule>(path);
}

void CAddInTest::Create()
{
    m_object = m_module->Create();
}

HRESULT CAddInTest::Connect(const wchar_t* version, int mode)
{
    UseOutlook(version);
    Create();
    return ConnectTo(m_outlook->application.Get(), mode);
}

HRESULT CAddInTest::ConnectTo(IDispatch* application, int mode)
{
    return ConnectAddIn(m_object.Get(), application, mode);
}

std::vector<std::string> CAddInTest::LinesOfConnecting(int mode)
{
    Create();
    NewLogLines();
    EXPECT_EQ(ConnectTo(m_outlook->application.Get(), mode), S_OK);
    return NewLogLines();
}

void CAddInTest::ExpectAbout()
{
    m_user.OnDialogWith(kAboutClose, [](HWND about) { EXPECT_TRUE(ClickButton(about, kAboutClose)); });
}

void CAddInTest::ReleaseAll()
{
    if (m_outlook != nullptr)
    {
        m_outlook->button->DropSinks();
    }
    m_object.Reset();
    EXPECT_EQ(m_module->CanUnloadNow(), S_OK);
    m_module.reset();
    EXPECT_FALSE(CAddInModule::IsLoaded());
}

bool CAddInTest::WaitForContextOtherThan(HANDLE context)
{
    // The posted function may run after this one has given up.
    const auto seen = std::make_shared<std::atomic<HANDLE>>(context);
    m_host.Post([seen] { *seen = ActiveContext(); });
    return WaitUntil([&] { return *seen != context; });
}

} // namespace orva::test
