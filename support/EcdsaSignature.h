// Decodes the text of a signature, free of Windows headers.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

/// The bytes of one number of a signature over the curve P-256.
constexpr std::size_t kEcdsaNumberSize = 32;

/// The two numbers of a signature, r and s, one after the other, each big-endian.
using EcdsaSignature = std::array<std::uint8_t, 2 * kEcdsaNumberSize>;

/// Decodes base64 (RFC 4648, section 4) of a DER ECDSA-Sig-Value (RFC 3279, section 2.2.3) over the curve
/// P-256.
///
/// Returns false, with `signature` in an unspecified state, unless the text is the only one that stands for
/// these numbers: base64 without blanks and line ends, padded, with unused bits of zero; integers in their
/// shortest form, nothing after them; 1 <= r, s < n.
bool DecodeEcdsaSignature(std::wstring_view text, EcdsaSignature& signature);
