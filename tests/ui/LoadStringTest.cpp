// The walk through a block of a string table, in well-formed and in damaged blocks.
#include "harness/ImportHook.h"
#include "ui/LocalizedResources.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace orva::test
{
namespace
{

// The first id of a block that the module has.
constexpr UINT kFirstId = 112;
constexpr UINT kEntries = 16;
constexpr WORD kEnglish = 1033;

// A block as a resource compiler writes it.
std::wstring Block(const std::vector<std::wstring>& entries)
{
    std::wstring block;
    for (const std::wstring& entry : entries)
    {
        block += static_cast<wchar_t>(entry.size());
        block += entry;
    }
    return block;
}

// The block that the hooks give for the module's resource.
const void* g_block = nullptr;
DWORD g_size = 0;

LPVOID WINAPI LockGivenBlock(HGLOBAL)
{
    return const_cast<void*>(g_block);
}

DWORD WINAPI SizeOfGivenBlock(HMODULE, HRSRC)
{
    return g_size;
}

class LoadStringTest : public testing::Test
{
protected:
    LoadStringTest()
        : m_locale(GetThreadLocale()),
          m_pages(
              static_cast<BYTE*>(VirtualAlloc(nullptr, 2 * kPage, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE)))
    {
        DWORD before = 0;
        VirtualProtect(m_pages + kPage, kPage, PAGE_NOACCESS, &before);
        // Without an Office version texts follow the thread's language.
        SetThreadLocale(MAKELCID(kEnglish, SORT_DEFAULT));
    }
    ~LoadStringTest() override
    {
        SetThreadLocale(m_locale);
        VirtualFree(m_pages, 0, MEM_RELEASE);
    }

    // Makes the hooks give the block's first `size` bytes, at an even address right in front of a page
    // without access.
    void Give(const std::wstring& block, size_t size)
    {
        BYTE* const bytes = m_pages + kPage - size - size % 2;
        std::memcpy(bytes, block.data(), size);
        g_block = bytes;
        g_size = static_cast<DWORD>(size);
    }

    std::wstring Load(UINT index) const
    {
        const CString text = m_resources.LoadString(kFirstId + index);
        return std::wstring(text.GetString(), static_cast<size_t>(text.GetLength()));
    }

    std::wstring Load(const std::wstring& block, size_t size, UINT index)
    {
        Give(block, size);
        return Load(index);
    }

    std::wstring Load(const std::wstring& block, UINT index)
    {
        return Load(block, block.size() * sizeof(wchar_t), index);
    }

private:
    static constexpr size_t kPage = 4096;
    LCID m_locale;
    BYTE* m_pages;
    CLocalizedResources m_resources;
    CImportHook m_lock{GetModuleHandleW(nullptr), "KERNEL32.dll", "LockResource", &LockGivenBlock};
    CImportHook m_size{GetModuleHandleW(nullptr), "KERNEL32.dll", "SizeofResource", &SizeOfGivenBlock};
};

TEST_F(LoadStringTest, EveryEntryOfAFullBlockIsFoundAndEmptyOnesAreEmpty)
{
    const std::vector<std::wstring> entries = {L"",  L"one", L"", L"three", L"four", L"", L"", L"",
                                               L"8", L"",    L"", L"",      L"",     L"", L"", L"fifteen"};
    const std::wstring block = Block(entries);
    for (UINT index = 0; index != kEntries; ++index)
    {
        EXPECT_EQ(Load(block, index), entries[index]) << index;
    }
}

TEST_F(LoadStringTest, AStringKeepsItsExactLengthWithZeroUnitsInside)
{
    const std::wstring text(L"a\0b", 3);
    EXPECT_EQ(Load(Block({L"", text, L"x"}), 1), text);
}

TEST_F(LoadStringTest, AnIndexBehindTheLastEntryIsEmpty)
{
    const std::wstring block = Block({L"zero", L"one"});
    EXPECT_EQ(Load(block, 1), L"one");
    EXPECT_EQ(Load(block, 2), L"");
    EXPECT_EQ(Load(block, 15), L"");
}

TEST_F(LoadStringTest, AnEmptyBlockHoldsNothing)
{
    EXPECT_EQ(Load(L"", 0), L"");
    EXPECT_EQ(Load(L"", 5), L"");
}

TEST_F(LoadStringTest, AnEntryThatRunsBehindTheBlockIsEmpty)
{
    const std::wstring block = Block({L"zero", L"one"});
    // Cut in the middle of the second entry, right behind its length, and in the middle of a unit.
    EXPECT_EQ(Load(block, block.size() * 2 - 2, 1), L"");
    EXPECT_EQ(Load(block, block.size() * 2 - 6, 1), L"");
    EXPECT_EQ(Load(block, block.size() * 2 - 1, 1), L"");
    EXPECT_EQ(Load(block, block.size() * 2 - 6, 0), L"zero");
    EXPECT_EQ(Load(L"\uFFFF", 0), L"");
    EXPECT_EQ(Load(L"\uFFFF", 1), L"");
}

TEST_F(LoadStringTest, NoDamagedBlockMakesItReadBehindTheEnd)
{
    constexpr int kRounds = 5000;
    std::mt19937 random(20110120);
    for (int round = 0; round != kRounds; ++round)
    {
        std::wstring block(random() % 24, L'\0');
        for (wchar_t& unit : block)
        {
            unit = static_cast<wchar_t>(random() % 8 == 0 ? random() : random() % 5);
        }
        Give(block, block.size() * 2 - (block.empty() ? 0 : random() % 2));
        for (UINT index = 0; index != kEntries; ++index)
        {
            const std::wstring found = Load(index);
            ASSERT_TRUE(found.empty() || block.find(found) != std::wstring::npos);
        }
    }
}

} // namespace
} // namespace orva::test
