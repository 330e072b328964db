// Reading of a text into a value.
#pragma once

#include "json_spirit_value.h"

#include <string>

namespace json_spirit
{
/// The number of arrays and objects that may be open at once.
constexpr int kMaximumDepth = 64;

/// Reads the first value of `text` into `value`; what follows that value is ignored.
///
/// The value is filled while the text is read. On a syntax error it throws Error_position and leaves
/// everything read so far in `value`: an array or object is in place from its opening bracket on, any other
/// value once it is complete. `value` is not touched if the text starts with no value.
void read_or_throw(const std::wstring& text, wmValue& value);
} // namespace json_spirit
