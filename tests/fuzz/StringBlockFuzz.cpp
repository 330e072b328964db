// Fuzzes the finding of a string in a block of a string table.
//
// An input's first byte is the index that is looked for. The rest is the block, as damaged as it may be, and
// then the texts, a line each, of a block that is put together as a resource compiler does it.
#include "Fuzz.h"
#include "ui/StringBlock.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

namespace
{

constexpr unsigned kEntries = 16;

using Bytes = std::unique_ptr<unsigned char[]>;

// A copy of exactly the block's size, so that reading past its end is seen.
Bytes Exactly(const std::vector<unsigned char>& block)
{
    Bytes exact(new unsigned char[block.size()]);
    std::copy(block.begin(), block.end(), exact.get());
    return exact;
}

// The entry as a walk over the block's units finds it; empty for one that does not lie in the block as a
// whole.
std::u16string Expected(const std::u16string& units, unsigned index)
{
    std::size_t at = 0;
    for (unsigned entry = 0; at < units.size(); ++entry)
    {
        const std::size_t length = units[at];
        if (entry == index)
        {
            return length <= units.size() - at - 1 ? units.substr(at + 1, length) : std::u16string();
        }
        at += 1 + length;
    }
    return {};
}

void CheckDamaged(const std::vector<unsigned char>& block, unsigned index)
{
    std::u16string units;
    for (std::size_t at = 0; at + 1 < block.size(); at += 2)
    {
        units += static_cast<char16_t>(block[at] | block[at + 1] << 8);
    }
    const Bytes exact = Exactly(block);
    ORVA_PROPERTY(FindStringInBlock(exact.get(), block.size(), index) == Expected(units, index));
    for (unsigned entry = 0; entry <= kEntries; ++entry)
    {
        ORVA_PROPERTY(FindStringInBlock(exact.get(), block.size(), entry) == Expected(units, entry));
    }
}

void CheckProper(const std::wstring& lines)
{
    std::vector<std::u16string> entries(1);
    for (const wchar_t unit : lines)
    {
        if (unit != L'\n')
        {
            entries.back() += static_cast<char16_t>(unit);
        }
        else if (entries.size() < kEntries)
        {
            entries.emplace_back();
        }
    }
    entries.resize(kEntries);
    std::vector<unsigned char> block;
    for (std::u16string& entry : entries)
    {
        entry.resize(std::min<std::size_t>(entry.size(), 0xFFFF));
        entry.insert(entry.begin(), static_cast<char16_t>(entry.size()));
        for (const char16_t unit : entry)
        {
            block.push_back(static_cast<unsigned char>(unit & 0xFF));
            block.push_back(static_cast<unsigned char>(unit >> 8));
        }
    }
    const Bytes exact = Exactly(block);
    for (unsigned index = 0; index < kEntries; ++index)
    {
        ORVA_PROPERTY(FindStringInBlock(exact.get(), block.size(), index) == entries[index].substr(1));
    }
    ORVA_PROPERTY(FindStringInBlock(exact.get(), block.size(), kEntries).empty());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
    {
        return 0;
    }
    const unsigned index = data[0];
    const std::vector<unsigned char> block(data + 1, data + size);
    CheckDamaged(block, index);
    CheckProper(orva::fuzz::Units(orva::fuzz::Bytes(data + 1, size - 1)));
    return 0;
}
