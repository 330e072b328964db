// The misuses that the tests of the checked build start as another program, one each.
#include <gtest/gtest.h>

#include <array>
#include <climits>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

namespace orva::test
{

namespace
{

bool IsAsked()
{
    return GetEnvironmentVariableW(L"ORVA_HELPER", nullptr, 0) != 0;
}

// Volatile, so that the compiler cannot evaluate the operations below.
volatile int g_result = 0;
volatile int g_largest = INT_MAX;
volatile int g_zero = 0;
volatile int g_sixtyFour = 64;
volatile size_t g_nine = 9;

struct Pair
{
    int first = 0;
    int second = 0;
};

__attribute__((noinline)) void Overrun(volatile char* text, size_t size)
{
    for (size_t i = 0; i < size; ++i)
    {
        text[i] = 'x';
    }
}

__attribute__((noinline)) void SmashTheStack()
{
    char text[16] = "";
    Overrun(text, 64);
    g_result = text[0];
}

} // namespace

TEST(Misuse, AddsBeyondTheLargestInteger)
{
    if (IsAsked())
    {
        g_result = g_largest + 1;
    }
}

TEST(Misuse, DividesByZero)
{
    if (IsAsked())
    {
        g_result = 1 / g_zero;
    }
}

TEST(Misuse, ShiftsByMoreThanTheWidth)
{
    if (IsAsked())
    {
        g_result = 1 << g_sixtyFour;
    }
}

TEST(Misuse, ReadsAPlainArrayBeyondItsEnd)
{
    if (IsAsked())
    {
        int numbers[4] = {1, 2, 3, 4};
        g_result = numbers[g_nine];
    }
}

TEST(Misuse, ReadsAMemberOfNoObject)
{
    if (IsAsked())
    {
        const Pair* volatile nowhere = nullptr;
        const Pair* const pair = nowhere;
        g_result = pair->second;
    }
}

TEST(Misuse, ReadsAnIntegerAtAnOddAddress)
{
    if (IsAsked())
    {
        alignas(int) char bytes[2 * sizeof(int)] = "";
        void* volatile odd = bytes + 1;
        g_result = *static_cast<const int*>(odd);
    }
}

TEST(Misuse, ReadsABoolThatIsNeither)
{
    if (IsAsked())
    {
        bool answer = false;
        std::memset(&answer, 7, sizeof answer);
        void* volatile place = &answer;
        g_result = *static_cast<const bool*>(place) ? 1 : 2;
    }
}

TEST(Misuse, ReadsAVectorBeyondItsEnd)
{
    if (IsAsked())
    {
        const std::vector<int> numbers(4);
        g_result = numbers[g_nine];
    }
}

TEST(Misuse, ReadsAStringBeyondItsEnd)
{
    if (IsAsked())
    {
        const std::wstring text = L"four";
        g_result = text[g_nine];
    }
}

TEST(Misuse, ReadsAnEmptyOptional)
{
    if (IsAsked())
    {
        const std::optional<int> nothing;
        g_result = *nothing;
    }
}

TEST(Misuse, OverwritesItsReturnAddress)
{
    if (IsAsked())
    {
        SmashTheStack();
    }
}

} // namespace orva::test
