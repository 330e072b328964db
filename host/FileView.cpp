// Building and drawing the File view, and what its controls do.
#include "host/FileView.h"

#include "host/LinkWindow.h"
#include "host/RibbonControl.h"

#include <commctrl.h>
#include <shellapi.h>

#include <algorithm>

namespace orva::host
{
namespace
{

constexpr int kInfoPage = -1;
constexpr int kStripWidth = 170;
constexpr int kStripTop = 24;
constexpr int kStripButtonHeight = 40;
constexpr int kMargin = 32;
constexpr int kColumnGap = 40;
constexpr int kItemGap = 8;
constexpr int kGroupGap = 30;
constexpr int kPrimaryGap = 18;
constexpr int kPrimarySize = 88;
constexpr int kSmallButtonHeight = 26;

HWND MakeChild(HWND parent, const wchar_t* windowClass, const std::wstring& text, DWORD style, int id)
{
    return CreateWindowExW(0, windowClass, text.c_str(), WS_CHILD | WS_VISIBLE | style, 0, 0, 0, 0, parent,
                           reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), GetModuleHandleW(nullptr),
                           nullptr);
}

std::wstring WindowText(HWND window)
{
    std::wstring text(static_cast<size_t>(GetWindowTextLengthW(window)) + 1, L'\0');
    text.resize(static_cast<size_t>(GetWindowTextW(window, text.data(), static_cast<int>(text.size()))));
    return text;
}

} // namespace

CFileView::CFileView(CTrace& trace, HWND parent, std::vector<FileViewTab> tabs,
                     const std::vector<std::wstring>& notes, IDispatch* context)
    : m_trace(trace), m_tabs(std::move(tabs)), m_context(context), m_textFont(9, FW_NORMAL),
      m_headingFont(13, FW_SEMIBOLD), m_linkFont(9, FW_NORMAL, true), m_stripFont(10, FW_NORMAL),
      m_white(CreateSolidBrush(kWhite))
{
    for (const std::wstring& note : notes)
        m_notes += note + L"\r\n\r\n";
    if (notes.empty())
        m_notes = L"Account information of the stand-in Outlook.";

    const HINSTANCE instance = GetModuleHandleW(nullptr);
    WNDCLASSEXW windowClass{};
    windowClass.cbSize = sizeof(windowClass);
    windowClass.lpfnWndProc = Procedure;
    windowClass.hInstance = instance;
    windowClass.hCursor = LoadCursorW(nullptr, reinterpret_cast<const wchar_t*>(IDC_ARROW));
    windowClass.lpszClassName = kFileViewClass;
    RegisterClassExW(&windowClass);
    CreateWindowExW(WS_EX_CONTROLPARENT, kFileViewClass, L"File", WS_CHILD | WS_CLIPCHILDREN, 0, 0, 0, 0,
                    parent, nullptr, instance, this);
    if (m_window == nullptr)
        return;
    InitCommonControls();
    m_tips =
        CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr, WS_POPUP | TTS_ALWAYSTIP, CW_USEDEFAULT,
                        CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, m_window, nullptr, instance, nullptr);

    m_strip.push_back(MakeChild(m_window, WC_BUTTONW, L"Info", BS_OWNERDRAW | WS_TABSTOP, kInfoButton));
    for (size_t index = 0; index < m_tabs.size(); ++index)
        m_strip.push_back(MakeChild(m_window, WC_BUTTONW, m_tabs[index].tab.label, BS_OWNERDRAW | WS_TABSTOP,
                                    kFirstTabButton + static_cast<int>(index)));
    m_strip.push_back(
        MakeChild(m_window, WC_BUTTONW, L"Back to mail", BS_OWNERDRAW | WS_TABSTOP, kBackButton));

    ShowPage(m_tabs.empty() ? kInfoPage : 0);
    Resize();
    ShowWindow(m_window, SW_SHOW);
    SetFocus(m_strip[m_tabs.empty() ? 0 : 1]);
}

CFileView::~CFileView()
{
    if (m_window != nullptr)
        DestroyWindow(m_window);
    DeleteObject(m_white);
}

void CFileView::Resize()
{
    RECT client;
    GetClientRect(GetParent(m_window), &client);
    SetWindowPos(m_window, HWND_TOP, 0, 0, client.right, client.bottom, 0);
    Layout();
}

LRESULT CALLBACK CFileView::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_NCCREATE)
    {
        auto* view = static_cast<CFileView*>(reinterpret_cast<CREATESTRUCTW*>(lParam)->lpCreateParams);
        view->m_window = window;
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(view));
    }
    auto* view = reinterpret_cast<CFileView*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (view == nullptr)
        return DefWindowProcW(window, message, wParam, lParam);
    return view->OnMessage(message, wParam, lParam);
}

LRESULT CFileView::OnMessage(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message)
    {
    case WM_COMMAND:
        if (HIWORD(wParam) == BN_CLICKED)
            OnCommand(LOWORD(wParam));
        return 0;
    case WM_PAINT:
        OnPaint();
        return 0;
    case WM_ERASEBKGND:
        return 1;
    case WM_DRAWITEM:
        OnDrawItem(*reinterpret_cast<const DRAWITEMSTRUCT*>(lParam));
        return TRUE;
    case WM_CTLCOLORSTATIC:
        return OnStaticColour(reinterpret_cast<HDC>(wParam), reinterpret_cast<HWND>(lParam));
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
        PostMessageW(GetParent(m_window), kFileViewClosed, 0, 0);
    else if (id == IDOK)
    {
        // Enter reaches a button that draws itself as the dialog's default command.
        const int focused = GetDlgCtrlID(GetFocus());
        if (focused != IDOK)
            OnCommand(focused);
    }
    else if (id == kInfoButton)
        ShowPage(kInfoPage);
    else if (id >= kFirstTabButton && id < kFirstTabButton + static_cast<int>(m_tabs.size()))
        ShowPage(id - kFirstTabButton);
    else if (id >= kFirstTabItem && id < kFirstTabItem + static_cast<int>(m_pieces.size()))
    {
        // The callback may run a message loop in which the page changes.
        const Piece piece = m_pieces[static_cast<size_t>(id - kFirstTabItem)];
        OnItem(piece);
    }
}

void CFileView::OnItem(const Piece& piece)
{
    const RibbonItem& item = piece.item;
    if (item.kind == RibbonItemKind::Link && !item.target.empty())
    {
        const auto result = reinterpret_cast<INT_PTR>(
            ShellExecuteW(m_window, L"open", item.target.c_str(), nullptr, nullptr, SW_SHOWNORMAL));
        // Above 32 is success; what the number is beyond that is each system's own.
        const bool isOpened = result > 32;
        m_trace.Event(L"link " + item.id + (isOpened ? L" opened " : L" could not open ") + item.target +
                      (isOpened ? L"" : L": " + std::to_wstring(result)));
    }
    else if (item.kind == RibbonItemKind::Button && !item.onAction.empty())
    {
        Microsoft::WRL::ComPtr<IDispatch> control = new CRibbonControl(m_trace, item.id, m_context.Get());
        const HWND parent = GetParent(m_window);
        m_tabs[static_cast<size_t>(m_page)].addIn->CallBack(item.onAction, item.id, control.Get(), nullptr);
        if (item.isDefinitive)
            PostMessageW(parent, kFileViewClosed, 0, 0);
    }
}

void CFileView::ShowPage(int page)
{
    for (const Piece& piece : m_pieces)
        DestroyWindow(piece.window);
    m_pieces.clear();
    m_columns[0].clear();
    m_columns[1].clear();
    m_page = page;
    if (page == kInfoPage)
    {
        GroupPieces group;
        group.heading = MakeText(L"Account Information", Role::Heading);
        group.helper = MakeText(m_notes, Role::Helper);
        SetWindowLongPtrW(m_pieces.back().window, GWLP_ID, kInfoNote);
        m_columns[0].push_back(group);
    }
    else
    {
        MakeTab(m_tabs[static_cast<size_t>(page)].tab);
    }
    m_trace.Event(L"File view shows " +
                  (page == kInfoPage ? L"Info" : L"tab " + m_tabs[static_cast<size_t>(page)].tab.id));
    Layout();
}

void CFileView::MakeTab(const RibbonTab& tab)
{
    for (const RibbonGroup& group : tab.firstColumn)
        m_columns[0].push_back(MakeGroup(group));
    for (const RibbonGroup& group : tab.secondColumn)
        m_columns[1].push_back(MakeGroup(group));
}

CFileView::GroupPieces CFileView::MakeGroup(const RibbonGroup& group)
{
    GroupPieces pieces;
    pieces.heading = MakeText(group.label, Role::Heading);
    if (!group.helperText.empty())
        pieces.helper = MakeText(group.helperText, Role::Helper);
    if (group.primary)
        pieces.primary = MakeItem(*group.primary);
    for (const RibbonItem& item : group.top)
        pieces.rest.push_back(MakeItem(item));
    for (const RibbonItem& item : group.bottom)
        pieces.rest.push_back(MakeItem(item));
    return pieces;
}

int CFileView::MakeText(const std::wstring& text, Role role)
{
    Piece piece;
    piece.role = role;
    piece.item.label = text;
    return Add(piece);
}

int CFileView::MakeItem(const RibbonItem& item)
{
    Piece piece;
    piece.item = item;
    piece.picture = LoadImage(item);
    return Add(piece);
}

int CFileView::Add(Piece piece)
{
    const int index = static_cast<int>(m_pieces.size());
    const int id = kFirstTabItem + index;
    const RibbonItemKind kind = piece.role == Role::Item ? piece.item.kind : RibbonItemKind::Label;
    switch (kind)
    {
    case RibbonItemKind::Image:
        piece.window = MakeChild(m_window, WC_STATICW, piece.item.id, SS_OWNERDRAW, id);
        break;
    case RibbonItemKind::Label:
        piece.window = MakeChild(m_window, WC_STATICW, piece.item.label, SS_LEFT | SS_NOPREFIX, id);
        break;
    case RibbonItemKind::Link:
        piece.window = CreateLink(m_window, id, piece.item.label);
        AddTip(piece.window, piece.item.target);
        break;
    case RibbonItemKind::Button:
        piece.window = MakeChild(m_window, WC_BUTTONW, piece.item.label, BS_OWNERDRAW | WS_TABSTOP, id);
        AddTip(piece.window, piece.item.screentip);
        break;
    }
    SendMessageW(piece.window, WM_SETFONT, reinterpret_cast<WPARAM>(FontOf(piece)), FALSE);
    m_pieces.push_back(piece);
    return index;
}

CPicture CFileView::LoadImage(const RibbonItem& item)
{
    if (item.getImage.empty() || m_page == kInfoPage)
        return {};
    Microsoft::WRL::ComPtr<IDispatch> control = new CRibbonControl(m_trace, item.id, m_context.Get());
    VARIANT value;
    VariantInit(&value);
    m_tabs[static_cast<size_t>(m_page)].addIn->CallBack(item.getImage, item.id, control.Get(), &value);
    const CPicture picture(value);
    VariantClear(&value);
    const SIZE size = picture.Size();
    m_trace.Event(L"picture of " + item.id + L": " +
                  (picture.IsEmpty() ? std::wstring(L"none")
                                     : std::to_wstring(size.cx) + L" x " + std::to_wstring(size.cy) +
                                           (picture.HasTransparency() ? L", transparent" : L", opaque")));
    return picture;
}

void CFileView::AddTip(HWND control, const std::wstring& text)
{
    if (m_tips == nullptr || text.empty())
        return;
    std::wstring copy = text;
    TOOLINFOW tool{};
    // Common controls before version 6 refuse the longer structure.
    tool.cbSize = TTTOOLINFOW_V1_SIZE;
    tool.uFlags = TTF_IDISHWND | TTF_SUBCLASS;
    tool.hwnd = m_window;
    tool.uId = reinterpret_cast<UINT_PTR>(control);
    tool.lpszText = copy.data();
    SendMessageW(m_tips, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
}

HFONT CFileView::FontOf(const Piece& piece) const
{
    if (piece.role == Role::Heading)
        return m_headingFont.Get();
    if (piece.role == Role::Item && piece.item.kind == RibbonItemKind::Link)
        return m_linkFont.Get();
    return m_textFont.Get();
}

void CFileView::Layout()
{
    RECT client;
    GetClientRect(m_window, &client);
    int y = kStripTop;
    for (const HWND button : m_strip)
    {
        MoveWindow(button, 0, y, kStripWidth, kStripButtonHeight, TRUE);
        y += kStripButtonHeight;
    }
    const int left = kStripWidth + kMargin;
    const int space = std::max(0, static_cast<int>(client.right) - left - kMargin);
    const bool hasTwo = !m_columns[1].empty();
    const int width = hasTwo ? (space - kColumnGap) / 2 : space;
    LayoutColumn(m_columns[0], left, width);
    LayoutColumn(m_columns[1], left + width + kColumnGap, width);
    InvalidateRect(m_window, nullptr, FALSE);
}

int CFileView::LayoutColumn(const std::vector<GroupPieces>& groups, int x, int width)
{
    int y = kMargin;
    for (const GroupPieces& group : groups)
        y = LayoutGroup(group, x, y, width) + kGroupGap;
    return y;
}

int CFileView::LayoutGroup(const GroupPieces& group, int x, int y, int width)
{
    int bottom = y;
    if (group.primary >= 0)
    {
        const SIZE size = ButtonSize(m_pieces[static_cast<size_t>(group.primary)]);
        MoveWindow(m_pieces[static_cast<size_t>(group.primary)].window, x, y, size.cx, size.cy, TRUE);
        bottom = y + size.cy;
        x += size.cx + kPrimaryGap;
        width -= size.cx + kPrimaryGap;
    }
    y = Place(group.heading, x, y, width);
    if (group.helper >= 0)
        y = Place(group.helper, x, y, width);
    y += kItemGap;
    for (const int piece : group.rest)
        y = Place(piece, x, y, width);
    return std::max(bottom, y);
}

int CFileView::Place(int index, int x, int y, int width)
{
    const Piece& piece = m_pieces[static_cast<size_t>(index)];
    SIZE size{width, 0};
    if (piece.role == Role::Item && piece.item.kind == RibbonItemKind::Image)
        size = piece.picture.Size();
    else if (piece.role == Role::Item && piece.item.kind == RibbonItemKind::Button)
        size = ButtonSize(piece);
    else if (piece.role == Role::Item && piece.item.kind == RibbonItemKind::Link)
        size = TextSize(m_window, piece.item.label, FontOf(piece));
    else
        size.cy = WrappedHeight(m_window, piece.item.label, FontOf(piece), width);
    MoveWindow(piece.window, x, y, size.cx, size.cy, TRUE);
    return y + size.cy + kItemGap;
}

SIZE CFileView::ButtonSize(const Piece& piece) const
{
    const SIZE text = TextSize(m_window, piece.item.label, m_textFont.Get());
    const LONG width = text.cx + 2 * kItemGap;
    if (piece.picture.IsEmpty())
        return {width, kSmallButtonHeight};
    return {std::max<LONG>(kPrimarySize, width), kPrimarySize};
}

void CFileView::OnPaint()
{
    PAINTSTRUCT paint;
    const HDC dc = BeginPaint(m_window, &paint);
    RECT client;
    GetClientRect(m_window, &client);
    RECT strip = client;
    strip.right = kStripWidth;
    FillBox(dc, strip, kPane);
    RECT edge{kStripWidth - 1, 0, kStripWidth, client.bottom};
    FillBox(dc, edge, kLine);
    RECT page = client;
    page.left = kStripWidth;
    FillBox(dc, page, kWhite);
    if (!m_columns[1].empty())
    {
        const LONG middle = (kStripWidth + client.right) / 2;
        const RECT divider{middle, kMargin, middle + 1, client.bottom - kMargin};
        FillBox(dc, divider, kLine);
    }
    EndPaint(m_window, &paint);
}

void CFileView::OnDrawItem(const DRAWITEMSTRUCT& draw)
{
    const int index = static_cast<int>(draw.CtlID) - kFirstTabItem;
    if (index < 0)
    {
        DrawStripButton(draw);
        return;
    }
    if (index >= static_cast<int>(m_pieces.size()))
        return;
    const Piece& piece = m_pieces[static_cast<size_t>(index)];
    FillBox(draw.hDC, draw.rcItem, kWhite);
    if (piece.item.kind == RibbonItemKind::Image)
        piece.picture.Draw(draw.hDC, 0, 0);
    else
        DrawPieceButton(draw, piece);
}

void CFileView::DrawStripButton(const DRAWITEMSTRUCT& draw)
{
    const int id = static_cast<int>(draw.CtlID);
    const bool isShown =
        (m_page == kInfoPage && id == kInfoButton) || (m_page != kInfoPage && id == kFirstTabButton + m_page);
    RECT box = draw.rcItem;
    FillBox(draw.hDC, box, isShown ? kAccent : kPane);
    if (!isShown)
    {
        const RECT edge{box.right - 1, box.top, box.right, box.bottom};
        FillBox(draw.hDC, edge, kLine);
    }
    RECT text = box;
    text.left += kPrimaryGap;
    DrawLine(draw.hDC, WindowText(draw.hwndItem), text, m_stripFont.Get(), isShown ? kWhite : kText);
    if ((draw.itemState & ODS_FOCUS) != 0)
    {
        InflateRect(&box, -3, -3);
        DrawFocusRect(draw.hDC, &box);
    }
}

void CFileView::DrawPieceButton(const DRAWITEMSTRUCT& draw, const Piece& piece)
{
    RECT box = draw.rcItem;
    FillBox(draw.hDC, box, kLine);
    InflateRect(&box, -1, -1);
    FillBox(draw.hDC, box, (draw.itemState & ODS_SELECTED) != 0 ? kLine : kPane);
    RECT text = box;
    if (!piece.picture.IsEmpty())
    {
        const SIZE size = piece.picture.Size();
        piece.picture.Draw(draw.hDC, (box.left + box.right - size.cx) / 2, box.top + kItemGap + 4);
        text.top = box.top + kItemGap + 4 + size.cy;
    }
    DrawLine(draw.hDC, piece.item.label, text, m_textFont.Get(), kText, DT_CENTER);
    if ((draw.itemState & ODS_FOCUS) != 0)
    {
        InflateRect(&box, -2, -2);
        DrawFocusRect(draw.hDC, &box);
    }
}

LRESULT CFileView::OnStaticColour(HDC dc, HWND control)
{
    COLORREF colour = kText;
    for (const Piece& piece : m_pieces)
    {
        if (piece.window == control && piece.role == Role::Heading)
            colour = kHeading;
        else if (piece.window == control && piece.role == Role::Helper)
            colour = kQuietText;
    }
    SetTextColor(dc, colour);
    SetBkColor(dc, kWhite);
    return reinterpret_cast<LRESULT>(m_white);
}

} // namespace orva::host
