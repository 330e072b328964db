// What is found in an installer: whether it is a program of the published version, and signed.
#include "publishing/InstallerCheck.h"

#include "harness/Files.h"
#include "harness/ImportHook.h"
#include "harness/Signer.h"
#include "harness/TempFolder.h"
#include "publishing/CheckOptions.h"
#include "publishing/PublicKeyFile.h"
#include "publishing/Text.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <utility>

namespace orva::test
{
namespace
{

using publishing::CInstallerFacts;
using publishing::CPublishedUpdate;
using testing::ElementsAre;
using namespace std::string_literals;
using testing::IsEmpty;

const std::wstring& SetupPath()
{
    static const std::wstring path = BuiltFile(L"newer\\OrvaSetup-1.3.0.exe");
    return path;
}

class InstallerCheckTest : public testing::Test
{
protected:
    CInstallerFacts Check(const std::wstring& path, const CPublishedUpdate& update)
    {
        const CInstallerFacts facts = publishing::CheckInstallerFile(path, update, m_key, m_findings);
        for (const publishing::CFinding& finding : m_findings.All())
        {
            EXPECT_EQ(finding.severity, publishing::Severity::Error);
            EXPECT_EQ(finding.path, L"installer");
            m_texts.push_back(finding.text);
        }
        return facts;
    }

    // Of a file with these bytes.
    CInstallerFacts CheckBytes(const std::string& bytes)
    {
        WriteFileBytes(m_folder.File(L"setup.exe"), bytes);
        return Check(m_folder.File(L"setup.exe"), m_published);
    }

    CTempFolder m_folder;
    CPublishedUpdate m_published{PublishedVersion{1, 3, 0}, {}, {}};
    std::optional<CUpdateKey> m_key;
    publishing::CFindings m_findings;
    std::vector<std::wstring> m_texts;
};

TEST_F(InstallerCheckTest, TheSetupOfThePublishedVersionIsFine)
{
    const CInstallerFacts facts = Check(SetupPath(), m_published);
    EXPECT_THAT(m_texts, IsEmpty());
    EXPECT_EQ(facts.bits, 64);
    EXPECT_EQ(facts.version, L"1.3.0");
    EXPECT_EQ(facts.isSigned, std::nullopt);
    EXPECT_EQ(facts.size, ReadFileBytes(SetupPath())->size());
}

TEST_F(InstallerCheckTest, AnotherVersionAndNoneAreErrors)
{
    Check(SetupPath(), {PublishedVersion{1, 4, 0}, {}, {}});
    // Without its resources: the third entry of the optional header's directories.
    std::string bytes = ReadFileBytes(SetupPath()).value();
    bytes.replace(bytes.find("PE\0\0"s) + 24 + 112 + 2 * 8, 8, 8, '\0');
    CheckBytes(bytes);
    EXPECT_THAT(m_texts, testing::Contains(L"is version 1.3.0, and 1.4.0 is published"));
    EXPECT_EQ(m_texts.back(), L"has no version resource");
}

TEST_F(InstallerCheckTest, AProgramFor32BitsIsOneToo)
{
    std::string bytes = ReadFileBytes(SetupPath()).value();
    const std::size_t machine = bytes.find("PE\0\0"s) + 4;
    bytes.replace(machine, 2, "\x4C\x01");
    EXPECT_EQ(CheckBytes(bytes).bits, 32);
}

TEST_F(InstallerCheckTest, OtherFilesAreNoPrograms)
{
    const std::string setup = ReadFileBytes(SetupPath()).value();
    const std::size_t sections = setup.find("PE\0\0"s) + 0x400;
    std::string arm = setup;
    arm.replace(arm.find("PE\0\0"s) + 4, 2, "\x64\xAA");
    for (const std::string& bytes :
         {std::string(), std::string("<!DOCTYPE html>"), setup.substr(0, 100), setup.substr(0, sections), arm,
          ReadFileBytes(BuiltFile(L"OrvaOscAddin.dll")).value()})
    {
        m_findings = {};
        m_texts.clear();
        EXPECT_EQ(CheckBytes(bytes).bits, 0);
        EXPECT_THAT(m_texts, ElementsAre(L"is no whole program for 64-bit or 32-bit Windows"))
            << bytes.size();
    }
}

TEST_F(InstallerCheckTest, TheSignatureIsVerifiedWithTheKeyForThisVersionAndFile)
{
    const CSigner signer(L"private.pem");
    m_key = publishing::ReadPublicKey(BuiltFile(L"keys\\public.pem"));
    m_published.signature = publishing::Wide(signer.Sign("1.3.0", ReadFileBytes(SetupPath()).value()));
    EXPECT_EQ(Check(SetupPath(), m_published).isSigned, true);
    EXPECT_THAT(m_texts, IsEmpty());

    m_key = publishing::ReadPublicKey(BuiltFile(L"keys\\other-public.pem"));
    EXPECT_EQ(Check(SetupPath(), m_published).isSigned, false);
    EXPECT_THAT(m_texts, ElementsAre(L"is not signed with the publisher's key for this version"));
}

TEST_F(InstallerCheckTest, WithoutTheFileThatItHasToBeOnlyItsHeadAndSectionsAreLookedAt)
{
    const std::string cut = ReadFileBytes(SetupPath()).value();
    EXPECT_EQ(CheckBytes(cut.substr(0, cut.size() - 1)).bits, 64);
    EXPECT_THAT(m_texts, IsEmpty());
}

TEST_F(InstallerCheckTest, TheLinkIsReadUpToAZero)
{
    json_spirit::wmValue root;
    json_spirit::read_or_throw(LR"({"x64": {"downloadLink": "a\u0000b"}})", root);
    EXPECT_EQ(publishing::CheckMembers(root, {}, m_findings).link, L"a");
}

TEST_F(InstallerCheckTest, AFileThatIsNotThereCannotBeRead)
{
    EXPECT_THROW(Check(m_folder.File(L"missing.exe"), m_published), publishing::CUsageError);
}

bool g_isFirstRead = true;

// As a file on a server that is lost after the first call.
BOOL WINAPI ReadOnce(HANDLE file, LPVOID buffer, DWORD size, LPDWORD read, LPOVERLAPPED overlapped)
{
    if (std::exchange(g_isFirstRead, false))
    {
        constexpr DWORD kPart = 1000;
        return ReadFile(file, buffer, std::min(size, kPart), read, overlapped);
    }
    SetLastError(ERROR_NETNAME_DELETED);
    return FALSE;
}

TEST_F(InstallerCheckTest, AFileThatIsLostMidwayCannotBeRead)
{
    g_isFirstRead = true;
    const CImportHook hook(GetModuleHandleW(nullptr), "KERNEL32.dll", "ReadFile", &ReadOnce);
    EXPECT_THROW(Check(SetupPath(), m_published), publishing::CUsageError);
}

TEST_F(InstallerCheckTest, AFileOf2GibibytesIsNotRead)
{
    const std::wstring path = m_folder.File(L"setup.exe");
    WriteFileBytes(path, "MZ");
    std::filesystem::resize_file(path, std::uintmax_t{1} << 31);
    try
    {
        Check(path, m_published);
        FAIL();
    }
    catch (const publishing::CUsageError& error)
    {
        EXPECT_EQ(error.what(), publishing::Utf8(path) + " cannot be read: it has 2 GiB or more");
    }
}

class PublicKeyFileTest : public testing::Test
{
protected:
    // What reading the file raises.
    std::string Raised(const std::wstring& path)
    {
        try
        {
            publishing::ReadPublicKey(path);
        }
        catch (const publishing::CUsageError& error)
        {
            const std::string text = error.what();
            return text.substr(text.rfind('\\') + 1);
        }
        return "(none)";
    }

    std::string RaisedFor(const std::string& pem)
    {
        WriteFileBytes(m_folder.File(L"key.pem"), pem);
        return Raised(m_folder.File(L"key.pem"));
    }

    CTempFolder m_folder;
};

TEST_F(PublicKeyFileTest, OnlyAPublicKeyOnP256IsOne)
{
    EXPECT_EQ(Raised(BuiltFile(L"keys\\public.pem")), "(none)");
    const std::string isNone = "key.pem is not a public key on the curve P-256, in PEM";
    EXPECT_EQ(RaisedFor(""), isNone);
    EXPECT_EQ(RaisedFor("no key"), isNone);
    std::string cut = ReadFileBytes(BuiltFile(L"keys\\public.pem")).value();
    EXPECT_EQ(RaisedFor(cut.erase(40, 8)), isNone);
    // Of another curve: secp256k1.
    EXPECT_EQ(RaisedFor("-----BEGIN PUBLIC KEY-----\n"
                        "MFYwEAYHKoZIzj0CAQYFK4EEAAoDQgAEeb5mfvncu6xVoGKVzocLBwKb/NstzijZ\n"
                        "WfKBWxb4F5hIOtp3JqPEZV2k+/wOEQio/Re0SKaFVBmcR9CP+xDUuA==\n"
                        "-----END PUBLIC KEY-----\n"),
              isNone);
    EXPECT_EQ(Raised(BuiltFile(L"keys\\private.pem")),
              "private.pem holds a private key; the public one is needed");
    EXPECT_EQ(Raised(m_folder.File(L"missing.pem")), "missing.pem cannot be read");
}

} // namespace
} // namespace orva::test
