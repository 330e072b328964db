// The line that tells the user which version of the add-in is installed.
#pragma once

#include <afxwin.h>

/// "Version 1.2.0 (64-bit)" in the user's language.
CString FormatVersionLine();
