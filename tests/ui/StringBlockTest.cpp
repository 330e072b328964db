// Finding a string in a block of a string table, in well-formed and in damaged blocks.
#include "ui/StringBlock.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace
{
// A block as a resource compiler writes it.
std::u16string Block(const std::vector<std::u16string>& entries)
{
    std::u16string block;
    for (const std::u16string& entry : entries)
    {
        block += static_cast<char16_t>(entry.size());
        block += entry;
    }
    return block;
}

// The bytes, at an even address, right in front of a page that must not be touched.
class CGuardedBytes
{
public:
    CGuardedBytes(const void* bytes, std::size_t size)
        : m_pages(
              static_cast<BYTE*>(VirtualAlloc(nullptr, 2 * kPage, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE)))
    {
        DWORD before = 0;
        VirtualProtect(m_pages + kPage, kPage, PAGE_NOACCESS, &before);
        m_bytes = m_pages + kPage - size - size % 2;
        std::memcpy(m_bytes, bytes, size);
    }
    ~CGuardedBytes() { VirtualFree(m_pages, 0, MEM_RELEASE); }
    CGuardedBytes(const CGuardedBytes&) = delete;
    CGuardedBytes& operator=(const CGuardedBytes&) = delete;

    const BYTE* Get() const { return m_bytes; }

private:
    static constexpr std::size_t kPage = 4096;
    BYTE* m_pages;
    BYTE* m_bytes;
};

std::u16string Find(const std::u16string& block, std::size_t size, unsigned index)
{
    const CGuardedBytes bytes(block.data(), size);
    return std::u16string(FindStringInBlock(bytes.Get(), size, index));
}

std::u16string Find(const std::u16string& block, unsigned index)
{
    return Find(block, block.size() * 2, index);
}

const std::vector<std::u16string> kSixteen = {u"",  u"one", u"", u"three", u"four", u"", u"", u"",
                                              u"8", u"",    u"", u"",      u"",     u"", u"", u"fifteen"};
} // namespace

TEST(StringBlockTest, EveryEntryOfAFullBlockIsFoundAndEmptyOnesAreEmpty)
{
    const std::u16string block = Block(kSixteen);
    for (unsigned index = 0; index != 16; ++index)
    {
        EXPECT_EQ(Find(block, index), kSixteen[index]) << index;
    }
}

TEST(StringBlockTest, AStringKeepsItsExactLengthWithZeroUnitsInside)
{
    const std::u16string text(u"a\0b", 3);
    EXPECT_EQ(Find(Block({u"", text, u"x"}), 1), text);
}

TEST(StringBlockTest, AnIndexBehindTheLastEntryIsEmpty)
{
    EXPECT_EQ(Find(Block({u"zero", u"one"}), 1), u"one");
    EXPECT_EQ(Find(Block({u"zero", u"one"}), 2), u"");
    EXPECT_EQ(Find(Block({u"zero", u"one"}), 15), u"");
    EXPECT_EQ(Find(Block(kSixteen), 16), u"");
}

TEST(StringBlockTest, AnEmptyBlockHoldsNothing)
{
    EXPECT_EQ(Find(u"", 0), u"");
    EXPECT_EQ(Find(u"", 5), u"");
    EXPECT_EQ(FindStringInBlock(nullptr, 0, 0), u"");
}

TEST(StringBlockTest, AnEntryThatRunsBehindTheBlockIsEmpty)
{
    const std::u16string block = Block({u"zero", u"one"});
    // Cut in the middle of the second entry, right behind its length, and in the middle of a unit.
    EXPECT_EQ(Find(block, block.size() * 2 - 2, 1), u"");
    EXPECT_EQ(Find(block, block.size() * 2 - 6, 1), u"");
    EXPECT_EQ(Find(block, block.size() * 2 - 1, 1), u"");
    EXPECT_EQ(Find(block, block.size() * 2 - 6, 0), u"zero");
    EXPECT_EQ(Find(u"\uFFFF", 0), u"");
    EXPECT_EQ(Find(u"\uFFFF", 1), u"");
}

TEST(StringBlockTest, NoDamagedBlockMakesItReadBehindTheEnd)
{
    std::mt19937 random(20110120);
    for (int round = 0; round != 20000; ++round)
    {
        std::u16string block(random() % 24, u'\0');
        for (char16_t& unit : block)
        {
            unit = static_cast<char16_t>(random() % 8 == 0 ? random() : random() % 5);
        }
        const std::size_t size = block.size() * 2 - (block.empty() ? 0 : random() % 2);
        const CGuardedBytes bytes(block.data(), size);
        for (unsigned index = 0; index != 17; ++index)
        {
            const std::u16string_view found = FindStringInBlock(bytes.Get(), size, index);
            ASSERT_TRUE(found.empty() || block.find(found) != std::u16string::npos);
        }
    }
}
