// Fills the Backstage markup's placeholders with the texts of the user's language.
#pragma once

#include <string>

/// Replaces the placeholders ("__IDS_...__") of `markup` by their localized strings, one placeholder after
/// the other in a fixed order. A string that holds a later placeholder is therefore expanded, one that holds
/// its own is not.
///
/// The strings are inserted without XML escaping: a double quote ends its attribute, and Office then rejects
/// the markup.
void FillBackstageMarkup(std::wstring& markup);
