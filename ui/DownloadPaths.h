// Names the file that a download is written to: a fresh folder under the user's temporary folder.
#pragma once

#include <afxwin.h>

/// The text after the last "/" of `url`; empty for an empty `url` and for one without "/".
CString GetFileNameFromUrl(const CString& url);

/// The user's temporary folder as GetTempPathW gives it, ending with a backslash. Empty when Windows names
/// none.
CString GetTempDirectory();

/// "osc" and six characters chosen by the C runtime's _mktemp_s. The runtime looks for an unused name in the
/// current folder only, so a second call usually gives the same name again.
CString MakeTempName();

/// Creates a new folder under the temporary folder and returns its path, ending with a backslash.
///
/// A name that exists already is never used: the next name is tried. Any other failure of CreateDirectoryW is
/// not reported; creating the file in the folder then fails. Empty only if too many names exist already.
CString CreateTempDownloadDirectory();
