// Finding one string in a block of a module's string table.
#pragma once

#include <cstddef>
#include <string_view>

/// The string `index` of the string-table block of `size` bytes at `block`.
///
/// A block is a sequence of counted strings: a 16-bit length and that many UTF-16 units, little-endian.
/// Returns an empty string when the entry is empty, does not exist or does not lie inside the block. The
/// result is in the block and lives as long; the block begins at an even address, as every resource does.
std::u16string_view FindStringInBlock(const void* block, std::size_t size, unsigned index);
