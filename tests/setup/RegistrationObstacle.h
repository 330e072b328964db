// Registry keys that make a registration fail.
#pragma once

#include <windows.h>

#include <string>

namespace orva::test
{

/// The results of creating a lasting subkey of a volatile key, and of a refused write.
inline constexpr HRESULT kChildMustBeVolatile = static_cast<HRESULT>(0x800703FD);
inline constexpr HRESULT kAccessDenied = static_cast<HRESULT>(0x80070005);

/// One such key for its lifetime. Fails the test if it cannot be set up.
class CObstacle
{
public:
    enum class Kind
    {
        /// Takes values but no lasting subkeys. A new key, deleted with the obstacle.
        Volatile,
        /// Can be read and deleted, but takes no values. Created if missing; it stays, and is writable again.
        ReadOnly,
        /// Refuses everything, deletion included. Created if missing; it stays, and is accessible again.
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

    /// Restricts the key; until then it can be used like any other. A volatile key always refuses.
    void Raise();
    /// Ends the restriction. Deletes a volatile key.
    void Lower();

private:
    void SetAccess(const wchar_t* descriptor);

    Kind m_kind;
    HKEY m_root;
    std::wstring m_path;
    HKEY m_key = nullptr;
};

} // namespace orva::test
