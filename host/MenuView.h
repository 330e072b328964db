// The real menu behind the command-bar objects.
#pragma once

#include "host/CommandBars.h"

#include <windows.h>

namespace orva::host
{

/// A new menu that shows the bar's visible controls; items carry the controls' command ids.
HMENU MakeMenu(const CCommandBar& bar);

/// Puts the menus of the stand-in on the bar: File, Edit, View, Go, Tools, Actions and Help. `close` is what
/// Exit does.
void AddStandardMenus(CCommandBarControls& controls, const std::function<void()>& close);

} // namespace orva::host
