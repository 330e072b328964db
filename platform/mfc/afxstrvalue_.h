// The texts that take the place of CString::Format's placeholders.
#pragma once

#include "afxstrplaceholder_.h"

#include <string>

/// The argument as the placeholder wants it, filled up to its width. `argument` must be of the placeholder's
/// kind: an integer for d, i, u, o, x, X, c and C, a text of FormatStringKind for s and S.
std::wstring FormatInteger(const FormatPlaceholder& placeholder, const CFormatArgument& argument);
std::wstring FormatCharacter(const FormatPlaceholder& placeholder, const CFormatArgument& argument);
std::wstring FormatString(const FormatPlaceholder& placeholder, const CFormatArgument& argument);

/// Which text %s or %S stands for.
CFormatArgument::Kind FormatStringKind(const FormatPlaceholder& placeholder);
