#include "support/TextUtilitiesMfc.h"

void ReplaceAll(std::wstring& text, const std::wstring& what, const CString& with)
{
    ReplaceAll(text, what, std::wstring(with.GetString()));
}
