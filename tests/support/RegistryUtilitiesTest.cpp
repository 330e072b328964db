// Reading of 4-byte settings from both hives.
#include "support/RegistryUtilities.h"

#include "harness/Registry.h"

#include <gtest/gtest.h>

namespace
{

using orva::test::CRegistryTreeGuard;
using orva::test::CRegistryValue;

constexpr wchar_t kKey[] = L"SOFTWARE\\ORVA Connector Test";
constexpr wchar_t kName[] = L"Setting";

class RegistryUtilities : public testing::Test
{
protected:
    RegistryUtilities()
        : m_userTree(HKEY_CURRENT_USER, kKey), m_machineTree(HKEY_LOCAL_MACHINE, kKey),
          m_user(HKEY_CURRENT_USER, kKey, kName), m_machine(HKEY_LOCAL_MACHINE, kKey, kName)
    {
        m_userTree.Remove();
        m_machineTree.Remove();
    }

    static std::int32_t Read() { return ReadRegistryDword(kKey, kName); }

    CRegistryTreeGuard m_userTree;
    CRegistryTreeGuard m_machineTree;
    CRegistryValue m_user;
    CRegistryValue m_machine;
};

} // namespace

TEST_F(RegistryUtilities, MissingKeysAndValuesAreMinusOne)
{
    EXPECT_EQ(Read(), -1);
    CRegistryValue other(HKEY_CURRENT_USER, kKey, L"Other");
    other.SetDword(7);
    EXPECT_EQ(Read(), -1);
    EXPECT_EQ(ReadRegistryDword(kKey, L"Other"), 7);
}

TEST_F(RegistryUtilities, TheMachineHiveIsReadOnlyWhenTheUserHiveHasNothing)
{
    m_machine.SetDword(1031);
    EXPECT_EQ(Read(), 1031);
    EXPECT_EQ(ReadRegistryDwordFromHive(HKEY_CURRENT_USER, kKey, kName), -1);
    EXPECT_EQ(ReadRegistryDwordFromHive(HKEY_LOCAL_MACHINE, kKey, kName), 1031);
    m_user.SetDword(0);
    EXPECT_EQ(Read(), 0);
}

TEST_F(RegistryUtilities, TheTypeDoesNotMatter)
{
    m_user.SetString(L"1");
    EXPECT_EQ(Read(), 49);
    m_user.SetBytes({1, 0, 0, 0}, REG_BINARY);
    EXPECT_EQ(Read(), 1);
    m_user.SetBytes({0x12, 0x34, 0x56, 0x78}, REG_NONE);
    EXPECT_EQ(Read(), 0x78563412);
}

TEST_F(RegistryUtilities, AValueLongerThanFourBytesFailsAndTheMachineHiveIsRead)
{
    m_user.SetBytes({1, 0, 0, 0, 0, 0, 0, 0}, REG_QWORD);
    EXPECT_EQ(Read(), -1);
    m_machine.SetDword(3);
    EXPECT_EQ(Read(), 3);
    m_user.SetString(L"12");
    EXPECT_EQ(Read(), 3);
}

TEST_F(RegistryUtilities, AShorterValueFillsTheLowBytes)
{
    m_user.SetBytes({0x34, 0x12}, REG_BINARY);
    EXPECT_EQ(Read(), 0x1234);
}

TEST_F(RegistryUtilities, AllOnesCannotBeToldFromAFailure)
{
    m_user.SetDword(0xFFFFFFFF);
    EXPECT_EQ(Read(), -1);
    m_machine.SetDword(3);
    EXPECT_EQ(Read(), 3);
}

TEST_F(RegistryUtilities, OtherNumbersAreSigned)
{
    m_user.SetDword(0x80000000);
    EXPECT_EQ(Read(), -2147483647 - 1);
    m_user.SetDword(0xFFFFFFFE);
    EXPECT_EQ(Read(), -2);
}
