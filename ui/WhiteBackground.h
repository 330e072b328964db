// The white look shared by the update-available and the About dialog.
#pragma once

#include <afxwin.h>

/// Paints the whole client area of `window` white. Returns PatBlt's result.
BOOL PaintWhiteBackground(const CWnd& window, CDC& dc);

/// Sets black text on white in a control's device context and returns the brush for its background.
///
/// Each call creates a brush, which is never deleted. Kept as it is.
HBRUSH MakeControlWhite(CDC& dc);
