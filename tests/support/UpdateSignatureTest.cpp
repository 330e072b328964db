// Who signed a version and a file: real signatures, and everything that is not quite one.
#include "support/UpdateSignature.h"

#include "harness/Files.h"
#include "harness/Signer.h"
#include "harness/TempFolder.h"
#include "harness/Text.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace orva::test
{
namespace
{

using namespace std::string_literals;

// Made by OpenSSL 3.0: printf '1.3.0\nTEXT' | openssl dgst -sha256 -sign private.pem | base64 -w0
constexpr CUpdateKey kOpenSslKey{
    {0xC3, 0x17, 0x49, 0xC1, 0x9C, 0x16, 0xD6, 0x35, 0xF6, 0x02, 0x7D, 0x69, 0xDE, 0x4E, 0x3A, 0x3F,
     0xD6, 0x29, 0x58, 0x4C, 0x3C, 0x6C, 0xED, 0x01, 0xDF, 0xCF, 0xB8, 0x90, 0x66, 0xCB, 0x87, 0x6E,
     0x86, 0x96, 0x7D, 0x28, 0x3A, 0x1A, 0x92, 0xDD, 0x4C, 0xDB, 0x48, 0x68, 0x60, 0x8F, 0x65, 0x56,
     0x49, 0x1F, 0x45, 0x63, 0x50, 0x6A, 0x93, 0x0D, 0x41, 0xF9, 0xC4, 0x13, 0x27, 0xC2, 0xC6, 0x0D}};
constexpr char kOpenSslText[] = "The bytes of an installer.";

/// A signature of 1.3.0 with a text, of each length that the numbers give.
struct COpenSslSignature
{
    const char* text;
    const char* signature;
};

constexpr COpenSslSignature kOpenSslSignatures[] = {
    {kOpenSslText,
     "MEYCIQDqHB9iXm7bKmt+4RcHtoidUat0cbx9KtyJQv2ZzWgpHAIhAMaMHpQmP0Hf3gQ2h1rhd7syAg7ZCE1aG9ii7V7DukK+"},
    {kOpenSslText,
     "MEUCIQD4XDdde6f/oBvH2TyeuUN0w7EMIruJs5PYHKvPjSb/SQIgPTBUg54e7Zsgq5YPKc3/tIY+exawAIYvCFMcliEW/6c="},
    {kOpenSslText,
     "MEQCIGZiC6lAD0Pv853RDfx3Ok3HRScGiuanpl6ZtcQfMOJsAiBeO3Cec+hNZFpwnn9eJathnCYrSxwuP675Yd3C4nooPw=="},
    {kOpenSslText,
     "MEMCIE4Nie2dkfcEwolLvxJZ2d7sxq52DA/gcz7r9wLXSkK0Ah9N7zhoXaWU72iUOrzy7njuBuDm1qOtGotOeh/NSOnF"},
    {"", "MEUCIEBgz2HgwDFEwfb7kgPBr4xfREE1wZeobba2Ueeb9Ok7AiEA4Go7l5hdReNtHtgvP9v6leu+g37iCjO1AxoKFUaaWzc="},
    {"", "MEMCHwpAergi6DiZrB3YVjlMyxXAiWSzdWalhvYmSYheXooCIFslmL3hFo/KuTIkks3BIcscQjNTfk+lAz17Irktr1z1"}};

constexpr char kSignedVersion[] = "1.3.0\n";

class UpdateSignatureTest : public testing::Test
{
protected:
    UpdateSignatureTest()
    {
        m_bytes.resize(100'000);
        unsigned value = 1;
        for (char& byte : m_bytes)
        {
            value = value * 1'103'515'245U + 12'345U;
            byte = static_cast<char>(value >> 16U);
        }
        m_key.point = m_signer.PublicPoint();
        m_signature = m_signer.Sign("1.3.0", m_bytes);
        WriteFileBytes(m_path, m_bytes);
    }

    static bool Verify(const CUpdateKey& key, const std::string& signedVersion, const std::wstring& path,
                       const std::string& signature)
    {
        const UniqueHandle file(
            CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
        return IsSignedBy(key, signedVersion, file.get(), Widen(signature));
    }

    // With a file of these bytes.
    bool VerifyBytes(const std::string& bytes)
    {
        WriteFileBytes(m_path, bytes);
        return Verify(m_key, kSignedVersion, m_path, m_signature);
    }
    bool VerifyVersion(const std::string& signedVersion)
    {
        return Verify(m_key, signedVersion, m_path, m_signature);
    }
    bool VerifySignature(const std::string& signature)
    {
        return Verify(m_key, kSignedVersion, m_path, signature);
    }

    const CTempFolder m_folder;
    const std::wstring m_path = m_folder.File(L"setup.exe");
    const CSigner m_signer;
    CUpdateKey m_key{};
    std::string m_bytes;
    std::string m_signature;
};

TEST_F(UpdateSignatureTest, OpenSslsSignaturesFitTheirTextsOnly)
{
    for (const COpenSslSignature& made : kOpenSslSignatures)
    {
        WriteFileBytes(m_path, made.text);
        EXPECT_TRUE(Verify(kOpenSslKey, kSignedVersion, m_path, made.signature)) << made.signature;
        WriteFileBytes(m_path, std::string(made.text) + "x");
        EXPECT_FALSE(Verify(kOpenSslKey, kSignedVersion, m_path, made.signature)) << made.signature;
    }
}

TEST_F(UpdateSignatureTest, TheWholeFileIsReadFromItsBeginningWhereverItsPositionIs)
{
    const UniqueHandle file(
        CreateFileW(m_path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
    for (int i = 0; i < 2; ++i)
    {
        EXPECT_TRUE(IsSignedBy(m_key, kSignedVersion, file.get(), Widen(m_signature)));
    }
}

TEST_F(UpdateSignatureTest, NoBitOfTheFileMayDifferAtAHundredPlaces)
{
    ASSERT_TRUE(VerifyBytes(m_bytes));
    constexpr size_t kPlaces = 100;
    for (size_t i = 0; i < kPlaces; ++i)
    {
        const size_t place = i * (m_bytes.size() - 1) / (kPlaces - 1);
        std::string changed = m_bytes;
        changed[place] = static_cast<char>(changed[place] ^ 1 << i % 8);
        EXPECT_FALSE(VerifyBytes(changed)) << place;
    }
    EXPECT_TRUE(VerifyBytes(m_bytes));
}

TEST_F(UpdateSignatureTest, NoBitOfTheVersionMayDiffer)
{
    const std::string signedVersion = kSignedVersion;
    for (size_t bit = 0; bit < 8 * signedVersion.size(); ++bit)
    {
        std::string changed = signedVersion;
        changed[bit / 8] = static_cast<char>(changed[bit / 8] ^ 1 << bit % 8);
        EXPECT_FALSE(VerifyVersion(changed)) << bit;
    }
    EXPECT_TRUE(VerifyVersion(signedVersion));
}

TEST_F(UpdateSignatureTest, NoBitOfTheSignatureMayDiffer)
{
    const auto [r, s] = m_signer.SignNumbers(kSignedVersion + m_bytes);
    ASSERT_TRUE(VerifySignature(Base64(DerSignature(r, s))));
    for (const bool isFirst : {true, false})
    {
        for (size_t bit = 0; bit < 8 * r.size(); bit += 5)
        {
            auto numbers = std::pair(r, s);
            CurveNumber& number = isFirst ? numbers.first : numbers.second;
            number[bit / 8] = static_cast<std::uint8_t>(number[bit / 8] ^ 1 << bit % 8);
            EXPECT_FALSE(VerifySignature(Base64(DerSignature(numbers.first, numbers.second)))) << bit;
        }
    }
    EXPECT_FALSE(VerifySignature(Base64(DerSignature(s, r))));
}

TEST_F(UpdateSignatureTest, OtherVersionsAreNotSigned)
{
    // An old installer is not offered under a new number. The last takes a byte of the file.
    for (const std::string& version :
         {"1.3.1\n"s, "1.2.0\n"s, "2.3.0\n"s, "1.30\n"s, "01.3.0\n"s, "1.3.0"s, "1.3.0\r\n"s, "1.3.0\n\n"s,
          ""s, kSignedVersion + m_bytes.substr(0, 1)})
    {
        EXPECT_FALSE(VerifyVersion(version)) << version;
    }
}

TEST_F(UpdateSignatureTest, ALongerAShorterAndAnEmptyFileAreNotSigned)
{
    EXPECT_FALSE(VerifyBytes(m_bytes + '\0'));
    EXPECT_FALSE(VerifyBytes(m_bytes + m_bytes));
    EXPECT_FALSE(VerifyBytes(m_bytes.substr(0, m_bytes.size() - 1)));
    EXPECT_FALSE(VerifyBytes(m_bytes.substr(1)));
    EXPECT_FALSE(VerifyBytes(m_bytes.substr(0, size_t{16} * 1024)));
    EXPECT_FALSE(VerifyBytes(""));
}

TEST_F(UpdateSignatureTest, AnEmptyFileCanBeSigned)
{
    m_signature = m_signer.Sign("1.3.0", "");
    EXPECT_TRUE(VerifyBytes(""));
    EXPECT_FALSE(VerifyBytes("x"));
}

TEST_F(UpdateSignatureTest, FilesAtTheEdgesOfAChunkAreReadWhole)
{
    constexpr size_t kChunk = size_t{16} * 1024;
    for (const size_t size : {kChunk - 1, kChunk, kChunk + 1})
    {
        const std::string bytes = m_bytes.substr(0, size);
        m_signature = m_signer.Sign("1.3.0", bytes);
        EXPECT_TRUE(VerifyBytes(bytes)) << size;
    }
}

TEST_F(UpdateSignatureTest, ASignatureOfAnotherKeyIsNone)
{
    const CSigner other;
    EXPECT_FALSE(VerifySignature(other.Sign("1.3.0", m_bytes)));
    EXPECT_FALSE(Verify({other.PublicPoint()}, kSignedVersion, m_path, m_signature));
    EXPECT_TRUE(Verify({other.PublicPoint()}, kSignedVersion, m_path, other.Sign("1.3.0", m_bytes)));
}

TEST_F(UpdateSignatureTest, AKeyThatIsNoPointOfTheCurveVerifiesNothing)
{
    EXPECT_FALSE(Verify({}, kSignedVersion, m_path, m_signature));
    CUpdateKey wrong = m_key;
    wrong.point[63] ^= 1;
    EXPECT_FALSE(Verify(wrong, kSignedVersion, m_path, m_signature));
}

TEST_F(UpdateSignatureTest, ATextThatIsNoSignatureIsNone)
{
    for (const std::string& text :
         {""s, " "s, "MAYCAQECAQE="s, m_signature + "\n", " " + m_signature, m_signature + "AAAA",
          m_signature.substr(0, 32) + "\r\n" + m_signature.substr(32)})
    {
        EXPECT_FALSE(VerifySignature(text)) << text;
    }
    EXPECT_TRUE(VerifySignature(m_signature));
}

TEST_F(UpdateSignatureTest, AFileThatCannotBeReadIsNotSigned)
{
    EXPECT_FALSE(IsSignedBy(m_key, kSignedVersion, INVALID_HANDLE_VALUE, Widen(m_signature)));
    const UniqueHandle writable(
        CreateFileW(m_path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
    EXPECT_FALSE(IsSignedBy(m_key, kSignedVersion, writable.get(), Widen(m_signature)));
}

} // namespace
} // namespace orva::test
