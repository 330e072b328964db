// Text conversions and replacements.
#pragma once

#include <afxwin.h>

#include <string>

/// Keeps the low byte of every UTF-16 unit (U+00E4 becomes E4, U+0416 becomes 16); the length stays the same.
/// Not a code-page conversion: log lines, host names and headers depend on exactly these bytes.
std::string WideToNarrow(std::wstring text);

/// Widens every byte with its sign extended to 16 bits: 00 to 7F become U+0000 to U+007F, 80 to FF become
/// U+FF80 to U+FFFF. For the upper half it is therefore not the inverse of WideToNarrow, and its callers
/// count on that.
std::wstring NarrowToWide(std::string text);

/// Replaces every `what` in `text` by `with`, from left to right; inserted text is not searched again.
/// An empty `what` changes nothing: it would match without end.
void ReplaceAll(std::wstring& text, const std::wstring& what, const std::wstring& with);
void ReplaceAll(std::wstring& text, const std::wstring& what, const CString& with);

/// Escapes "&", "<" and ">" as hexadecimal character references; quotes and apostrophes stay.
///
/// An ampersand that is escaped as "&#x26;" already is not escaped twice. The price is that every "#x26;"
/// vanishes first, also one without an ampersand before it.
std::wstring EscapeXml(std::wstring text);
