#include "host/FilePage.h"

#include "host/LinkWindow.h"

#include <commctrl.h>

#include <algorithm>

namespace orva::host
{
namespace
{

constexpr int kMargin = 32;
constexpr int kColumnGap = 48;
constexpr int kItemGap = 8;
constexpr int kGroupGap = 30;
constexpr int kPrimaryGap = 18;
constexpr int kPrimarySize = 88;
constexpr int kPictureTop = 14;
constexpr int kSmallButtonHeight = 26;

HWND MakeChild(HWND parent, const wchar_t* windowClass, const std::wstring& text, DWORD style, int id)
{
    return CreateWindowExW(0, windowClass, text.c_str(), WS_CHILD | WS_VISIBLE | style, 0, 0, 0, 0, parent,
                           reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), GetModuleHandleW(nullptr),
                           nullptr);
}

} // namespace

CFilePage::CFilePage(HWND view, const RibbonTab& tab, const PictureLoader& loadPicture)
    : m_view(view), m_tips(CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr, WS_POPUP | TTS_ALWAYSTIP,
                                           CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, view,
                                           nullptr, GetModuleHandleW(nullptr), nullptr)),
      m_textFont(9, FW_NORMAL), m_headingFont(13, FW_SEMIBOLD), m_linkFont(9, FW_NORMAL, true),
      m_white(CreateSolidBrush(kWhite))
{
    for (const RibbonGroup& group : tab.firstColumn)
    {
        m_columns[0].push_back(MakeGroup(group, loadPicture));
    }
    for (const RibbonGroup& group : tab.secondColumn)
    {
        m_columns[1].push_back(MakeGroup(group, loadPicture));
    }
}

CFilePage::~CFilePage()
{
    for (const PageControl& control : m_controls)
    {
        DestroyWindow(control.window);
    }
    DestroyWindow(m_tips);
    DeleteObject(m_white);
}

CFilePage::GroupControls CFilePage::MakeGroup(const RibbonGroup& group, const PictureLoader& loadPicture)
{
    GroupControls controls;
    controls.heading = MakeText(group.label, Role::Heading);
    if (!group.helperText.empty())
    {
        controls.helper = MakeText(group.helperText, Role::Helper);
    }
    if (group.primary)
    {
        controls.primary = MakeItem(*group.primary, loadPicture);
    }
    for (const RibbonItem& item : group.top)
    {
        controls.rest.push_back(MakeItem(item, loadPicture));
    }
    for (const RibbonItem& item : group.bottom)
    {
        controls.rest.push_back(MakeItem(item, loadPicture));
    }
    return controls;
}

int CFilePage::MakeText(const std::wstring& text, Role role)
{
    PageControl control;
    control.role = role;
    control.item.label = text;
    return Add(control);
}

int CFilePage::MakeItem(const RibbonItem& item, const PictureLoader& loadPicture)
{
    PageControl control;
    control.item = item;
    if (!item.getImage.empty())
    {
        control.picture = loadPicture(item);
    }
    return Add(control);
}

int CFilePage::Add(PageControl control)
{
    const int index = static_cast<int>(m_controls.size());
    const int id = kFirstPageItem + index;
    const RibbonItem& item = control.item;
    switch (item.kind)
    {
    case RibbonItemKind::Image:
        control.window = MakeChild(m_view, WC_STATICW, item.id, SS_OWNERDRAW, id);
        break;
    case RibbonItemKind::Label:
        control.window = MakeChild(m_view, WC_STATICW, item.label, SS_LEFT | SS_NOPREFIX, id);
        break;
    case RibbonItemKind::Link:
        control.window = CreateLink(m_view, id, item.label);
        AddTip(control.window, item.target);
        break;
    case RibbonItemKind::Button:
        control.window = MakeChild(m_view, WC_BUTTONW, item.label, BS_OWNERDRAW | WS_TABSTOP, id);
        AddTip(control.window, item.screentip);
        break;
    }
    SendMessageW(control.window, WM_SETFONT, reinterpret_cast<WPARAM>(FontOf(control)), FALSE);
    m_controls.push_back(control);
    return index;
}

void CFilePage::AddTip(HWND control, const std::wstring& text) const
{
    if (text.empty())
    {
        return;
    }
    std::wstring copy = text;
    TOOLINFOW tool{};
    // Common controls before version 6 refuse the longer structure.
    tool.cbSize = TTTOOLINFOW_V1_SIZE;
    tool.uFlags = TTF_IDISHWND | TTF_SUBCLASS;
    tool.hwnd = m_view;
    tool.uId = reinterpret_cast<UINT_PTR>(control);
    tool.lpszText = copy.data();
    SendMessageW(m_tips, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
}

const RibbonItem* CFilePage::FindItem(int id) const
{
    const int index = id - kFirstPageItem;
    if (index < 0 || index >= static_cast<int>(m_controls.size()))
    {
        return nullptr;
    }
    const PageControl& control = m_controls[static_cast<size_t>(index)];
    return control.role == Role::Item ? &control.item : nullptr;
}

HFONT CFilePage::FontOf(const PageControl& control) const
{
    if (control.role == Role::Heading)
    {
        return m_headingFont.Get();
    }
    return control.item.kind == RibbonItemKind::Link ? m_linkFont.Get() : m_textFont.Get();
}

void CFilePage::Layout(const RECT& area) const
{
    const int left = area.left + kMargin;
    const int top = area.top + kMargin;
    const int space = std::max(0, static_cast<int>(area.right) - kMargin - left);
    const int width = m_columns[1].empty() ? space : (space - kColumnGap) / 2;
    LayoutColumn(m_columns[0], left, top, width);
    LayoutColumn(m_columns[1], left + width + kColumnGap, top, width);
}

void CFilePage::LayoutColumn(const std::vector<GroupControls>& groups, int x, int y, int width) const
{
    for (const GroupControls& group : groups)
    {
        y = LayoutGroup(group, x, y, width) + kGroupGap;
    }
}

int CFilePage::LayoutGroup(const GroupControls& group, int x, int y, int width) const
{
    int bottom = y;
    if (group.primary >= 0)
    {
        // The primary button stands to the left of all the rest.
        const PageControl& primary = m_controls[static_cast<size_t>(group.primary)];
        const SIZE size = ButtonSize(primary);
        MoveWindow(primary.window, x, y, size.cx, size.cy, TRUE);
        bottom = y + size.cy;
        x += size.cx + kPrimaryGap;
        width -= size.cx + kPrimaryGap;
    }
    y = Place(group.heading, x, y, width);
    if (group.helper >= 0)
    {
        y = Place(group.helper, x, y, width);
    }
    y += kItemGap;
    for (const int control : group.rest)
    {
        y = Place(control, x, y, width);
    }
    return std::max(bottom, y);
}

int CFilePage::Place(int index, int x, int y, int width) const
{
    const PageControl& control = m_controls[static_cast<size_t>(index)];
    SIZE size{width, 0};
    switch (control.item.kind)
    {
    case RibbonItemKind::Image:
        size = control.picture.Size();
        break;
    case RibbonItemKind::Label:
        size.cy = WrappedHeight(m_view, control.item.label, FontOf(control), width);
        break;
    case RibbonItemKind::Link:
        size = TextSize(m_view, control.item.label, FontOf(control));
        break;
    case RibbonItemKind::Button:
        size = ButtonSize(control);
        break;
    }
    MoveWindow(control.window, x, y, size.cx, size.cy, TRUE);
    return y + size.cy + kItemGap;
}

SIZE CFilePage::ButtonSize(const PageControl& control) const
{
    const SIZE text = TextSize(m_view, control.item.label, m_textFont.Get());
    const LONG width = text.cx + 2 * kItemGap;
    if (control.picture.IsEmpty())
    {
        return {width, kSmallButtonHeight};
    }
    return {std::max<LONG>(kPrimarySize, width), kPrimarySize};
}

void CFilePage::Paint(HDC dc, const RECT& area) const
{
    FillBox(dc, area, kWhite);
    if (m_columns[1].empty())
    {
        return;
    }
    const LONG middle = (area.left + area.right) / 2;
    FillBox(dc, {middle, area.top + kMargin, middle + 1, area.bottom - kMargin}, kLine);
}

void CFilePage::DrawItem(const DRAWITEMSTRUCT& draw) const
{
    const size_t index = draw.CtlID - static_cast<UINT>(kFirstPageItem);
    if (index >= m_controls.size())
    {
        return;
    }
    const PageControl& control = m_controls[index];
    FillBox(draw.hDC, draw.rcItem, kWhite);
    if (control.item.kind == RibbonItemKind::Image)
    {
        control.picture.Draw(draw.hDC, 0, 0);
    }
    else
    {
        DrawButton(draw, control);
    }
}

void CFilePage::DrawButton(const DRAWITEMSTRUCT& draw, const PageControl& control) const
{
    RECT box = draw.rcItem;
    FillBox(draw.hDC, box, kLine);
    InflateRect(&box, -1, -1);
    FillBox(draw.hDC, box, (draw.itemState & ODS_SELECTED) != 0 ? kLine : kPane);
    RECT text = box;
    if (!control.picture.IsEmpty())
    {
        const SIZE size = control.picture.Size();
        control.picture.Draw(draw.hDC, (box.left + box.right - size.cx) / 2, box.top + kPictureTop);
        text.top = box.top + kPictureTop + size.cy;
    }
    DrawLine(draw.hDC, control.item.label, text, m_textFont.Get(), kText, DT_CENTER);
    if ((draw.itemState & ODS_FOCUS) != 0)
    {
        InflateRect(&box, -2, -2);
        DrawFocusRect(draw.hDC, &box);
    }
}

LRESULT CFilePage::StaticColour(HDC dc, HWND control) const
{
    COLORREF colour = kText;
    for (const PageControl& each : m_controls)
    {
        if (each.window == control && each.role == Role::Heading)
        {
            colour = kHeading;
        }
        else if (each.window == control && each.role == Role::Helper)
        {
            colour = kQuietText;
        }
    }
    SetTextColor(dc, colour);
    SetBkColor(dc, kWhite);
    return reinterpret_cast<LRESULT>(m_white);
}

} // namespace orva::host
