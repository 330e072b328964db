// Finding one string in a block of a module's string table.
#include "ui/StringBlock.h"

namespace
{
/// The 16-bit units of a block. What lies behind its end reads as 0, which is how an empty entry reads.
class CUnits
{
public:
    CUnits(const void* block, std::size_t size)
        : m_bytes(static_cast<const unsigned char*>(block)), m_count(size / 2)
    {
    }

    std::size_t Count() const { return m_count; }

    char16_t At(std::size_t position) const
    {
        if (position >= m_count)
        {
            return 0;
        }
        return static_cast<char16_t>(m_bytes[2 * position] | m_bytes[2 * position + 1] << 8);
    }

private:
    const unsigned char* m_bytes;
    std::size_t m_count;
};
} // namespace

std::u16string FindStringInBlock(const void* block, std::size_t size, unsigned index)
{
    const CUnits units(block, size);
    std::size_t position = 0;
    unsigned count = 0;
    // The position counts 16-bit units, the bound is the size in bytes: kept as it has always been. It never
    // decides in a block that a resource compiler wrote, since all sixteen entries are there and the index
    // ends the walk. In a damaged block it only ends the walk later, over units that read as empty entries.
    while (position < size && count != index)
    {
        const std::size_t length = units.At(position);
        position += length != 0 ? length + 1 : 1;
        ++count;
    }

    const std::size_t length = units.At(position);
    if (count != index || length == 0 || units.Count() - position - 1 < length)
    {
        return {};
    }
    std::u16string text;
    text.reserve(length);
    for (std::size_t unit = 0; unit != length; ++unit)
    {
        text.push_back(units.At(position + 1 + unit));
    }
    return text;
}
