// A host for the built DLL inside the test program: it loads, registers and creates the add-in, has a main
// window, and reads the log, the server's requests and the windows that were shown.
#pragma once

#include "fixture/UpdateInfo.h"
#include "fixture/UserTexts.h"
#include "harness/LogFile.h"
#include "harness/LoopbackServer.h"
#include "harness/OfficeLanguage.h"
#include "harness/ProxySetting.h"
#include "harness/TempFolder.h"
#include "harness/UserScript.h"
#include "harness/Wine.h"
#include "outlook/AddInModule.h"
#include "outlook/AddInRegistration.h"
#include "outlook/FakeOutlook.h"

#include <AddInDesignerObjects.h>
#include <Office.h>
#include <OrvaOscAddin.h>

#include <gmock/gmock.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace orva::test
{

/// The class's primary interface, which is in no type library.
inline constexpr IID kConnectInterface = {
    0x3C3B6E0B, 0x6A0F, 0x4C0B, {0x9C, 0x0E, 0x5D, 0x2D, 0x1F, 0x0B, 0x7A, 0x41}};

/// A copy of the DLL under its own name, in a folder of its own, with some of its bytes changed.
class CAddInCopy
{
public:
    /// Replaces the first bytes of each pair by the second. Throws std::runtime_error unless both are equally
    /// long and the first occur exactly once.
    explicit CAddInCopy(const std::vector<std::pair<std::string, std::string>>& changes);

    std::wstring Path() const { return m_folder.File(kAddInModule); }

private:
    CTempFolder m_folder;
};

/// The host's main window. It records when it is enabled and disabled, and runs functions that are posted to
/// it.
class CHostWindow
{
public:
    CHostWindow();
    ~CHostWindow();
    CHostWindow(const CHostWindow&) = delete;
    CHostWindow& operator=(const CHostWindow&) = delete;

    HWND Handle() const { return m_window; }
    /// One element for each change, in order: true for enabled, false for disabled.
    const std::vector<bool>& EnableHistory() const { return m_history; }
    /// Runs `work` on the window's thread when that next dispatches messages. Callable from any thread.
    void Post(std::function<void()> work);

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM first, LPARAM second);

    HWND m_window = nullptr;
    std::vector<bool> m_history;
};

/// The activation context that is active in this thread; null for the program's own.
HANDLE ActiveContext();

/// One test with one add-in object in one freshly loaded DLL. Office speaks English; the log is on; every
/// request reaches the scripted server.
class CAddInTest : public testing::Test
{
protected:
    CAddInTest();
    ~CAddInTest() override;

    /// Unloads the DLL and loads this one in its place.
    void LoadInstead(const std::wstring& path);
    /// Creates the add-in's object through its class object.
    void Create();
    /// Makes m_outlook an Outlook of this version.
    void UseOutlook(const wchar_t* version) { m_outlook = std::make_unique<CFakeOutlook>(version); }
    /// Creates the object and connects it to a new m_outlook; by default without a start-up check.
    HRESULT Connect(const wchar_t* version, int mode = ext_cm_AfterStartup);
    /// Calls OnConnection of the created object with any application.
    HRESULT ConnectTo(IDispatch* application, int mode = ext_cm_AfterStartup);
    /// Creates the object, connects it to m_outlook and returns the log's lines of the connection.
    std::vector<std::string> LinesOfConnecting(int mode = ext_cm_AfterStartup);
    /// Releases the object, checks that the module can be unloaded, and unloads it.
    void ReleaseAll();

    template <typename Interface> Microsoft::WRL::ComPtr<Interface> Query(REFIID iid)
    {
        Microsoft::WRL::ComPtr<Interface> found;
        EXPECT_EQ(m_object->QueryInterface(iid, reinterpret_cast<void**>(found.GetAddressOf())), S_OK);
        return found;
    }
    Microsoft::WRL::ComPtr<_IDTExtensibility2> AddIn()
    {
        return Query<_IDTExtensibility2>(IID__IDTExtensibility2);
    }
    Microsoft::WRL::ComPtr<IDispatch> Dispatch() { return Query<IDispatch>(IID_IDispatch); }

    /// The log's lines since the last call, or since the test began.
    std::vector<std::string> NewLogLines() { return m_log.NewLines(); }
    /// Has the user close the About dialog.
    void ExpectAbout();
    void Publish(const std::string& text) { m_server.On(kUpdateInfoPath, CHttpReply(200, text)); }
    /// Waits on the user's thread until a window message finds another activation context active in the
    /// test's thread.
    bool WaitForContextOtherThan(HANDLE context);

    CHostWindow m_host;
    CLoopbackServer m_server;
    CProxySetting m_proxy{m_server.Port()};
    COfficeLanguageSetting m_language;
    CUserScript m_user;
    std::unique_ptr<CFakeOutlook> m_outlook;
    std::unique_ptr<CAddInModule> m_module;
    Microsoft::WRL::ComPtr<IUnknown> m_object;

private:
    CLogMark m_log;
};

} // namespace orva::test
