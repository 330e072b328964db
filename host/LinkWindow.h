// A hyperlink as a child window: its caption underlined, clicked by mouse, Enter or Space.
#pragma once

#include <windows.h>

#include <string>

namespace orva::host
{

/// Window class of links, for those who look for them.
inline constexpr wchar_t kLinkClass[] = L"OrvaHostLink";

/// Makes a link. It reports a click as a button does: WM_COMMAND with BN_CLICKED to its parent, and BM_CLICK
/// clicks it. WM_SETFONT sets the font, which the caller keeps. Null on failure.
HWND CreateLink(HWND parent, int id, const std::wstring& caption);

} // namespace orva::host
