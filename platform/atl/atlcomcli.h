// What a COM client needs: interface pointers, BSTR and VARIANT with automatic release.
//
// Left out: CComGITPtr, CComSafeArray, CAdapt, streaming of BSTRs and VARIANTs, changing and comparing a
// CComBSTR, every value of a CComVariant but texts, calls by name but for reading a property. Otherwise than
// the original: operator-> of the pointers gives the interface itself and so does not hide AddRef and
// Release; CComQIPtr<T> needs an interface whose id g++ knows (__CRT_UUID_DECL), else name the id.
#pragma once

#include "platform/atl/AtlComBstr.h"
#include "platform/atl/AtlComPtr.h"
#include "platform/atl/AtlComVariant.h"

#ifndef _ATL_NO_AUTOMATIC_NAMESPACE
using namespace ATL;
#endif
