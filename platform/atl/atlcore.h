// Critical sections and the object that knows which module this code was linked into.
//
// Left out: resource modules, string loading, the debug CRT hooks.
// Otherwise than the original: CAtlBaseModule needs no initialisation at load time (it asks the linker where
// the module stands) and CComCriticalSection::Init cannot fail, as InitializeCriticalSection cannot since
// Vista.
#pragma once

#include "platform/atl/atlexcept.h"

namespace ATL
{

/// A recursive lock whose life is set by Init and Term.
class CComCriticalSection
{
public:
    HRESULT Lock() noexcept
    {
        EnterCriticalSection(&m_sec);
        return S_OK;
    }
    HRESULT Unlock() noexcept
    {
        LeaveCriticalSection(&m_sec);
        return S_OK;
    }
    HRESULT Init() noexcept
    {
        InitializeCriticalSection(&m_sec);
        return S_OK;
    }
    HRESULT Term() noexcept
    {
        DeleteCriticalSection(&m_sec);
        return S_OK;
    }

    CRITICAL_SECTION m_sec{};
};

/// A recursive lock that exists from its construction to its destruction.
class CComAutoCriticalSection : public CComCriticalSection
{
public:
    CComAutoCriticalSection() noexcept { CComCriticalSection::Init(); }
    ~CComAutoCriticalSection() noexcept { CComCriticalSection::Term(); }
    CComAutoCriticalSection(const CComAutoCriticalSection&) = delete;
    CComAutoCriticalSection& operator=(const CComAutoCriticalSection&) = delete;

private:
    using CComCriticalSection::Init;
    using CComCriticalSection::Term;
};

/// The lock of objects that live on one thread: none.
class CComFakeCriticalSection
{
public:
    HRESULT Lock() noexcept { return S_OK; }
    HRESULT Unlock() noexcept { return S_OK; }
    HRESULT Init() noexcept { return S_OK; }
    HRESULT Term() noexcept { return S_OK; }
};

/// Holds a lock for the length of a scope.
template <class TLock> class CComCritSecLock
{
public:
    explicit CComCritSecLock(TLock& lock) : m_lock(lock) { m_lock.Lock(); }
    ~CComCritSecLock() { m_lock.Unlock(); }
    CComCritSecLock(const CComCritSecLock&) = delete;
    CComCritSecLock& operator=(const CComCritSecLock&) = delete;

private:
    TLock& m_lock;
};

/// The module (DLL or program) that this code is part of.
class CAtlBaseModule
{
public:
    constexpr CAtlBaseModule() noexcept = default;

    /// The instance handle of this module, also inside a DLL.
    HINSTANCE GetModuleInstance() const noexcept;
};

extern CAtlBaseModule _AtlBaseModule;

} // namespace ATL
