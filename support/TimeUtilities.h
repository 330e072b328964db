// Dates of HTTP headers and time-stamp texts, free of Windows headers.
#pragma once

#include <ctime>
#include <string>

/// The index, 0 to 11, of a month's three-letter English name in lower case; -1 for any other text.
int MonthFromName(const std::string& name);

/// Reads a date such as "Tue, 15 Nov 1994 08:12:31 GMT" by position: weekday and zone are ignored.
///
/// The time is normalised as local time although headers are in GMT: the hours stay as the header says.
/// Numbers are read up to their first non-digit, 0 if there is none. Throws std::out_of_range with the text
/// "invalid vector<T> subscript" for a text of fewer than seven parts.
struct tm ParseHttpDate(std::string text);

/// The seconds since 1970, truncated to a signed 32-bit number, in decimal.
std::string GetTimestampString();
std::wstring GetTimestampStringW();
