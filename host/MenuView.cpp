#include "host/MenuView.h"

namespace orva::host
{
namespace
{

void Fill(HMENU menu, const CCommandBarControls& controls)
{
    for (const auto& control : controls.Items())
    {
        if (!control->IsVisible())
        {
            continue;
        }
        if (control->BeginsGroup())
        {
            AppendMenuW(menu, MF_SEPARATOR, 0, nullptr);
        }
        const UINT state = control->IsEnabled() ? MF_ENABLED : MF_GRAYED;
        UINT_PTR id = control->Command();
        UINT kind = MF_STRING;
        if (control->Type() == kControlPopup)
        {
            const HMENU popup = CreatePopupMenu();
            Fill(popup, static_cast<CCommandBarPopup*>(control.Get())->Controls());
            id = reinterpret_cast<UINT_PTR>(popup);
            kind = MF_POPUP;
        }
        AppendMenuW(menu, kind | state, id, control->Caption().c_str());
    }
}

std::wstring ItemText(HMENU menu, int position)
{
    wchar_t text[256] = L"";
    GetMenuStringW(menu, static_cast<UINT>(position), text, static_cast<int>(std::size(text)), MF_BYPOSITION);
    const UINT state = GetMenuState(menu, static_cast<UINT>(position), MF_BYPOSITION);
    if ((state & MF_SEPARATOR) != 0)
    {
        return L"---";
    }
    return std::wstring(text) + ((state & MF_GRAYED) != 0 ? L" (greyed)" : L"");
}

struct StandardMenu
{
    const wchar_t* caption;
    const wchar_t* items[4];
};

// Only Exit does anything.
constexpr StandardMenu kMenus[] = {
    {L"&File", {L"&New", L"&Open", L"&Print...", L"E&xit"}},
    {L"&Edit", {L"Cu&t", L"&Copy", L"&Paste", L"&Delete"}},
    {L"&View", {L"&Arrange By", L"&Navigation Pane", L"&Reading Pane", L"&Status Bar"}},
    {L"&Go", {L"&Mail", L"&Calendar", L"C&ontacts", L"&Tasks"}},
    {L"&Tools", {L"Send/R&eceive", L"&Find", L"Address &Book...", L"&Options..."}},
    {L"&Actions", {L"&New Mail Message", L"&Reply", L"Reply to A&ll", L"For&ward"}},
    {L"&Help", {L"Stand-in Outlook &Help", L"&About Stand-in Outlook", nullptr, nullptr}},
};

} // namespace

HMENU MakeMenu(const CCommandBar& bar)
{
    const HMENU menu = CreateMenu();
    Fill(menu, bar.Controls());
    return menu;
}

std::vector<std::wstring> DescribeMenu(HMENU menu)
{
    std::vector<std::wstring> lines;
    for (int position = 0; position < GetMenuItemCount(menu); ++position)
    {
        std::wstring line = ItemText(menu, position);
        const HMENU popup = GetSubMenu(menu, position);
        for (int item = 0; popup != nullptr && item < GetMenuItemCount(popup); ++item)
        {
            line += (item == 0 ? L": " : L" | ") + ItemText(popup, item);
        }
        lines.push_back(line);
    }
    return lines;
}

void AddStandardMenus(CCommandBarControls& controls, const std::function<void()>& close)
{
    for (const StandardMenu& menu : kMenus)
    {
        CCommandBarControls& items = controls.AddPopup(menu.caption).Controls();
        for (const wchar_t* item : menu.items)
        {
            if (item == nullptr)
            {
                continue;
            }
            const bool isExit = std::wstring(item) == L"E&xit";
            CCommandBarButton& button = items.AddButton(item, isExit ? close : std::function<void()>());
            button.SetBeginsGroup(isExit);
        }
    }
}

} // namespace orva::host
