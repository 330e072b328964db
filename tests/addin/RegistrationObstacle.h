// Keys that make a registration fail when it gets there.
#pragma once

#include <windows.h>

#include <string>

namespace orva::test
{

/// What a failed write below a volatile key says, and what a refused one says.
inline constexpr HRESULT kChildMustBeVolatile = static_cast<HRESULT>(0x800703FD);
inline constexpr HRESULT kAccessDenied = static_cast<HRESULT>(0x80070005);

/// One key in the way, from construction to the end of its life. Failures to set it up are test failures.
class CObstacle
{
public:
    enum class Kind
    {
        None,
        /// Takes values but no lasting subkeys. A new key, which goes with the obstacle.
        Volatile,
        /// Can be read and deleted, but takes no values. Made if it is not there; it stays, and is writable
        /// again.
        ReadOnly,
        /// Refuses everything, deletion included. Made if it is not there; it stays, and is as before.
        Locked,
    };

    CObstacle(Kind kind, HKEY root, const std::wstring& path);
    ~CObstacle();
    CObstacle(const CObstacle&) = delete;
    CObstacle& operator=(const CObstacle&) = delete;

    /// A new key under HKEY_LOCAL_MACHINE that takes no lasting subkeys.
    explicit CObstacle(const std::wstring& path) : CObstacle(Kind::Volatile, HKEY_LOCAL_MACHINE, path)
    {
        Raise();
    }

    /// Puts the obstacle in the way; until then the key is there, but an ordinary one (save a volatile one).
    void Raise();
    /// Takes it out of the way again.
    void Lower();

private:
    void SetAccess(const wchar_t* descriptor);

    Kind m_kind;
    HKEY m_root;
    std::wstring m_path;
    HKEY m_key = nullptr;
};

} // namespace orva::test
