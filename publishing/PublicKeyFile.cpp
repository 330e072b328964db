#include "publishing/PublicKeyFile.h"

#include "publishing/CheckOptions.h"
#include "publishing/Files.h"
#include "publishing/Text.h"

#include <windows.h>
#include <wincrypt.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <vector>

namespace publishing
{
namespace
{

// A SubjectPublicKeyInfo of RFC 5480 up to the point: id-ecPublicKey, secp256r1, a bit string,
// "uncompressed".
constexpr std::array<std::uint8_t, 27> kPrefix = {0x30, 0x59, 0x30, 0x13, 0x06, 0x07, 0x2a, 0x86, 0x48,
                                                  0xce, 0x3d, 0x02, 0x01, 0x06, 0x08, 0x2a, 0x86, 0x48,
                                                  0xce, 0x3d, 0x03, 0x01, 0x07, 0x03, 0x42, 0x00, 0x04};

std::vector<BYTE> DecodePem(const std::string& pem)
{
    const auto length = static_cast<DWORD>(pem.size());
    DWORD size = 0;
    if (!CryptStringToBinaryA(pem.data(), length, CRYPT_STRING_BASE64HEADER, nullptr, &size, nullptr,
                              nullptr))
    {
        return {};
    }
    std::vector<BYTE> der(size);
    if (!CryptStringToBinaryA(pem.data(), length, CRYPT_STRING_BASE64HEADER, der.data(), &size, nullptr,
                              nullptr))
    {
        return {};
    }
    der.resize(size);
    return der;
}

} // namespace

CUpdateKey ReadPublicKey(const std::wstring& path)
{
    const std::string pem = ReadWholeFile(path);
    if (pem.find("PRIVATE KEY-----") != std::string::npos)
    {
        throw CUsageError(Utf8(path) + " holds a private key; the public one is needed");
    }
    const std::vector<BYTE> der = DecodePem(pem);
    CUpdateKey key{};
    if (der.size() != kPrefix.size() + key.point.size() ||
        !std::equal(kPrefix.begin(), kPrefix.end(), der.begin()))
    {
        throw CUsageError(Utf8(path) + " is not a public key on the curve P-256, in PEM");
    }
    std::copy(der.begin() + kPrefix.size(), der.end(), key.point.begin());
    return key;
}

} // namespace publishing
