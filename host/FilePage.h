// One page of the File view: headings, texts, links, pictures and buttons in up to two columns.
#pragma once

#include "host/Painting.h"
#include "host/RibbonMarkup.h"

#include <windows.h>

#include <functional>
#include <string>
#include <vector>

namespace orva::host
{

/// Id of the page's first control. The others follow in the order of the markup, headings and helper texts
/// included.
inline constexpr int kFirstPageItem = 1000;

/// The controls are children of the view, so that Tab reaches them after the view's own controls. The window
/// text of each is its label, or its id if it is a picture. The page destroys them.
class CFilePage
{
public:
    using PictureLoader = std::function<CPicture(const RibbonItem&)>;

    /// Calls `loadPicture` once for each control that has a picture.
    CFilePage(HWND view, const RibbonTab& tab, const PictureLoader& loadPicture);
    ~CFilePage();
    CFilePage(const CFilePage&) = delete;
    CFilePage& operator=(const CFilePage&) = delete;

    void Layout(const RECT& area) const;
    void Paint(HDC dc, const RECT& area) const;
    /// For the view's WM_DRAWITEM and WM_CTLCOLORSTATIC.
    void DrawItem(const DRAWITEMSTRUCT& draw) const;
    LRESULT StaticColour(HDC dc, HWND control) const;
    /// The control with this id; null when there is none or it is a heading or helper text.
    const RibbonItem* FindItem(int id) const;

private:
    enum class Role
    {
        Heading,
        Helper,
        Item
    };
    struct PageControl
    {
        HWND window = nullptr;
        Role role = Role::Item;
        RibbonItem item;
        CPicture picture;
    };
    /// Indices into m_controls; -1 for none.
    struct GroupControls
    {
        int heading = -1;
        int helper = -1;
        int primary = -1;
        std::vector<int> rest;
    };

    GroupControls MakeGroup(const RibbonGroup& group, const PictureLoader& loadPicture);
    int MakeText(const std::wstring& text, Role role);
    int MakeItem(const RibbonItem& item, const PictureLoader& loadPicture);
    int Add(PageControl control);
    void AddTip(HWND control, const std::wstring& text) const;
    void LayoutColumn(const std::vector<GroupControls>& groups, int x, int y, int width) const;
    int LayoutGroup(const GroupControls& group, int x, int y, int width) const;
    int Place(int control, int x, int y, int width) const;
    SIZE ButtonSize(const PageControl& control) const;
    HFONT FontOf(const PageControl& control) const;
    void DrawButton(const DRAWITEMSTRUCT& draw, const PageControl& control) const;

    HWND m_view;
    HWND m_tips;
    std::vector<PageControl> m_controls;
    std::vector<GroupControls> m_columns[2];
    CFont m_textFont;
    CFont m_headingFont;
    CFont m_linkFont;
    HBRUSH m_white;
};

} // namespace orva::host
