#include "ui/HostileNames.h"

#include <cstdio>
#include <ostream>

namespace orva::test
{

namespace
{

std::vector<CHostileName> PathNames()
{
    using enum NameFate;
    return {
        {0, "parent folder", L"..\\evil.bin", Refused},
        {0, "parent's parent", L"..\\..\\evil.bin", Refused},
        {0, "far up", L"..\\..\\..\\..\\..\\..\\..\\..\\evil.bin", Refused},
        {0, "down and up", L"a\\..\\..\\evil.bin", Refused},
        {0, "sub-folder", L"a\\evil.bin", Refused},
        {0, "root", L"\\evil.bin", Refused},
        {0, "drive", L"C:\\evil.bin", Refused},
        {0, "drive's current folder", L"C:evil.bin", Refused},
        {0, "share", L"\\\\server\\share\\evil.bin", Refused},
        {0, "device path", L"\\\\.\\C:\\evil.bin", Refused},
        {0, "verbatim path", L"\\\\?\\C:\\evil.bin", Refused},
        {0, "native path", L"\\??\\C:\\evil.bin", Refused},
        {0, "up with slashes", L"../../evil.bin", Created},
        {0, "slashes and backslashes", L"../..\\evil.bin", Refused},
        {0, "two slashes", L"//evil.bin", Created},
        {0, "slash at the end", L"evil.bin/", NoName},
        {0, "folder itself", L"evil.bin/.", Refused},
        {0, "folder's parent", L"evil.bin/..", Refused},
        {0, "slash in the query", L"setup.exe?name=/../evil.bin", Created},
        {0, "backslash in the query", L"setup.exe?name=..\\evil.bin", Refused},
        {0, "parent folder, escaped", L"..%5Cevil.bin", Created},
        {0, "parent folder, escaped slash", L"..%2Fevil.bin", Created},
        {0, "parent folder, escaped twice", L"..%255C..%255Cevil.bin", Created},
        {0, "all of the parent escaped", L"%2E%2E%5Cevil.bin", Created},
        {0, "drive, escaped", L"C%3A%5Cevil.bin", Created},
        {0, "slash of another script", L"..\u2215evil.bin", Created},
        {0, "wide backslash", L"..\uFF3Cevil.bin", Created},
        {0, "yen sign", L"..\u00A5evil.bin", Created},
        {0, "variable", L"%TEMP%evil.bin", Created},
    };
}

std::vector<CHostileName> DeviceNames()
{
    using enum NameFate;
    return {
        {0, "device", L"CON", Refused},
        {0, "device with extension", L"CON.bin", Refused},
        {0, "device in small letters", L"con.bin", Refused},
        {0, "device with two extensions", L"nul.tar.bin", Refused},
        {0, "device and blank", L"NUL .bin", Refused},
        {0, "device with a dot", L"AUX.", Refused},
        {0, "device with blanks", L"PRN  ", Refused},
        {0, "device with a colon", L"NUL:", Refused},
        {0, "input console", L"CONIN$", Refused},
        {0, "output console and a dot", L"conout$.", Refused},
        {0, "like a console and none", L"CONOUT$.bin", CreatedOrConsole},
        {0, "serial port", L"COM1.bin", Refused},
        {0, "serial port 0, which none is", L"COM0.bin", Created},
        {0, "serial port, superscript", L"COM\u00B9.bin", Refused},
        {0, "printer port", L"LPT9", Refused},
        {0, "printer port, superscript", L"lpt\u00B3.bin", Refused},
        {0, "device, escaped", L"%43ON.bin", Created},
        {0, "like a port and none", L"COM10.bin", Created},
        {0, "pipe", L"\\\\.\\pipe\\evil", Refused},
    };
}

std::vector<CHostileName> TextNames()
{
    using enum NameFate;
    return {
        {0, "empty", L"", NoName},
        {0, "dot", L".", Refused},
        {0, "two dots", L"..", Refused},
        {0, "many dots", L".....", Refused},
        {0, "blank", L" ", Refused},
        {0, "dots and blanks", L". . .", Refused},
        {0, "dot at the end", L"evil.bin.", Created},
        {0, "dots and blanks at the end", L"evil.bin. . ", Created},
        {0, "blank at the start", L" evil.bin", Created},
        {0, "alternate stream", L"setup.exe:evil.bin", Refused},
        {0, "stream of the folder", L"::$INDEX_ALLOCATION", Refused},
        {0, "unnamed stream", L"setup.exe::$DATA", Refused},
        {0, "question mark", L"setup.bin?version=1", RefusedBySystem},
        {0, "number sign", L"setup.bin#part", Created},
        {0, "star", L"*.bin", RefusedBySystem},
        {0, "angle brackets", L"<evil>.bin", RefusedBySystem},
        {0, "bar", L"a|b.bin", RefusedBySystem},
        {0, "quotation marks", L"\"evil\".bin", RefusedBySystem},
        {0, "ampersand", L"a&calc.bin", Created},
        {0, "tab", L"a\tb.bin", Refused},
        {0, "line end", L"a\r\nb.bin", Refused},
        {0, "bell", L"\a.bin", Refused},
        {0, "line end, escaped", L"a%0D%0Ab.bin", Created},
        {0, "nought, escaped", L"setup.bin%00.txt", Created},
        {0, "right-to-left mark", L"setup\u202Enib.exe.bin", Created},
        {0, "invisible blank", L"setup\u200B.bin", Created},
        {0, "line separator", L"a\u2028b.bin", Created},
        {0, "half a surrogate pair", std::wstring(L"a\xD800") + L"b.bin", CreatedOrRefused},
        {0, "the other half", std::wstring(L"\xDC00") + L".bin", CreatedOrRefused},
        {0, "emoji", L"\U0001F600.bin", Created},
        {0, "200 characters", std::wstring(196, L'x') + L".bin", CreatedOrRefused},
        {0, "255 characters", std::wstring(251, L'x') + L".bin", CreatedOrRefused},
        {0, "300 characters", std::wstring(296, L'x') + L".bin", RefusedBySystem},
        {0, "5,000 characters", std::wstring(4'996, L'x') + L".bin", CreatedOrRefused},
    };
}

} // namespace

std::vector<CHostileName> HostileNames()
{
    std::vector<CHostileName> names = PathNames();
    for (const auto& more : {DeviceNames(), TextNames()})
    {
        names.insert(names.end(), more.begin(), more.end());
    }
    for (size_t i = 0; i < names.size(); ++i)
    {
        names[i].number = static_cast<int>(i + 1);
    }
    return names;
}

std::string Printable(const std::wstring& text)
{
    constexpr size_t kLimit = 60;
    std::string printable;
    for (const wchar_t character : text)
    {
        if (printable.size() >= kLimit)
        {
            return printable + "... (" + std::to_string(text.size()) + " characters)";
        }
        if (character >= L' ' && character < 0x7F)
        {
            printable += static_cast<char>(character);
            continue;
        }
        char escaped[12];
        std::snprintf(escaped, sizeof(escaped), "\\u%04X", static_cast<unsigned>(character));
        printable += escaped;
    }
    return printable.empty() ? "(empty)" : printable;
}

void PrintTo(const CHostileName& name, std::ostream* out)
{
    *out << Printable(name.segment);
}

} // namespace orva::test
