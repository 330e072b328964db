#include "ui/StringBlock.h"

std::u16string_view FindStringInBlock(const void* block, std::size_t size, unsigned index)
{
    const auto* const units = static_cast<const char16_t*>(block);
    const std::size_t end = size / sizeof(char16_t);
    // All sixteen entries are there in a block that a resource compiler wrote, and the index ends the walk.
    // The other bound has always been the size in bytes, for a position in units: a damaged block's walk
    // would go on behind its end, over entries that read as empty ones. What it comes to there is empty in
    // any case, so it ends here with the last unit.
    std::size_t position = 0;
    for (; index != 0 && position < end; --index)
    {
        position += std::size_t{units[position]} + 1;
    }
    if (position >= end || end - position - 1 < units[position])
    {
        return {};
    }
    return {units + position + 1, units[position]};
}
