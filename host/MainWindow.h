// Outlook's main window: menu bar, folder list, messages, and the way to the File view.
#pragma once

#include "host/CommandBars.h"
#include "host/FileView.h"
#include "host/MenuModel.h"
#include "host/Painting.h"

#include <windows.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace orva::host
{

/// Window class and the id of the "File" tab, for tests that look for them.
inline constexpr wchar_t kMainWindowClass[] = L"OrvaOutlookHost";
inline constexpr int kFileButton = 600;

/// What the window calls in the program.
struct MainWindowActions
{
    /// Called once, when the message loop runs.
    std::function<void()> start;
    /// Called once, to close: the window is enabled and no callback of an add-in is running.
    std::function<void()> close;
};

class CMainWindow : public IMenuObserver
{
public:
    CMainWindow(CTrace& trace, const CCommandBar& bar, MainWindowActions actions);
    virtual ~CMainWindow();
    CMainWindow(const CMainWindow&) = delete;
    CMainWindow& operator=(const CMainWindow&) = delete;

    /// Creates and shows the window; false on failure.
    bool Create();
    HWND Window() const { return m_window; }
    /// Gives the window its "File" tab.
    void AllowFileView(std::vector<FileViewTab> tabs, std::vector<std::wstring> notes, IDispatch* context);
    void OpenFileView();
    /// Makes the message loop call `start`.
    void PostStart();
    /// Closes the window, once no dialog disables it.
    void RequestClose();
    /// From now on the window may be closed; an earlier request is carried out.
    void AllowClose();
    void Destroy();
    /// Handles a message for the File view's dialog keys; false when it is another message.
    bool TakeKey(MSG& message);

    void MenuChanged() override;

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam);
    void OnCommand(unsigned id);
    void OnClose();
    void OnPaint();
    void DrawFileButton(const DRAWITEMSTRUCT& draw);

    CTrace& m_trace;
    const CCommandBar& m_bar;
    MainWindowActions m_actions;
    HWND m_window = nullptr;
    HWND m_fileButton = nullptr;
    std::unique_ptr<CFileView> m_fileView;
    std::vector<FileViewTab> m_tabs;
    std::vector<std::wstring> m_notes;
    Microsoft::WRL::ComPtr<IDispatch> m_context;
    bool m_mayClose = false;
    bool m_closeRequested = false;
    int m_depth = 0;
    CFont m_font;
    CFont m_boldFont;
};

} // namespace orva::host
