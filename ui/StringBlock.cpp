// Finding one string in a block of a module's string table.
#include "ui/StringBlock.h"

namespace
{
/// The unit at `position`. What lies behind the block's end reads as 0, which is how an empty entry reads.
char16_t UnitAt(std::u16string_view units, std::size_t position)
{
    return position < units.size() ? units[position] : u'\0';
}
} // namespace

std::u16string_view FindStringInBlock(const void* block, std::size_t size, unsigned index)
{
    const std::u16string_view units(static_cast<const char16_t*>(block), size / sizeof(char16_t));
    std::size_t position = 0;
    unsigned count = 0;
    // The position counts 16-bit units, the bound is the size in bytes: kept as it has always been. It never
    // decides in a block that a resource compiler wrote, since all sixteen entries are there and the index
    // ends the walk. In a damaged block it only ends the walk later, over units that read as empty entries.
    while (position < size && count != index)
    {
        position += std::size_t{UnitAt(units, position)} + 1;
        ++count;
    }

    const std::size_t length = UnitAt(units, position);
    if (count != index || length == 0 || units.size() - position - 1 < length)
    {
        return {};
    }
    return units.substr(position + 1, length);
}
