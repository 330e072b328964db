#include "support/UpdateKey.h"

#ifdef ORVA_UPDATE_KEY

#include "OrvaUpdateKey.h"

namespace
{

constexpr CUpdateKey kKey{{ORVA_UPDATE_KEY_BYTES}};

bool IsSignedByPublisher(const std::string& signedVersion, HANDLE file, const std::wstring& signature)
{
    return IsSignedBy(kKey, signedVersion, file, signature);
}

} // namespace

const UpdateVerifier kUpdateVerifier = IsSignedByPublisher;

#else

const UpdateVerifier kUpdateVerifier = nullptr;

#endif
