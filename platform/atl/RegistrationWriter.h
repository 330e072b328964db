// Carries the steps of a registration script out in the registry.
#pragma once

#include "platform/atl/RegistrationScript.h"

#include <windows.h>

#include <span>

namespace ATL
{

/// Writes what the steps ask for. With perUser, what belongs under HKEY_CLASSES_ROOT goes to the current
/// user's classes. On a failure everything that was written before it is removed again, as RemoveRegistration
/// does it, and the HRESULT of the Win32 error is returned. May throw std::bad_alloc.
HRESULT WriteRegistration(std::span<const CRegistrationStep> steps, bool perUser);

/// Removes what the steps would write: every named value, then every key from the inside out. A key marked
/// noRemove stays. A key marked forceRemove goes with everything in it; any other key goes only when no
/// subkey is left in it. What is not there is not missed. Goes on after a failure and returns the first one.
/// May throw std::bad_alloc.
HRESULT RemoveRegistration(std::span<const CRegistrationStep> steps, bool perUser);

} // namespace ATL
