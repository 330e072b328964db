// Taking URLs apart: parts, ports, bounds, and what is no URL.
#include "support/UrlCracker.h"

#include "support/UrlSystem.h"

#include <gtest/gtest.h>

#include <windows.h>

namespace
{

// "scheme host port path", or "no".
std::string Cracked(const std::string& url)
{
    CrackedUrl parts;
    if (!CrackUrl(url, parts))
    {
        return "no";
    }
    return std::to_string(parts.scheme) + " " + parts.host + " " + std::to_string(parts.port) + " " +
           parts.path;
}

} // namespace

TEST(CrackUrl, GivesSchemeHostPortAndPath)
{
    EXPECT_EQ(Cracked("http://www.orva.example/downloads/outlook/UpdateInfo.txt"),
              "3 www.orva.example 80 /downloads/outlook/UpdateInfo.txt");
    EXPECT_EQ(Cracked("https://www.orva.example/a"), "4 www.orva.example 443 /a");
    EXPECT_EQ(Cracked("http://127.0.0.1:8080/a"), "3 127.0.0.1 8080 /a");
    EXPECT_EQ(Cracked("https://host:80/"), "4 host 80 /");
    EXPECT_EQ(Cracked("ftp://host/a"), "1 host 21 /a");
}

TEST(CrackUrl, TheQueryBelongsToThePath)
{
    EXPECT_EQ(Cracked("http://host/a?b=c&d=e"), "3 host 80 /a?b=c&d=e");
}

TEST(CrackUrl, UserNamePasswordAndSchemeAreNoPartOfTheHost)
{
    EXPECT_EQ(Cracked("http://user:pw@host/a"), "3 host 80 /a");
    EXPECT_EQ(Cracked("HTTP://HOST/A"), "3 HOST 80 /A");
}

TEST(CrackUrl, APathMayBeMissing)
{
    EXPECT_EQ(Cracked("http://host"), "3 host 80 ");
    EXPECT_EQ(Cracked("http://host:8080"), "3 host 8080 ");
}

TEST(CrackUrl, WhatHasNoSchemeIsNoUrl)
{
    for (const char* text : {"", "host/a", "/a", "x"})
    {
        EXPECT_EQ(Cracked(text), "no") << text;
    }
}

TEST(CrackUrl, AFailureLeavesThePartsAlone)
{
    CrackedUrl parts = {"host", "/path", 3, 81};
    EXPECT_FALSE(CrackUrl("no url", parts));
    EXPECT_EQ(parts.host + parts.path, "host/path");
    EXPECT_EQ(parts.scheme, 3);
    EXPECT_EQ(parts.port, 81);
}

TEST(CrackUrl, AHostOf254CharactersFitsAndALongerOneDoesNot)
{
    const std::string host(254, 'h');
    EXPECT_EQ(Cracked("http://" + host + "/a"), "3 " + host + " 80 /a");
    EXPECT_EQ(Cracked("http://" + host + "h/a"), "no");
    EXPECT_EQ(Cracked("http://" + std::string(100'000, 'h') + "/a"), "no");
}

TEST(CrackUrl, APathOf254CharactersFitsAndALongerOneDoesNot)
{
    const std::string path = "/" + std::string(253, 'p');
    EXPECT_EQ(Cracked("http://host" + path), "3 host 80 " + path);
    EXPECT_EQ(Cracked("http://host" + path + "p"), "no");
    EXPECT_EQ(Cracked("http://host/?" + std::string(253, 'q')), "no");
}

TEST(CrackUrl, CharactersOfTheCodePageKeepTheirLowByte)
{
    // U+20AC, which 80 is in code page 1252, becomes AC.
    ASSERT_EQ(WidenAnsi("\x80\xE4"), L"\x20AC\x00E4");
    EXPECT_EQ(Cracked("http://host/\x80\xE4"), "3 host 80 /\xAC\xE4");
}

// Windows turns escape sequences into their characters here ("/a b"); Wine leaves them as they are.
TEST(CrackUrl, EscapeSequencesAreTheirCharactersSaveUnderWine)
{
    const bool isWine = GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
    EXPECT_EQ(Cracked("http://host/a%20b"), isWine ? "3 host 80 /a%20b" : "3 host 80 /a b");
}
