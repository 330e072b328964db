// The entry point of the download: fresh folder, progress dialog, start of the installer.
#pragma once

#include <afxwin.h>

/// Downloads the installer at `url` into a fresh temporary folder and starts it elevated.
///
/// `owner` is disabled while the dialog runs; it may be null. Every outcome is shown to the user, none is
/// returned. Has to be called on the host's UI thread with the add-in's module state active.
void StartDownloadDialog(CString url, HWND owner);
