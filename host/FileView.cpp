#include "host/FileView.h"

#include "host/RibbonControl.h"

#include <commctrl.h>
#include <shellapi.h>

namespace orva::host
{
namespace
{

constexpr int kInfoPage = -1;
constexpr int kStripWidth = 170;
constexpr int kStripTop = 20;
constexpr int kStripButtonHeight = 40;
constexpr int kStripIndent = 18;

std::wstring WindowText(HWND window)
{
    std::wstring text(static_cast<size_t>(GetWindowTextLengthW(window)) + 1, L'\0');
    text.resize(static_cast<size_t>(GetWindowTextW(window, text.data(), static_cast<int>(text.size()))));
    return text;
}

} // namespace

CFileView::CFileView(CTrace& trace, HWND parent, int top, std::vector<FileViewTab> tabs,
                     const std::vector<std::wstring>& notes, IDispatch* context)
    : m_trace(trace), m_top(top), m_tabs(std::move(tabs)), m_context(context), m_stripFont(10, FW_NORMAL)
{
    for (const std::wstring& note : notes)
    {
        m_notes += (m_notes.empty() ? L"" : L"\r\n\r\n") + note;
    }
    if (notes.empty())
    {
        m_notes = L"This is the stand-in Outlook. It has no accounts.";
    }

    InitCommonControls();
    const HINSTANCE instance = GetModuleHandleW(nullptr);
    WNDCLASSEXW windowClass{};
    windowClass.cbSize = sizeof(windowClass);
    windowClass.lpfnWndProc = Procedure;
    windowClass.hInstance = instance;
    windowClass.hCursor = LoadCursorW(nullptr, reinterpret_cast<const wchar_t*>(IDC_ARROW));
    windowClass.lpszClassName = kFileViewClass;
    RegisterClassExW(&windowClass);
    if (CreateWindowExW(WS_EX_CONTROLPARENT, kFileViewClass, L"File", WS_CHILD | WS_CLIPCHILDREN, 0, 0, 0, 0,
                        parent, nullptr, instance, this) == nullptr)
    {
        return;
    }

    AddStripButton(L"Info", kInfoButton);
    for (size_t index = 0; index < m_tabs.size(); ++index)
    {
        AddStripButton(m_tabs[index].tab.label, kFirstTabButton + static_cast<int>(index));
    }
    AddStripButton(L"Back to mail", kBackButton);

    Resize();
    ShowPage(m_tabs.empty() ? kInfoPage : 0);
    ShowWindow(m_window, SW_SHOW);
    SetFocus(m_strip[m_tabs.empty() ? 0 : 1]);
}

CFileView::~CFileView()
{
    m_page.reset();
    if (m_window != nullptr)
    {
        DestroyWindow(m_window);
    }
}

void CFileView::AddStripButton(const std::wstring& caption, int id)
{
    m_strip.push_back(CreateWindowExW(
        0, WC_BUTTONW, caption.c_str(), WS_CHILD | WS_VISIBLE | WS_TABSTOP | BS_OWNERDRAW, 0, 0, 0, 0,
        m_window, reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), GetModuleHandleW(nullptr), nullptr));
}

void CFileView::Resize()
{
    RECT client;
    GetClientRect(GetParent(m_window), &client);
    SetWindowPos(m_window, HWND_TOP, 0, m_top, client.right, client.bottom - m_top, 0);
    Layout();
}

void CFileView::Layout()
{
    int y = kStripTop;
    for (const HWND button : m_strip)
    {
        MoveWindow(button, 0, y, kStripWidth, kStripButtonHeight, TRUE);
        y += kStripButtonHeight;
    }
    if (m_page)
    {
        m_page->Layout(PageArea());
    }
    InvalidateRect(m_window, nullptr, FALSE);
}

RECT CFileView::PageArea() const
{
    RECT area;
    GetClientRect(m_window, &area);
    area.left = kStripWidth;
    return area;
}

LRESULT CALLBACK CFileView::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_NCCREATE)
    {
        auto* created = static_cast<CFileView*>(reinterpret_cast<CREATESTRUCTW*>(lParam)->lpCreateParams);
        created->m_window = window;
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(created));
    }
    auto* view = reinterpret_cast<CFileView*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (view == nullptr)
    {
        return DefWindowProcW(window, message, wParam, lParam);
    }
    return view->OnMessage(message, wParam, lParam);
}

LRESULT CFileView::OnMessage(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message)
    {
    case WM_COMMAND:
        if (HIWORD(wParam) == BN_CLICKED)
        {
            OnCommand(LOWORD(wParam));
        }
        return 0;
    case WM_PAINT:
        OnPaint();
        return 0;
    case WM_ERASEBKGND:
        return 1;
    case WM_DRAWITEM: {
        const auto& draw = *reinterpret_cast<const DRAWITEMSTRUCT*>(lParam);
        if (draw.CtlID < static_cast<UINT>(kFirstPageItem))
        {
            DrawStripButton(draw);
        }
        else if (m_page)
        {
            m_page->DrawItem(draw);
        }
        return TRUE;
    }
    case WM_CTLCOLORSTATIC:
        if (m_page)
        {
            return m_page->StaticColour(reinterpret_cast<HDC>(wParam), reinterpret_cast<HWND>(lParam));
        }
        return DefWindowProcW(m_window, message, wParam, lParam);
    case WM_NCDESTROY: {
        const HWND window = m_window;
        m_window = nullptr;
        SetWindowLongPtrW(window, GWLP_USERDATA, 0);
        return DefWindowProcW(window, message, wParam, lParam);
    }
    default:
        return DefWindowProcW(m_window, message, wParam, lParam);
    }
}

void CFileView::OnCommand(int id)
{
    if (id == kBackButton || id == IDCANCEL)
    {
        PostMessageW(GetParent(m_window), kFileViewClosed, 0, 0);
    }
    else if (id == IDOK)
    {
        // For an owner-drawn button, Enter arrives as the dialog's default command.
        const int focused = GetDlgCtrlID(GetFocus());
        if (focused != IDOK)
        {
            OnCommand(focused);
        }
    }
    else if (id == kInfoButton)
    {
        ShowPage(kInfoPage);
    }
    else if (id >= kFirstTabButton && id < kFirstTabButton + static_cast<int>(m_tabs.size()))
    {
        ShowPage(id - kFirstTabButton);
    }
    else if (m_page && m_page->FindItem(id) != nullptr)
    {
        // The callback may run a message loop in which the page changes.
        const RibbonItem item = *m_page->FindItem(id);
        OnItem(item);
    }
}

void CFileView::OnItem(const RibbonItem& item)
{
    if (item.kind == RibbonItemKind::Link && !item.target.empty())
    {
        const auto result = reinterpret_cast<INT_PTR>(
            ShellExecuteW(m_window, L"open", item.target.c_str(), nullptr, nullptr, SW_SHOWNORMAL));
        // Above 32 is success; the number itself means nothing.
        const bool isOpened = result > 32;
        m_trace.Event(L"link " + item.id + (isOpened ? L" opened " : L" could not open ") + item.target +
                      (isOpened ? L"" : L": " + std::to_wstring(result)));
    }
    else if (item.kind == RibbonItemKind::Button && !item.onAction.empty() && m_shown != kInfoPage)
    {
        Microsoft::WRL::ComPtr<IDispatch> control = new CRibbonControl(m_trace, item.id, m_context.Get());
        const HWND parent = GetParent(m_window);
        m_tabs[static_cast<size_t>(m_shown)].addIn->CallBack(item.onAction, item.id, control.Get(), nullptr);
        if (item.isDefinitive)
        {
            PostMessageW(parent, kFileViewClosed, 0, 0);
        }
    }
}

void CFileView::ShowPage(int page)
{
    m_page.reset();
    m_shown = page;
    if (page == kInfoPage)
    {
        m_page =
            std::make_unique<CFilePage>(m_window, InfoTab(), [](const RibbonItem&) { return CPicture(); });
        m_trace.Event(L"File view shows Info");
    }
    else
    {
        const FileViewTab& shown = m_tabs[static_cast<size_t>(page)];
        m_page = std::make_unique<CFilePage>(
            m_window, shown.tab, [&](const RibbonItem& item) { return LoadPicture(*shown.addIn, item); });
        m_trace.Event(L"File view shows tab " + shown.tab.id);
    }
    Layout();
}

RibbonTab CFileView::InfoTab() const
{
    RibbonGroup group;
    group.label = L"Account Information";
    group.helperText = m_notes;
    RibbonTab tab;
    tab.firstColumn.push_back(group);
    return tab;
}

CPicture CFileView::LoadPicture(CLoadedAddIn& addIn, const RibbonItem& item)
{
    Microsoft::WRL::ComPtr<IDispatch> control = new CRibbonControl(m_trace, item.id, m_context.Get());
    VARIANT value;
    VariantInit(&value);
    addIn.CallBack(item.getImage, item.id, control.Get(), &value);
    CPicture picture(value);
    VariantClear(&value);
    std::wstring text = L"none";
    if (!picture.IsEmpty())
    {
        const SIZE size = picture.Size();
        text = std::to_wstring(size.cx) + L" x " + std::to_wstring(size.cy) +
               (picture.HasTransparency() ? L", transparent" : L", opaque");
    }
    m_trace.Event(L"picture of " + item.id + L": " + text);
    return picture;
}

void CFileView::OnPaint()
{
    PAINTSTRUCT paint;
    const HDC dc = BeginPaint(m_window, &paint);
    RECT strip;
    GetClientRect(m_window, &strip);
    strip.right = kStripWidth;
    FillBox(dc, strip, kPane);
    FillBox(dc, {kStripWidth - 1, 0, kStripWidth, strip.bottom}, kLine);
    if (m_page)
    {
        m_page->Paint(dc, PageArea());
    }
    EndPaint(m_window, &paint);
}

void CFileView::DrawStripButton(const DRAWITEMSTRUCT& draw)
{
    const int shown = m_shown == kInfoPage ? kInfoButton : kFirstTabButton + m_shown;
    const bool isShown = static_cast<int>(draw.CtlID) == shown;
    RECT box = draw.rcItem;
    FillBox(draw.hDC, box, isShown ? kAccent : kPane);
    if (!isShown)
    {
        FillBox(draw.hDC, {box.right - 1, box.top, box.right, box.bottom}, kLine);
    }
    RECT text = box;
    text.left += kStripIndent;
    DrawLine(draw.hDC, WindowText(draw.hwndItem), text, m_stripFont.Get(), isShown ? kWhite : kText);
    if ((draw.itemState & ODS_FOCUS) != 0)
    {
        InflateRect(&box, -3, -3);
        DrawFocusRect(draw.hDC, &box);
    }
}

} // namespace orva::host
