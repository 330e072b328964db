#include "addin/AddInFixture.h"

#include "harness/Files.h"
#include "harness/Text.h"

#include <bit>
#include <stdexcept>

namespace orva::test
{
namespace
{

using Microsoft::WRL::ComPtr;

constexpr UINT kRun = WM_APP + 1;
constexpr DWORD kEnglish = 1033;

// What the DLL's registration writes.
constexpr const wchar_t* kRegisteredKeys[] = {
    L"Software\\Microsoft\\Office",
    L"Software\\Classes\\OrvaOscAddin.Connect",
    L"Software\\Classes\\OrvaOscAddin.Connect.1",
    L"Software\\Classes\\CLSID\\{9C7130EA-AEC4-4EA5-97B8-7D7172C9E051}",
    L"Software\\Classes\\TypeLib\\{ABF2CDBF-30F7-4827-9110-3BD6A8F1B786}",
    L"Software\\Classes\\Interface\\{CE895442-9981-4315-AA85-4B9A5C7739D8}",
    L"Software\\Classes\\Wow6432Node\\Interface\\{CE895442-9981-4315-AA85-4B9A5C7739D8}",
};

// What the registration of the host's type libraries writes.
constexpr const wchar_t* kOfficeKeys[] = {
    L"Software\\Classes\\TypeLib\\{AC0714F2-3D04-11D1-AE7D-00A0C90F26F4}",
    L"Software\\Classes\\TypeLib\\{2DF8D04C-5BFA-101B-BDE5-00AA0044DE52}",
    L"Software\\Classes\\Interface\\{B65AD801-ABAF-11D0-BB8B-00A0C90F2744}",
    L"Software\\Classes\\Interface\\{000C0395-0000-0000-C000-000000000046}",
    L"Software\\Classes\\Interface\\{000C0396-0000-0000-C000-000000000046}",
    L"Software\\Classes\\Interface\\{000C0351-0000-0000-C000-000000000046}",
};

template <size_t Count>
void GuardKeys(std::vector<std::unique_ptr<CRegistryTreeGuard>>& trees, const wchar_t* const (&keys)[Count])
{
    for (const wchar_t* const key : keys)
    {
        for (const HKEY root : {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER})
        {
            trees.push_back(std::make_unique<CRegistryTreeGuard>(root, key));
        }
    }
}

template <typename Function> Function Export(HMODULE module, const char* name)
{
    const auto function = std::bit_cast<Function>(GetProcAddress(module, name));
    if (function == nullptr)
    {
        throw std::runtime_error(std::string("the DLL has no ") + name);
    }
    return function;
}

// The log is on, the libraries and the add-in are registered, for the whole test program.
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

bool IsWine()
{
    return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
}

std::vector<std::string> CLogReader::NewLines()
{
    std::vector<std::string> lines = ReadLogTexts();
    lines.erase(lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(m_read));
    m_read += lines.size();
    return lines;
}

CAddInCopy::CAddInCopy(const std::string& before, const std::string& after)
{
    std::string bytes = ReadFileBytes(BuiltFile(kAddInModule)).value_or("");
    const size_t found = bytes.find(before);
    if (before.size() != after.size() || found == std::string::npos ||
        bytes.find(before, found + 1) != std::string::npos)
    {
        throw std::runtime_error("the DLL does not hold the bytes exactly once");
    }
    bytes.replace(found, before.size(), after);
    WriteFileBytes(Path(), bytes);
}

CAddInModule::CAddInModule() : CAddInModule(BuiltFile(kAddInModule)) {}

CAddInModule::CAddInModule(const std::wstring& path) : m_module(LoadLibraryW(path.c_str()))
{
    if (m_module == nullptr)
    {
        throw std::runtime_error("cannot load the add-in: " + std::to_string(GetLastError()));
    }
}

CAddInModule::~CAddInModule()
{
    FreeLibrary(m_module);
}

HRESULT CAddInModule::CanUnloadNow() const
{
    return Export<HRESULT(STDAPICALLTYPE*)()>(m_module, "DllCanUnloadNow")();
}

HRESULT CAddInModule::GetClassObject(REFCLSID classId, REFIID iid, void** object) const
{
    return Export<HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**)>(m_module, "DllGetClassObject")(
        classId, iid, object);
}

HRESULT CAddInModule::Register() const
{
    return Export<HRESULT(STDAPICALLTYPE*)()>(m_module, "DllRegisterServer")();
}

HRESULT CAddInModule::Unregister() const
{
    return Export<HRESULT(STDAPICALLTYPE*)()>(m_module, "DllUnregisterServer")();
}

HRESULT CAddInModule::Install(BOOL install, const wchar_t* commandLine) const
{
    return Export<HRESULT(STDAPICALLTYPE*)(BOOL, LPCWSTR)>(m_module, "DllInstall")(install, commandLine);
}

bool CAddInModule::IsLoaded()
{
    return GetModuleHandleW(kAddInModule) != nullptr;
}

CRegistrationGuard::CRegistrationGuard()
{
    GuardKeys(m_trees, kRegisteredKeys);
}

void CRegistrationGuard::Remove()
{
    for (const auto& tree : m_trees)
    {
        tree->Remove();
    }
}

COfficeLibraries::COfficeLibraries()
{
    GuardKeys(m_trees, kOfficeKeys);
    for (const wchar_t* const file :
         {L"platform\\office\\AddInDesignerObjects.tlb", L"platform\\office\\Office.tlb"})
    {
        std::wstring path = BuiltFile(file);
        ComPtr<ITypeLib> library;
        EXPECT_EQ(LoadTypeLibEx(path.c_str(), REGKIND_NONE, &library), S_OK) << Utf8(path);
        EXPECT_EQ(RegisterTypeLib(library.Get(), path.data(), nullptr), S_OK) << Utf8(path);
    }
}

COfficeLibraries::~COfficeLibraries() = default;

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

CAddInTest::CAddInTest()
{
    for (const wchar_t* const version : {L"12", L"14", L"15"})
    {
        const std::wstring key =
            std::wstring(L"SOFTWARE\\Microsoft\\Office\\") + version + L".0\\Common\\LanguageResources";
        m_languages.push_back(std::make_unique<CRegistryValue>(HKEY_CURRENT_USER, key, L"UILanguage"));
        m_languages.back()->SetDword(kEnglish);
    }
    m_module = std::make_unique<CAddInModule>();
}

CAddInTest::~CAddInTest()
{
    if (m_module != nullptr)
    {
        ReleaseAll();
    }
    // The last made is the first to be put back: they share keys.
    while (!m_languages.empty())
    {
        m_languages.pop_back();
    }
}

void CAddInTest::LoadInstead(const std::wstring& path)
{
    ReleaseAll();
    m_module = std::make_unique<CAddInModule>(path);
}

void CAddInTest::Create()
{
    ComPtr<IClassFactory> factory;
    ASSERT_EQ(m_module->GetClassObject(kAddInClass, IID_IClassFactory,
                                       reinterpret_cast<void**>(factory.GetAddressOf())),
              S_OK);
    ASSERT_EQ(factory->CreateInstance(nullptr, IID_IUnknown,
                                      reinterpret_cast<void**>(m_object.ReleaseAndGetAddressOf())),
              S_OK);
}

HRESULT CAddInTest::Connect(const wchar_t* version, int mode)
{
    m_outlook = std::make_unique<CFakeOutlook>(version);
    Create();
    return HasFatalFailure() ? E_FAIL : ConnectTo(m_outlook->application.Get(), mode);
}

HRESULT CAddInTest::ConnectTo(IDispatch* application, int mode)
{
    SAFEARRAY* custom = SafeArrayCreateVector(VT_VARIANT, 1, 0);
    const HRESULT result =
        AddIn()->OnConnection(application, static_cast<ext_ConnectMode>(mode), nullptr, &custom);
    SafeArrayDestroy(custom);
    return result;
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

} // namespace orva::test
