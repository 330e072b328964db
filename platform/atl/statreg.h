// The interpreter of registration scripts (.rgs): what a script says is written to or removed from the
// registry.
//
// Left out: IRegistrar as a creatable object, scripts in files or texts, the value type "e" (expandable
// string). Otherwise than the original:
// - a script is read to its end before anything is written, so that a syntax error changes nothing;
// - a replacement stands for its text only: it never brings quotes, braces or further words into the script,
// and
//   an apostrophe in it needs no doubling;
// - key names must not be empty and must not hold a backslash; keys nest at most 64 deep;
// - a failure of the registry itself is returned as its own HRESULT, not as DISP_E_EXCEPTION;
// - removal goes on after a failure and returns the first one.
#pragma once

#include "platform/atl/RegistrationScript.h"
#include "platform/atl/atlbase.h"

namespace ATL
{

/// Reads a script and writes or removes what it says. DISP_E_EXCEPTION for a syntax error or an unknown
/// replacement. Not part of the original's interface.
HRESULT RunRegistrationScript(std::wstring_view text, const CRegistrationReplacements& replacements,
                              bool bRegister) noexcept;

/// Runs registration scripts. Not a counted object: it lives where it is declared.
class CRegObject : public IRegistrarBase
{
public:
    STDMETHOD(QueryInterface)(REFIID riid, void** ppv) override;
    STDMETHOD_(ULONG, AddRef)() override;
    STDMETHOD_(ULONG, Release)() override;

    STDMETHOD(AddReplacement)(LPCOLESTR lpszKey, LPCOLESTR lpszItem) override;
    STDMETHOD(ClearReplacements)() override;

    /// Runs the script in resource szID of type szType in the module file resFileName. The text
    /// is UTF-16 or UTF-8 if it starts with their byte-order marks, else in the system's code page.
    /// DISP_E_EXCEPTION for a syntax error or an unknown replacement. A registration that fails half-way
    /// removes again what it wrote.
    HRESULT ResourceRegisterSz(LPCOLESTR resFileName, LPCOLESTR szID, LPCOLESTR szType) noexcept;
    HRESULT ResourceUnregisterSz(LPCOLESTR resFileName, LPCOLESTR szID, LPCOLESTR szType) noexcept;

private:
    HRESULT RunResource(LPCOLESTR resFileName, LPCOLESTR szID, LPCOLESTR szType, bool bRegister) noexcept;

    CRegistrationReplacements m_replacements;
};

} // namespace ATL

#ifndef _ATL_NO_AUTOMATIC_NAMESPACE
using namespace ATL;
#endif
