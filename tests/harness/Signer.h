// A publisher who signs: a key pair on the curve P-256, and signatures as OpenSSL writes them.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace orva::test
{

/// A big-endian number of the curve's size.
using CurveNumber = std::array<std::uint8_t, 32>;

/// The bytes in base64, in one line.
std::string Base64(std::string_view bytes);
/// A DER INTEGER of these bytes, which may be in any form.
std::string DerInteger(std::string_view bytes);
/// A DER SEQUENCE of this content.
std::string DerSequence(std::string_view content);
/// The DER form of a signature, as it has to be.
std::string DerSignature(const CurveNumber& r, const CurveNumber& s);

/// Signs with the system's cryptography. Throws std::runtime_error if that fails.
class CSigner
{
public:
    /// With a new key pair.
    CSigner();
    /// With a private key in PEM, as OpenSSL writes it, of the build's folder "keys".
    explicit CSigner(const std::wstring& name);
    ~CSigner();
    CSigner(const CSigner&) = delete;
    CSigner& operator=(const CSigner&) = delete;

    /// The public key: x and y, big-endian.
    std::array<std::uint8_t, 64> PublicPoint() const;
    /// The two numbers r and s of a signature with SHA-256.
    std::pair<CurveNumber, CurveNumber> SignNumbers(std::string_view bytes) const;
    /// The signature of a version ("1.3.0") and a file's bytes, as the update-information file has it.
    std::string Sign(const std::string& version, std::string_view bytes) const;

private:
    struct Handles;
    std::unique_ptr<Handles> m_handles;
};

} // namespace orva::test
