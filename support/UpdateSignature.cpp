#include "support/UpdateSignature.h"

#include "support/EcdsaSignature.h"

#include <windows.h>
#include <bcrypt.h>

#include <memory>
#include <new>
#include <vector>

namespace
{

constexpr ULONG kChunkSize = 16 * 1024;

// SHA-256's.
using Digest = std::array<UCHAR, 32>;

struct ProviderCloser
{
    void operator()(void* provider) const noexcept { BCryptCloseAlgorithmProvider(provider, 0); }
};
struct HashDestroyer
{
    void operator()(void* hash) const noexcept { BCryptDestroyHash(hash); }
};
struct KeyDestroyer
{
    void operator()(void* key) const noexcept { BCryptDestroyKey(key); }
};
using UniqueProvider = std::unique_ptr<void, ProviderCloser>;
using UniqueHash = std::unique_ptr<void, HashDestroyer>;
using UniqueKey = std::unique_ptr<void, KeyDestroyer>;

// Null if the system has no such algorithm.
UniqueProvider OpenProvider(const wchar_t* algorithm)
{
    BCRYPT_ALG_HANDLE provider = nullptr;
    return UniqueProvider(
        BCRYPT_SUCCESS(BCryptOpenAlgorithmProvider(&provider, algorithm, nullptr, 0)) ? provider : nullptr);
}

bool AddToHash(const UniqueHash& hash, const void* data, ULONG size)
{
    // The function only reads, although its parameter is not const.
    auto* const bytes = static_cast<UCHAR*>(const_cast<void*>(data));
    return BCRYPT_SUCCESS(BCryptHashData(hash.get(), bytes, size, 0));
}

bool AddFileToHash(const UniqueHash& hash, HANDLE file)
{
    if (!SetFilePointerEx(file, LARGE_INTEGER{}, nullptr, FILE_BEGIN))
    {
        return false;
    }
    std::vector<UCHAR> chunk(kChunkSize);
    DWORD read = 0;
    do
    {
        if (!ReadFile(file, chunk.data(), kChunkSize, &read, nullptr) || !AddToHash(hash, chunk.data(), read))
        {
            return false;
        }
    } while (read != 0);
    return true;
}

bool MakeDigest(const std::string& signedVersion, HANDLE file, Digest& digest)
{
    const UniqueProvider provider = OpenProvider(BCRYPT_SHA256_ALGORITHM);
    DWORD objectSize = 0;
    ULONG size = 0;
    if (provider == nullptr || !BCRYPT_SUCCESS(BCryptGetProperty(provider.get(), BCRYPT_OBJECT_LENGTH,
                                                                 reinterpret_cast<UCHAR*>(&objectSize),
                                                                 sizeof(objectSize), &size, 0)))
    {
        return false;
    }
    // Later systems than Windows Vista make the object themselves. It has to outlive the hash.
    std::vector<UCHAR> object(objectSize);
    BCRYPT_HASH_HANDLE handle = nullptr;
    if (!BCRYPT_SUCCESS(BCryptCreateHash(provider.get(), &handle, object.data(), objectSize, nullptr, 0, 0)))
    {
        return false;
    }
    const UniqueHash hash(handle);
    return AddToHash(hash, signedVersion.data(), static_cast<ULONG>(signedVersion.size())) &&
           AddFileToHash(hash, file) &&
           BCRYPT_SUCCESS(BCryptFinishHash(hash.get(), digest.data(), static_cast<ULONG>(digest.size()), 0));
}

// Null if the system takes these numbers for no point of the curve.
UniqueKey ImportKey(const UniqueProvider& provider, const CUpdateKey& key)
{
    struct
    {
        BCRYPT_ECCKEY_BLOB header;
        CUpdateKey key;
    } blob{{BCRYPT_ECDSA_PUBLIC_P256_MAGIC, kEcdsaNumberSize}, key};
    BCRYPT_KEY_HANDLE handle = nullptr;
    return UniqueKey(
        BCRYPT_SUCCESS(BCryptImportKeyPair(provider.get(), nullptr, BCRYPT_ECCPUBLIC_BLOB, &handle,
                                           reinterpret_cast<UCHAR*>(&blob), sizeof(blob), 0))
            ? handle
            : nullptr);
}

bool Verify(const CUpdateKey& key, const std::string& signedVersion, HANDLE file,
            const std::wstring& signature)
{
    EcdsaSignature numbers{};
    Digest digest{};
    if (!DecodeEcdsaSignature(signature, numbers) || !MakeDigest(signedVersion, file, digest))
    {
        return false;
    }
    const UniqueProvider provider = OpenProvider(BCRYPT_ECDSA_P256_ALGORITHM);
    const UniqueKey imported = provider != nullptr ? ImportKey(provider, key) : nullptr;
    return imported != nullptr &&
           BCRYPT_SUCCESS(BCryptVerifySignature(imported.get(), nullptr, digest.data(),
                                                static_cast<ULONG>(digest.size()), numbers.data(),
                                                static_cast<ULONG>(numbers.size()), 0));
}

} // namespace

bool IsSignedBy(const CUpdateKey& key, const std::string& signedVersion, HANDLE file,
                const std::wstring& signature)
{
    try
    {
        return Verify(key, signedVersion, file, signature);
    }
    catch (const std::bad_alloc&)
    {
        return false;
    }
}
