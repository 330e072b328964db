// The File view: the page that covers Outlook's window and shows what add-ins declare for it.
#pragma once

#include "host/LoadedAddIn.h"
#include "host/Painting.h"
#include "host/RibbonMarkup.h"

#include <windows.h>

#include <string>
#include <vector>

namespace orva::host
{

/// Window class and fixed control ids, for those who look for them. A tab's button has kFirstTabButton plus
/// its number; what a tab shows has ids from kFirstTabItem on, in the order of the markup, and its label as
/// window text (a picture: the control's id).
inline constexpr wchar_t kFileViewClass[] = L"OrvaHostFileView";
inline constexpr int kInfoButton = 700;
inline constexpr int kBackButton = 701;
inline constexpr int kFirstTabButton = 710;
inline constexpr int kFirstTabItem = 1000;
inline constexpr int kInfoNote = 990;

/// A tab and the add-in that its callbacks go to.
struct FileViewTab
{
    RibbonTab tab;
    CLoadedAddIn* addIn;
};

/// A child window that covers its parent's client area. Opens on the first tab, or on "Info" when there is
/// none. The parent is sent kFileViewClosed when the user leaves it.
inline constexpr UINT kFileViewClosed = WM_APP + 10;

class CFileView
{
public:
    /// `notes` is shown on the page "Info"; `context` is the window that ribbon controls belong to, may be
    /// null.
    CFileView(CTrace& trace, HWND parent, std::vector<FileViewTab> tabs,
              const std::vector<std::wstring>& notes, IDispatch* context);
    ~CFileView();
    CFileView(const CFileView&) = delete;
    CFileView& operator=(const CFileView&) = delete;

    HWND Window() const { return m_window; }
    /// Fits the view to its parent.
    void Resize();

private:
    enum class Role
    {
        Heading,
        Helper,
        Item
    };
    /// A child window of the page that is shown.
    struct Piece
    {
        HWND window = nullptr;
        Role role = Role::Item;
        RibbonItem item;
        CPicture picture;
    };
    /// Indices into m_pieces, in the order from top to bottom.
    struct GroupPieces
    {
        int heading = -1;
        int helper = -1;
        int primary = -1;
        std::vector<int> rest;
    };

    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam);
    void OnCommand(int id);
    void OnItem(const Piece& piece);
    void OnPaint();
    void OnDrawItem(const DRAWITEMSTRUCT& draw);
    void DrawStripButton(const DRAWITEMSTRUCT& draw);
    void DrawPieceButton(const DRAWITEMSTRUCT& draw, const Piece& piece);
    LRESULT OnStaticColour(HDC dc, HWND control);

    void ShowPage(int page);
    void MakeTab(const RibbonTab& tab);
    GroupPieces MakeGroup(const RibbonGroup& group);
    int MakeText(const std::wstring& text, Role role);
    int MakeItem(const RibbonItem& item);
    int Add(Piece piece);
    CPicture LoadImage(const RibbonItem& item);
    void AddTip(HWND control, const std::wstring& text);
    void Layout();
    int LayoutColumn(const std::vector<GroupPieces>& groups, int x, int width);
    int LayoutGroup(const GroupPieces& group, int x, int y, int width);
    int Place(int piece, int x, int y, int width);
    SIZE ButtonSize(const Piece& piece) const;
    HFONT FontOf(const Piece& piece) const;

    CTrace& m_trace;
    HWND m_window = nullptr;
    HWND m_tips = nullptr;
    std::vector<FileViewTab> m_tabs;
    std::wstring m_notes;
    Microsoft::WRL::ComPtr<IDispatch> m_context;
    /// -1 is "Info".
    int m_page = -1;
    std::vector<HWND> m_strip;
    std::vector<Piece> m_pieces;
    std::vector<GroupPieces> m_columns[2];
    CFont m_textFont;
    CFont m_headingFont;
    CFont m_linkFont;
    CFont m_stripFont;
    HBRUSH m_white;
};

} // namespace orva::host
