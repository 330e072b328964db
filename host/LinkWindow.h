// A hyperlink as a child window: its caption underlined, clicked by mouse, Enter or Space.
#pragma once

#include <windows.h>

#include <string>

namespace orva::host
{

/// Window class of links, for tests that look for them.
inline constexpr wchar_t kLinkClass[] = L"OrvaHostLink";

/// Creates a link; null on failure. Like a button it sends WM_COMMAND with BN_CLICKED to its parent, and
/// BM_CLICK clicks it. The caller owns the font that it sets with WM_SETFONT.
HWND CreateLink(HWND parent, int id, const std::wstring& caption);

} // namespace orva::host
