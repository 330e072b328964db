// Finds out whether a newer build is published and, if so, offers and installs it.
#pragma once

#include <json_spirit.h>

#include <windef.h>

/// Runs one update check on the calling thread, the host's UI thread: fetches the update-information file,
/// compares the published version with the add-in's own, offers a newer build and, on the user's consent,
/// downloads and starts it.
///
/// `owner` owns every message box; the caller disables it before the call and enables it after. `silent`
/// suppresses most error messages: the check at the host's start must not disturb. Returns true when the
/// check ended with something that was, or not being silent would have been, shown to the user: an offer or
/// an error. Returns false when the published build is not newer than the installed one. Keeps no state: a
/// declined build is offered again next time.
///
/// A build that holds the publisher's key offers nothing whose entry has no text "signature", as it offers
/// nothing without a download link; StartDownloadDialog then verifies the installer. A build without a key
/// ignores that member.
///
/// Throws std::runtime_error of json_spirit when a member has another type than expected ("value type is F
/// not E"), std::out_of_range when the server sends no usable Date header, and CInternetException* when no
/// Internet session can be opened.
bool CheckForUpdate(HWND owner, bool silent);

/// CheckForUpdate on the user's request: not silent, and says so when the installed version is already the
/// latest.
void CheckForUpdateExplicit(HWND owner);

/// CheckForUpdateExplicit for a button's handler: disables `owner` meanwhile (null is allowed).
///
/// An exception of the check ends here. It is logged under `function`, the handler's name, and the user is
/// told that the update information could not be parsed (std::runtime_error) or that the connection failed
/// (any other).
void CheckForUpdateOnClick(const char* function, HWND owner) noexcept;

/// Whether `value` is missing (null). If it is and `silent` is false, also tells the user that the update
/// information could not be parsed. A value of any other type passes, whether it is the expected one or not.
bool CheckJSONObject(json_spirit::wmValue value, HWND owner, bool silent);
