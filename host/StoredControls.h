// The buttons that add-ins have added to the menus without Temporary. As in Outlook, they are stored when the
// program ends and restored at the next start, with or without the add-in.
#pragma once

#include "host/CommandBars.h"

namespace orva::host
{

/// The current user's key with one value for each stored button.
inline constexpr wchar_t kStoredControlsKey[] = L"Software\\ORVA Stand-in Outlook\\Controls";

/// Stores the lasting buttons of these menus in place of what was stored before.
void StoreControls(const CCommandBarControls& menus);

/// Adds each stored button to the end of its menu.
void RestoreControls(const CCommandBarControls& menus);

} // namespace orva::host
