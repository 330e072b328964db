// Conversions between UTF-16 and UTF-8, and lists of lines.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace orva::test
{

/// The text in UTF-8. Lone surrogates become U+FFFD.
std::string Utf8(std::wstring_view text);

/// The UTF-8 text as UTF-16.
std::wstring Widen(std::string_view text);

/// The lines of a text, without their ends (CR LF or LF); a last line without an end counts as one.
std::vector<std::string> SplitLines(std::string_view text);

/// The lines of both, one after the other.
std::vector<std::string> Joined(std::vector<std::string> first, const std::vector<std::string>& second);

} // namespace orva::test
