// Fills the Backstage markup's placeholders with the texts of the user's language.
#pragma once

#include <string>

/// Replaces every placeholder ("__IDS_...__") of `markup` by its localized string, in a fixed order.
///
/// The strings go in as they are, without XML escaping; one that holds a double quote ends its attribute, and
/// Office then refuses the markup. A string that holds a later placeholder is expanded by that later pass,
/// one that holds its own is not.
void FillBackstageMarkup(std::wstring& markup);
