// The exception type of the COM layer and the function that throws it.
//
// Left out: AtlThrowLastWin32 and the tracing of thrown errors.
// Otherwise than the original: AtlThrow throws CAtlException in MFC programs too, never an MFC exception.
#pragma once

#include "platform/atl/atldef.h"

namespace ATL
{

/// A failure that carries an HRESULT. It is thrown by value and never leaves the module.
class CAtlException
{
public:
    CAtlException() noexcept : m_hr(E_FAIL) {}
    CAtlException(HRESULT hr) noexcept : m_hr(hr) {}

    operator HRESULT() const noexcept { return m_hr; }

    HRESULT m_hr;
};

// Throws CAtlException(hr).
[[noreturn]] inline void AtlThrow(HRESULT hr)
{
    throw CAtlException(hr);
}

/// The HRESULT that stands for a Win32 error code.
inline HRESULT AtlHresultFromWin32(DWORD error) noexcept
{
    return HRESULT_FROM_WIN32(error);
}

/// The HRESULT that stands for the calling thread's last error; never a success.
inline HRESULT AtlHresultFromLastError() noexcept
{
    const DWORD error = GetLastError();
    return error == ERROR_SUCCESS ? E_FAIL : AtlHresultFromWin32(error);
}

} // namespace ATL

#ifndef _ATL_NO_AUTOMATIC_NAMESPACE
using namespace ATL;
#endif
