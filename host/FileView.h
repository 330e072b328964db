// The File view: the page that covers Outlook's mail view and shows what add-ins declare for it.
#pragma once

#include "host/FilePage.h"
#include "host/LoadedAddIn.h"
#include "host/Painting.h"
#include "host/RibbonMarkup.h"

#include <windows.h>

#include <memory>
#include <string>
#include <vector>

namespace orva::host
{

/// Window class and fixed control ids, for tests that look for them. A tab's button has kFirstTabButton plus
/// its index. The ids of the page's controls start at kFirstPageItem.
inline constexpr wchar_t kFileViewClass[] = L"OrvaHostFileView";
inline constexpr int kInfoButton = 700;
inline constexpr int kBackButton = 701;
inline constexpr int kFirstTabButton = 710;
/// The text of the page "Info", which also says why an add-in's tab is missing.
inline constexpr int kInfoNote = kFirstPageItem + 1;

/// Posted to the view's parent when the user leaves it.
inline constexpr UINT kFileViewClosed = WM_APP + 10;

/// A tab and the add-in that its callbacks go to.
struct FileViewTab
{
    RibbonTab tab;
    CLoadedAddIn* addIn;
};

/// A child window that covers its parent's client area below `top`. Opens on the first tab, or on "Info" when
/// there is none.
class CFileView
{
public:
    /// `notes` are shown on the page "Info". `context` is the explorer that ribbon controls belong to; may be
    /// null.
    CFileView(CTrace& trace, HWND parent, int top, std::vector<FileViewTab> tabs,
              const std::vector<std::wstring>& notes, IDispatch* context);
    ~CFileView();
    CFileView(const CFileView&) = delete;
    CFileView& operator=(const CFileView&) = delete;

    HWND Window() const { return m_window; }
    /// Fits the view to its parent.
    void Resize();

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam);
    void OnCommand(int id);
    void OnItem(const RibbonItem& item);
    void OnPaint();
    void DrawStripButton(const DRAWITEMSTRUCT& draw);

    void AddStripButton(const std::wstring& caption, int id);
    void ShowPage(int page);
    RibbonTab InfoTab() const;
    CPicture LoadPicture(CLoadedAddIn& addIn, const RibbonItem& item);
    RECT PageArea() const;
    void Layout();

    CTrace& m_trace;
    HWND m_window = nullptr;
    int m_top;
    std::vector<FileViewTab> m_tabs;
    std::wstring m_notes;
    Microsoft::WRL::ComPtr<IDispatch> m_context;
    /// Index into m_tabs; -1 is "Info".
    int m_shown = -1;
    std::unique_ptr<CFilePage> m_page;
    std::vector<HWND> m_strip;
    CFont m_stripFont;
};

} // namespace orva::host
