// The witness of a machine that stands still: what it holds against the machine, and since when.
#include "harness/MachineWitness.h"

#include "harness/Waiting.h"

#include <gtest/gtest.h>

#include <utility>

namespace orva::test
{
namespace
{

using Clock = CMachineWitness::Clock;

constexpr DWORD kStandstill = 600;

TEST(MachineWitnessTest, HoldsNothingAgainstAMachineThatRuns)
{
    const CMachineWitness witness;
    // The machine that runs this test may stand still in earnest, but not all the time.
    EXPECT_TRUE(WaitUntil([&] {
        const Clock::time_point start = Clock::now();
        Sleep(5 * CMachineWitness::kRest);
        return witness.HeldUpSince(start) == 0;
    }));
}

// A turn in which the machine gives nothing for kStandstill milliseconds, and turns that cost nothing.
class CStandingStill
{
public:
    void operator()()
    {
        if (!std::exchange(m_done, true))
        {
            Sleep(kStandstill);
        }
    }

private:
    bool m_done = false;
};

TEST(MachineWitnessTest, TellsForHowLongTheMachineStoodStill)
{
    const Clock::time_point start = Clock::now();
    const CMachineWitness witness{CStandingStill()};
    // Before it ends, too: a turn counts while it lasts.
    EXPECT_TRUE(WaitUntil([&] { return witness.HeldUpSince(start) > 0; }));
    EXPECT_TRUE(
        WaitUntil([&] { return witness.HeldUpSince(start) >= kStandstill - CMachineWitness::kUsual; }));
    EXPECT_LE(witness.HeldUpSince(start), CMachineWitness::Since(start));
}

TEST(MachineWitnessTest, CountsATurnThatLasts)
{
    const UniqueHandle goOn = MakeEvent();
    const Clock::time_point start = Clock::now();
    const CMachineWitness witness([&] { WaitForSingleObject(goOn.get(), kPatience); });
    EXPECT_TRUE(WaitUntil([&] { return witness.HeldUpSince(start) >= kStandstill; }));
    SetEvent(goOn.get());
}

TEST(MachineWitnessTest, CountsOnlyWhatCameAfterTheStart)
{
    const UniqueHandle goOn = MakeEvent();
    const Clock::time_point start = Clock::now();
    const CMachineWitness witness([&] { WaitForSingleObject(goOn.get(), kPatience); });
    EXPECT_TRUE(WaitUntil([&] { return witness.HeldUpSince(start) >= kStandstill; }));
    const Clock::time_point later = Clock::now();
    const double heldUp = witness.HeldUpSince(later);
    EXPECT_LE(heldUp, CMachineWitness::Since(later));
    EXPECT_LT(heldUp, witness.HeldUpSince(start));
    SetEvent(goOn.get());
}

} // namespace
} // namespace orva::test
