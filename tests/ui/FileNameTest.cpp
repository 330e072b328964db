// Which file names from a download link may become part of a path.
#include "ui/FileName.h"

#include "harness/Text.h"

#include <gtest/gtest.h>

#include <string>

namespace orva::test
{
namespace
{

TEST(FileNameTest, PlainNamesAreAccepted)
{
    const std::wstring names[] = {
        L"setup.exe", L"OrvaConnector-1.3.0-x64.exe", L"setup", L".hidden", L"..exe", L"a..b", L" a b.exe",
        L"größe.exe", L"a.exe.", L"a.exe. . ", L"setup.exe#part", L"a&calc.exe", std::wstring(4'996, L'x'),
        // Like a device's name and none.
        L"CONSOLE.exe", L"CON1", L"COM", L"COM10", L"COM0", L"lpt0.exe", L"COM\u2074", L"LPTX", L"NULL.txt",
        L"xNUL", L"CONIN$.exe", L"conout$.txt", L"CONIN$ .exe", L"CONIN", L"CONIN$X",
        // Nothing is decoded or replaced.
        L"Kur%20.exe", L"..%5Cevil.exe", L"..%2Fevil.exe", L"C%3A%5Cevil.exe", L"%43ON", L"%TEMP%evil.exe",
        L"setup.exe%00.txt", L"a%0D%0Ab.exe",
        // Only ASCII has separators.
        L"..\u2215evil.exe", L"..\uFF3Cevil.exe", L"..\u00A5evil.exe", L"setup\u202Enib.exe", L"a\u2028b",
        L"setup\u200B.exe", L"\U0001F600.exe", std::wstring(L"a\xD800") + L"b", std::wstring(L"\xDC00"),
        // The system refuses these.
        L"setup.exe?version=1", L"*.exe", L"<evil>.exe", L"a|b", L"\"evil\".exe"};
    for (const std::wstring& name : names)
    {
        EXPECT_TRUE(IsPlainFileName(name)) << Utf8(name);
    }
}

TEST(FileNameTest, NamesThatWouldNotBeAFileInTheFolderAreRefused)
{
    const std::wstring names[] = {
        // Nothing is left when Windows has dropped dots and blanks.
        L"", L".", L"..", L"...", L" ", L". .",
        // Paths and streams.
        L"..\\evil.exe", L"a\\..\\..\\evil.exe", L"a\\evil.exe", L"\\evil.exe", L"\\\\server\\share",
        L"\\\\.\\C:\\evil.exe", L"C:evil.exe", L"C:\\evil.exe", L"setup.exe:stream", L"setup.exe::$DATA",
        L"a/b", L"setup.exe?name=..\\evil.exe",
        // Control characters.
        std::wstring(L"a\0b", 3), L"a\tb", L"a\r\nb", L"\a", L"\x1f",
        // Devices, whatever follows a dot and whatever blanks come before it.
        L"CON", L"con", L"Con.exe", L"PRN.txt", L"PRN  ", L"AUX", L"AUX.", L"NUL", L"NUL:", L"nul.tar.gz",
        L"NUL .txt", L"COM1", L"com9.exe", L"LPT1", L"LPT9", L"COM\u00B9", L"lpt\u00B2.exe", L"LPT\u00B3",
        L"CONIN$", L"conout$", L"CONIN$ .", L"CONOUT$. . "};
    for (const std::wstring& name : names)
    {
        EXPECT_FALSE(IsPlainFileName(name)) << Utf8(name);
    }
}

} // namespace
} // namespace orva::test
