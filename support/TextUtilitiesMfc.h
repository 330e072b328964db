// ReplaceAll for replacement texts held in a CString; apart from TextUtilities.h, which builds without MFC.
#pragma once

#include "support/TextUtilities.h"

#include <afxwin.h>

/// As the wide form of ReplaceAll, with the replacement taken from a CString.
void ReplaceAll(std::wstring& text, const std::wstring& what, const CString& with);

/// A literal converts to std::wstring and to CString alike; this form keeps such calls unambiguous.
inline void ReplaceAll(std::wstring& text, const std::wstring& what, const wchar_t* with)
{
    ReplaceAll(text, what, std::wstring(with));
}
