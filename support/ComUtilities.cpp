#include "support/ComUtilities.h"

#include "support/TextUtilities.h"

#include <objbase.h>
#include <oleauto.h>

#include <cstring>

HRESULT BytesToSafeArray(const void* bytes, std::uint32_t count, SAFEARRAY** out)
{
    if (out == nullptr)
    {
        return E_OUTOFMEMORY;
    }

    SAFEARRAYBOUND bound = {count, 0};
    *out = SafeArrayCreate(VT_UI1, 1, &bound);

    // Fails for a null array too.
    void* data = nullptr;
    if (FAILED(SafeArrayAccessData(*out, &data)))
    {
        return E_UNEXPECTED;
    }
    if (count != 0)
    {
        std::memcpy(data, bytes, count);
    }
    return SUCCEEDED(SafeArrayUnaccessData(*out)) ? S_OK : E_UNEXPECTED;
}

std::string CreateGuidString()
{
    return WideToNarrow(CreateGuidStringW());
}

std::wstring CreateGuidStringW()
{
    constexpr int kLengthWithTerminator = 39;
    GUID guid = {};
    CoCreateGuid(&guid);
    wchar_t text[kLengthWithTerminator] = {};
    StringFromGUID2(guid, text, kLengthWithTerminator);
    return text;
}
