// CString's texts at the length from which they need memory of their own.
#include <afxstr.h>

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace
{

constexpr int kShort = static_cast<int>(CTextBuffer::kShortText);

// A text whose units differ.
std::wstring Text(int length)
{
    std::wstring text;
    for (int i = 0; i < length; ++i)
    {
        text += static_cast<wchar_t>(L'A' + i % 53);
    }
    return text;
}

CString Make(int length)
{
    return CString(Text(length).c_str());
}

class MfcStringStorageTest : public testing::TestWithParam<int>
{
};

TEST_P(MfcStringStorageTest, IsMadeCopiedAndMoved)
{
    const std::wstring text = Text(GetParam());
    CString made = Make(GetParam());
    EXPECT_EQ(made.GetString(), text);
    EXPECT_EQ(made.GetLength(), GetParam());

    CString copy = made;
    EXPECT_EQ(copy.GetString(), text);
    EXPECT_NE(static_cast<const void*>(copy.GetString()), static_cast<const void*>(made.GetString()));

    CString moved = std::move(copy);
    EXPECT_EQ(moved.GetString(), text);
    CString assigned = L"before";
    assigned = std::move(moved);
    EXPECT_EQ(assigned.GetString(), text);
    assigned = made;
    EXPECT_EQ(assigned.GetString(), text);
}

TEST_P(MfcStringStorageTest, TakesTheOtherLengthsPlace)
{
    for (const int other : {0, 1, kShort, kShort + 1, 4 * kShort})
    {
        CString target = Make(other);
        target = Make(GetParam());
        EXPECT_EQ(target.GetString(), Text(GetParam())) << other;
        target = Make(other);
        EXPECT_EQ(target.GetString(), Text(other));
    }
}

TEST_P(MfcStringStorageTest, GrowsByItselfAndIsReplacedByAPartOfItself)
{
    const std::wstring text = Text(GetParam());
    CString twice = Make(GetParam());
    twice += twice;
    EXPECT_EQ(twice.GetString(), text + text);
    twice += twice.GetString() + GetParam();
    EXPECT_EQ(twice.GetString(), text + text + text);
    twice.SetString(twice.GetString() + GetParam() / 2, GetParam());
    EXPECT_EQ(twice.GetString(), (text + text).substr(static_cast<std::size_t>(GetParam() / 2), text.size()));
}

TEST_P(MfcStringStorageTest, ABufferThatIsLargerThanTheTextKeepsTheText)
{
    CString grown = Make(GetParam());
    const LPWSTR buffer = grown.GetBuffer(3 * kShort);
    EXPECT_EQ(std::wstring(buffer), Text(GetParam()));
    buffer[GetParam()] = L'!';
    buffer[GetParam() + 1] = L'\0';
    grown.ReleaseBuffer();
    EXPECT_EQ(grown.GetString(), Text(GetParam()) + L"!");
}

INSTANTIATE_TEST_SUITE_P(Lengths, MfcStringStorageTest,
                         testing::Values(0, 1, kShort - 1, kShort, kShort + 1, 2 * kShort + 1));

} // namespace
