// Texts for the report: UTF-8, quotations, and places in a text.
#pragma once

#include <string>
#include <string_view>

namespace publishing
{

std::string Utf8(std::wstring_view text);
std::wstring Wide(std::string_view utf8);

/// `text` in quotation marks on one line: control characters are escaped as in JSON, and what is beyond some
/// 40 units is cut, which three dots show.
std::wstring Quoted(std::wstring_view text);

/// "line 5, column 9" of the unit `index` of `text`. Both count from 1, columns in characters, of which a
/// tabulator is one, as editors do. Lines end with LF, CR LF or CR.
std::wstring PlaceOf(std::wstring_view text, std::size_t index);

/// What stands at `index` up to the end of its line, quoted; "the end of the text" behind its last unit.
std::wstring WhatStandsAt(std::wstring_view text, std::size_t index);

/// The index of the first unit from `index` on that the add-in's reader does not skip as white space.
std::size_t SkipWhiteSpace(std::wstring_view text, std::size_t index);

} // namespace publishing
