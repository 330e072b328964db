// The white look shared by the update-available and the About dialog.
#pragma once

#include <afxwin.h>

/// Paints the whole client area of `window` white. Returns PatBlt's result.
BOOL PaintWhiteBackground(const CWnd& window, CDC& dc);

/// Sets black text on white in a control's device context and returns the brush for its background.
///
/// The brush is made anew for each call and never deleted, since a dialog has no later moment at which the
/// control is surely done with it; the number of such messages in a dialog's life is small.
HBRUSH MakeControlWhite(CDC& dc);
