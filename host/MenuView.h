// The real menu behind the command-bar objects.
#pragma once

#include "host/CommandBars.h"

#include <windows.h>

#include <string>
#include <vector>

namespace orva::host
{

/// A new menu that shows the bar's visible controls; items carry the controls' command ids.
HMENU MakeMenu(const CCommandBar& bar);

/// What a real menu shows, a line for each menu of the bar: `&Help: &Contents | &About (greyed)`. Read back
/// from the menu itself, since no other process can.
std::vector<std::wstring> DescribeMenu(HMENU menu);

/// Puts the menus of the stand-in on the bar: File, Edit, View, Go, Tools, Actions and Help. `close` is what
/// Exit does.
void AddStandardMenus(CCommandBarControls& controls, const std::function<void()>& close);

} // namespace orva::host
