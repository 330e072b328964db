// What the URL handling asks of the system: the seam at which other systems can stand in for Windows.
#pragma once

#include <cstdint>
#include <string>

/// The characters that a buffer for a part of a URL is said to have.
constexpr std::uint32_t kUrlPartCapacity = 255;

/// Widens `text` with the thread's ANSI code page.
std::wstring WidenAnsi(const std::string& text);

/// Splits `url` into host and path, each written into a buffer of kUrlPartCapacity characters, and gives the
/// number of the scheme and the port. Returns false for a text that is no URL or has a part that does not
/// fit.
bool SystemCrackUrl(const std::wstring& url, wchar_t* host, wchar_t* path, int& scheme, std::uint16_t& port);
