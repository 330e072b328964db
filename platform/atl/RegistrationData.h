// The data that registration scripts give to values, and how their texts are read. Knows nothing of any
// registry.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace ATL
{

/// The data of a value: string, DWORD, binary or multi-string.
using RegistrationData =
    std::variant<std::wstring, std::uint32_t, std::vector<std::uint8_t>, std::vector<std::wstring>>;

/// Scripts compare words by ASCII rules, whatever the locale.
constexpr wchar_t ToLowerAsciiLetter(wchar_t c)
{
    return c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c - L'A' + L'a') : c;
}

/// Reads a decimal number, or a hexadecimal one after 0x or &H. False for anything else and beyond 32 bits.
bool ParseRegistrationDword(std::wstring_view text, std::uint32_t& value);

/// Reads pairs of hexadecimal digits. False for anything else.
bool ParseRegistrationBinary(std::wstring_view text, std::vector<std::uint8_t>& bytes);

/// Splits a text at each backslash followed by the digit zero. An empty part would end the list for every
/// reader of the registry, so there is none.
std::vector<std::wstring> ParseRegistrationMultiString(std::wstring_view text);

} // namespace ATL
