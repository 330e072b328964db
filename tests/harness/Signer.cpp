#include "harness/Signer.h"

#include "harness/Files.h"

#include <windows.h>
#include <bcrypt.h>
#include <wincrypt.h>

#include <algorithm>
#include <stdexcept>
#include <vector>

namespace orva::test
{

namespace
{

constexpr ULONG kKeyBits = 256;

void Check(NTSTATUS status, const char* what)
{
    if (!BCRYPT_SUCCESS(status))
    {
        throw std::runtime_error(std::string("cannot ") + what + ": status " + std::to_string(status));
    }
}

UCHAR* Bytes(const void* data)
{
    return static_cast<UCHAR*>(const_cast<void*>(data));
}

// The bytes that follow `mark` in `bytes`.
void CopyAfter(const std::string& bytes, std::string_view mark, UCHAR* target, size_t size)
{
    const size_t at = bytes.find(mark);
    if (at == std::string::npos || at + mark.size() + size > bytes.size())
    {
        throw std::runtime_error("not a private key on the curve P-256");
    }
    std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(at + mark.size()), size, target);
}

std::string ReadPem(const std::wstring& path)
{
    const std::string pem = ReadFileBytes(path).value();
    DWORD size = 0;
    CryptStringToBinaryA(pem.c_str(), 0, CRYPT_STRING_BASE64HEADER, nullptr, &size, nullptr, nullptr);
    std::string der(size, '\0');
    if (!CryptStringToBinaryA(pem.c_str(), 0, CRYPT_STRING_BASE64HEADER, Bytes(der.data()), &size, nullptr,
                              nullptr))
    {
        throw std::runtime_error("not a PEM file");
    }
    return der;
}

} // namespace

struct CSigner::Handles
{
    Handles()
    {
        Check(BCryptOpenAlgorithmProvider(&provider, BCRYPT_ECDSA_P256_ALGORITHM, nullptr, 0), "open ECDSA");
    }
    ~Handles()
    {
        BCryptDestroyKey(key);
        BCryptCloseAlgorithmProvider(provider, 0);
    }
    Handles(const Handles&) = delete;
    Handles& operator=(const Handles&) = delete;

    BCRYPT_ALG_HANDLE provider = nullptr;
    BCRYPT_KEY_HANDLE key = nullptr;
};

std::string Base64(std::string_view bytes)
{
    DWORD size = 0;
    const auto encode = [&](char* text) {
        return CryptBinaryToStringA(Bytes(bytes.data()), static_cast<DWORD>(bytes.size()),
                                    CRYPT_STRING_BASE64 | CRYPT_STRING_NOCRLF, text, &size);
    };
    encode(nullptr);
    std::string text(size, '\0');
    if (!encode(text.data()))
    {
        throw std::runtime_error("cannot encode base64");
    }
    text.resize(size);
    return text;
}

std::string DerInteger(std::string_view bytes)
{
    return "\x02" + std::string(1, static_cast<char>(bytes.size())) + std::string(bytes);
}

std::string DerSequence(std::string_view content)
{
    return "\x30" + std::string(1, static_cast<char>(content.size())) + std::string(content);
}

std::string DerSignature(const CurveNumber& r, const CurveNumber& s)
{
    const auto integer = [](const CurveNumber& number) {
        constexpr std::uint8_t kSign = 0x80;
        const auto first =
            std::find_if(number.begin(), number.end() - 1, [](auto byte) { return byte != 0; });
        std::string bytes(first, number.end());
        return DerInteger((*first >= kSign ? std::string(1, '\0') : std::string()) + bytes);
    };
    return DerSequence(integer(r) + integer(s));
}

CSigner::CSigner() : m_handles(std::make_unique<Handles>())
{
    Check(BCryptGenerateKeyPair(m_handles->provider, &m_handles->key, kKeyBits, 0), "make a key");
    Check(BCryptFinalizeKeyPair(m_handles->key, 0), "make a key");
}

CSigner::CSigner(const std::wstring& name) : m_handles(std::make_unique<Handles>())
{
    using namespace std::string_view_literals;
    const std::string der = ReadPem(BuiltFile(L"keys\\" + name));
    struct
    {
        BCRYPT_ECCKEY_BLOB header;
        std::array<UCHAR, 64> point;
        CurveNumber secret;
    } blob{{BCRYPT_ECDSA_PRIVATE_P256_MAGIC, sizeof(CurveNumber)}, {}, {}};
    // An ECPrivateKey of RFC 5915: its version and the secret; the point, uncompressed, in a bit string.
    CopyAfter(der, "\x02\x01\x01\x04\x20"sv, blob.secret.data(), blob.secret.size());
    CopyAfter(der, "\x03\x42\x00\x04"sv, blob.point.data(), blob.point.size());
    Check(BCryptImportKeyPair(m_handles->provider, nullptr, BCRYPT_ECCPRIVATE_BLOB, &m_handles->key,
                              Bytes(&blob), sizeof(blob), 0),
          "import a key");
}

CSigner::~CSigner() = default;

std::array<std::uint8_t, 64> CSigner::PublicPoint() const
{
    struct
    {
        BCRYPT_ECCKEY_BLOB header;
        std::array<std::uint8_t, 64> point;
    } blob{};
    ULONG size = 0;
    Check(
        BCryptExportKey(m_handles->key, nullptr, BCRYPT_ECCPUBLIC_BLOB, Bytes(&blob), sizeof(blob), &size, 0),
        "export a key");
    return blob.point;
}

std::pair<CurveNumber, CurveNumber> CSigner::SignNumbers(std::string_view bytes) const
{
    BCRYPT_ALG_HANDLE sha256 = nullptr;
    BCRYPT_HASH_HANDLE hash = nullptr;
    CurveNumber digest{};
    Check(BCryptOpenAlgorithmProvider(&sha256, BCRYPT_SHA256_ALGORITHM, nullptr, 0), "open SHA-256");
    Check(BCryptCreateHash(sha256, &hash, nullptr, 0, nullptr, 0, 0), "hash");
    Check(BCryptHashData(hash, Bytes(bytes.data()), static_cast<ULONG>(bytes.size()), 0), "hash");
    Check(BCryptFinishHash(hash, digest.data(), static_cast<ULONG>(digest.size()), 0), "hash");
    BCryptDestroyHash(hash);
    BCryptCloseAlgorithmProvider(sha256, 0);

    std::pair<CurveNumber, CurveNumber> numbers;
    std::array<UCHAR, 2 * sizeof(CurveNumber)> signature{};
    ULONG size = 0;
    Check(BCryptSignHash(m_handles->key, nullptr, digest.data(), static_cast<ULONG>(digest.size()),
                         signature.data(), static_cast<ULONG>(signature.size()), &size, 0),
          "sign");
    std::copy_n(signature.begin(), sizeof(CurveNumber), numbers.first.begin());
    std::copy_n(signature.begin() + sizeof(CurveNumber), sizeof(CurveNumber), numbers.second.begin());
    return numbers;
}

std::string CSigner::Sign(const std::string& version, std::string_view bytes) const
{
    const auto [r, s] = SignNumbers(version + "\n" + std::string(bytes));
    return Base64(DerSignature(r, s));
}

} // namespace orva::test
