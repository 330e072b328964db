// Fills the Backstage markup's placeholders with the texts of the user's language.
#pragma once

#include <string>

/// Replaces every placeholder ("__IDS_...__") of `markup` by its localized string, one after the other in a
/// fixed order, each in all of the text that the earlier ones left.
///
/// A string that holds a later placeholder is therefore expanded, one that holds its own is not. The strings
/// go in as they are, without XML escaping; one that holds a double quote ends its attribute, and Office then
/// refuses the markup.
void FillBackstageMarkup(std::wstring& markup);
