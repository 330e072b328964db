// Chooses the description of a published build for the user's language.
#pragma once

#include <afxwin.h>
#include <json_spirit.h>

/// The text for the language of Office's user interface from the "description" member of the update's entry,
/// else its "default" text, else the empty string. A language's empty text is returned as it is, without
/// falling back.
///
/// Throws json_spirit's type error (std::runtime_error) when "description" is not an object or the chosen
/// member is not a string.
CString DetermineUpdateDescription(const json_spirit::wmObject& entry);

/// The same for the user-interface language with this id, whatever Office's is.
CString ChooseDescription(const json_spirit::wmObject& entry, WORD language);
