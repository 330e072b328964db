// The mail view of the main window: painted only, so that the window looks like a mail program's.
#pragma once

#include <windows.h>

namespace orva::host
{

/// Height of the strip with the tabs above the mail view.
inline constexpr int kTabStripHeight = 30;

/// Paints folders, messages and the reading pane into the client area, below a strip of tabs if there is one.
void PaintMailPage(HDC dc, const RECT& client, bool hasTabs, HFONT font, HFONT boldFont);

} // namespace orva::host
