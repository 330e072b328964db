#include "host/MainWindow.h"

#include "host/MailPage.h"
#include "host/MenuView.h"

#include <commctrl.h>

#include <algorithm>

namespace orva::host
{
namespace
{

constexpr wchar_t kTitle[] = L"Inbox - Stand-in Outlook";
constexpr int kWidth = 1040;
constexpr int kHeight = 720;
constexpr int kFileButtonWidth = 70;
constexpr UINT kStart = WM_APP + 1;
constexpr UINT kTryClose = WM_APP + 2;

} // namespace

CMainWindow::CMainWindow(CTrace& trace, const CCommandBar& bar, MainWindowActions actions)
    : m_trace(trace), m_bar(bar), m_actions(std::move(actions)), m_font(9, FW_NORMAL), m_boldFont(9, FW_BOLD)
{
}

CMainWindow::~CMainWindow()
{
    Destroy();
}

bool CMainWindow::Create()
{
    const HINSTANCE instance = GetModuleHandleW(nullptr);
    WNDCLASSEXW windowClass{};
    windowClass.cbSize = sizeof(windowClass);
    windowClass.lpfnWndProc = Procedure;
    windowClass.hInstance = instance;
    windowClass.hIcon = LoadIconW(nullptr, reinterpret_cast<const wchar_t*>(IDI_APPLICATION));
    windowClass.hCursor = LoadCursorW(nullptr, reinterpret_cast<const wchar_t*>(IDC_ARROW));
    windowClass.lpszClassName = kMainWindowClass;
    RegisterClassExW(&windowClass);
    if (CreateWindowExW(0, kMainWindowClass, kTitle, WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, CW_USEDEFAULT,
                        CW_USEDEFAULT, kWidth, kHeight, nullptr, MakeMenu(m_bar), instance, this) == nullptr)
    {
        return false;
    }
    // Shown whatever STARTUPINFO says: add-ins look for a visible window.
    ShowWindow(m_window, SW_SHOWNORMAL);
    UpdateWindow(m_window);
    return true;
}

void CMainWindow::AllowFileView(std::vector<FileViewTab> tabs, std::vector<std::wstring> notes,
                                IDispatch* context)
{
    m_tabs = std::move(tabs);
    m_notes = std::move(notes);
    m_context = context;
    m_fileButton = CreateWindowExW(0, WC_BUTTONW, L"File", WS_CHILD | WS_VISIBLE | BS_OWNERDRAW | WS_TABSTOP,
                                   0, 0, kFileButtonWidth, kTabStripHeight, m_window,
                                   reinterpret_cast<HMENU>(static_cast<INT_PTR>(kFileButton)),
                                   GetModuleHandleW(nullptr), nullptr);
    InvalidateRect(m_window, nullptr, TRUE);
}

void CMainWindow::OpenFileView()
{
    if (m_fileButton == nullptr || m_fileView)
    {
        return;
    }
    m_trace.Event(L"File view opened");
    m_fileView =
        std::make_unique<CFileView>(m_trace, m_window, kTabStripHeight, m_tabs, m_notes, m_context.Get());
}

void CMainWindow::PostStart()
{
    PostMessageW(m_window, kStart, 0, 0);
}

void CMainWindow::RequestClose()
{
    m_closeRequested = true;
    PostMessageW(m_window, kTryClose, 0, 0);
}

void CMainWindow::AllowClose()
{
    m_mayClose = true;
    if (m_closeRequested)
    {
        PostMessageW(m_window, kTryClose, 0, 0);
    }
}

void CMainWindow::Destroy()
{
    m_fileView.reset();
    m_tabs.clear();
    m_context.Reset();
    if (m_window != nullptr)
    {
        DestroyWindow(m_window);
    }
}

bool CMainWindow::TakeKey(MSG& message)
{
    return m_fileView && m_fileView->Window() != nullptr && IsDialogMessageW(m_fileView->Window(), &message);
}

void CMainWindow::MenuChanged()
{
    if (m_window == nullptr)
    {
        return;
    }
    const HMENU previous = GetMenu(m_window);
    SetMenu(m_window, MakeMenu(m_bar));
    DestroyMenu(previous);
    DrawMenuBar(m_window);
}

LRESULT CALLBACK CMainWindow::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_NCCREATE)
    {
        auto* created = static_cast<CMainWindow*>(reinterpret_cast<CREATESTRUCTW*>(lParam)->lpCreateParams);
        created->m_window = window;
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(created));
    }
    auto* self = reinterpret_cast<CMainWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (self == nullptr)
    {
        return DefWindowProcW(window, message, wParam, lParam);
    }
    // Messages nest while an add-in shows a dialog; the window may be destroyed in the outermost only.
    ++self->m_depth;
    const LRESULT result = self->OnMessage(message, wParam, lParam);
    --self->m_depth;
    return result;
}

LRESULT CMainWindow::OnMessage(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message)
    {
    case kStart:
        m_actions.start();
        return 0;
    case kTryClose:
        OnClose();
        return 0;
    case kFileViewClosed:
        m_fileView.reset();
        SetFocus(m_window);
        return 0;
    case WM_CLOSE:
        m_closeRequested = true;
        OnClose();
        return 0;
    case WM_ENABLE:
        if (wParam != FALSE && m_closeRequested)
        {
            PostMessageW(m_window, kTryClose, 0, 0);
        }
        return 0;
    case WM_COMMAND:
        OnCommand(LOWORD(wParam));
        return 0;
    case WM_SIZE:
        if (m_fileView)
        {
            m_fileView->Resize();
        }
        InvalidateRect(m_window, nullptr, FALSE);
        return 0;
    case WM_ERASEBKGND:
        return 1;
    case WM_PAINT:
        OnPaint();
        return 0;
    case WM_DRAWITEM:
        DrawFileButton(*reinterpret_cast<const DRAWITEMSTRUCT*>(lParam));
        return TRUE;
    case WM_NCDESTROY: {
        const HWND window = m_window;
        m_window = nullptr;
        SetWindowLongPtrW(window, GWLP_USERDATA, 0);
        PostQuitMessage(0);
        return DefWindowProcW(window, message, wParam, lParam);
    }
    default:
        return DefWindowProcW(m_window, message, wParam, lParam);
    }
}

void CMainWindow::OnCommand(unsigned id)
{
    if (id == static_cast<unsigned>(kFileButton))
    {
        if (m_fileView)
        {
            PostMessageW(m_window, kFileViewClosed, 0, 0);
        }
        else
        {
            OpenFileView();
        }
        return;
    }
    CCommandBarButton* button = m_bar.Controls().FindButton(id);
    if (button == nullptr)
    {
        return;
    }
    m_trace.Event(L"menu command " + button->Caption());
    button->Click();
}

void CMainWindow::OnClose()
{
    // An add-in's dialog runs its message loop inside one of our calls, so the window must not be destroyed
    // before that call has returned. WM_ENABLE tries again when the dialog has closed.
    if (!m_mayClose || !IsWindowEnabled(m_window))
    {
        return;
    }
    if (m_depth > 1)
    {
        PostMessageW(m_window, kTryClose, 0, 0);
        return;
    }
    m_mayClose = false;
    m_actions.close();
}

void CMainWindow::OnPaint()
{
    PAINTSTRUCT paint;
    const HDC dc = BeginPaint(m_window, &paint);
    RECT client;
    GetClientRect(m_window, &client);
    PaintMailPage(dc, client, m_fileButton != nullptr, m_font.Get(), m_boldFont.Get());
    EndPaint(m_window, &paint);
}

void CMainWindow::DrawFileButton(const DRAWITEMSTRUCT& draw)
{
    FillBox(draw.hDC, draw.rcItem, kAccent);
    DrawLine(draw.hDC, L"File", draw.rcItem, m_boldFont.Get(), kWhite, DT_CENTER);
}

} // namespace orva::host
