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

/// What a real menu shows, a line for each menu of the bar: `&Help: &Contents | &About (greyed)`. For the
/// trace, since no other process can read the menu.
std::vector<std::wstring> DescribeMenu(HMENU menu);

/// Adds the stand-in's menus File, Edit, View, Go, Tools, Actions and Help. `close` is called by Exit.
void AddStandardMenus(CCommandBarControls& controls, const std::function<void()>& close);

} // namespace orva::host
