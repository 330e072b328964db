// The interface through which a module hands replacement texts to the registration-script interpreter.
//
// Left out: IRegistrar (scripts are run by CRegObject only) and the control-hosting interfaces.
// Otherwise than the original: no difference is known.
#pragma once

#include <unknwn.h>

/// Takes the texts that stand for %NAME% in registration scripts.
struct IRegistrarBase : public IUnknown
{
    /// Defines or redefines a replacement. Names are compared without regard to case.
    STDMETHOD(AddReplacement)(LPCOLESTR key, LPCOLESTR item) = 0;

    // Forgets every replacement.
    STDMETHOD(ClearReplacements)() = 0;
};
