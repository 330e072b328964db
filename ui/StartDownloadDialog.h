// The entry point of the download: fresh folder, progress dialog, start of the installer.
#pragma once

#include <afxwin.h>

#include <string>

/// What the publisher has signed, as the update-information file says.
struct CSignedUpdate
{
    /// "major.minor.build".
    CString version;
    /// Base64; see IsSignedBy.
    std::wstring signature;
};

/// Downloads the installer at `url` into a fresh temporary folder and starts it elevated.
///
/// `owner` is disabled while the dialog runs; it may be null. Every outcome is shown to the user, none is
/// returned. Has to be called on the host's UI thread with the add-in's module state active.
///
/// A build that holds the publisher's key starts only a file that fits `signedUpdate`, and none without that.
/// Any other file is deleted, which is one line in the log and, to the user, a failed download. A build
/// without a key ignores `signedUpdate`.
void StartDownloadDialog(CString url, HWND owner, const CSignedUpdate* signedUpdate = nullptr);
