// Which file names from a download link may become part of a path.
#include "ui/FileName.h"

#include "harness/Text.h"

#include <gtest/gtest.h>

namespace orva::test
{
namespace
{

class PlainFileNameTest : public testing::TestWithParam<std::wstring>
{
};

class OtherFileNameTest : public testing::TestWithParam<std::wstring>
{
};

TEST_P(PlainFileNameTest, IsAccepted)
{
    EXPECT_TRUE(IsPlainFileName(GetParam())) << Utf8(GetParam());
}

TEST_P(OtherFileNameTest, IsRefused)
{
    EXPECT_FALSE(IsPlainFileName(GetParam())) << Utf8(GetParam());
}

INSTANTIATE_TEST_SUITE_P(Names, PlainFileNameTest,
                         testing::Values(L"setup.exe", L"OrvaConnector-1.3.0-x64.exe", L"setup", L".hidden",
                                         L"..exe", L"a..b", L"CONSOLE.exe", L"CON1", L"COM", L"COM10",
                                         L"COM0", L"lpt0.exe", L"COM\u2074", L"LPTX", L"NULL.txt", L"xNUL",
                                         L"CONIN$.exe", L"conout$.txt", L"CONIN$ .exe", L"CONIN", L"CONIN$X",
                                         L"Kur%20.exe", L"größe.exe", L"a b.exe"));

INSTANTIATE_TEST_SUITE_P(Names, OtherFileNameTest,
                         testing::Values(L"", L".", L"..", L"...", L" ", L". .", L"..\\evil.exe",
                                         L"\\evil.exe", L"\\\\server\\share", L"C:evil.exe", L"C:\\evil.exe",
                                         L"setup.exe:stream", L"a/b", std::wstring(L"a\0b", 3), L"a\tb",
                                         L"a\nb", L"\x1f", L"CON", L"con", L"Con.exe", L"PRN.txt", L"AUX",
                                         L"NUL", L"nul.tar.gz", L"NUL .txt", L"COM1", L"com9.exe", L"LPT1",
                                         L"LPT9", L"COM\u00B9", L"lpt\u00B2.exe", L"CONIN$", L"conout$",
                                         L"CONIN$ .", L"CONOUT$. . "));

} // namespace
} // namespace orva::test
