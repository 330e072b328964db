// Calling conventions and the Windows headers that every header of the class library takes for granted.
//
// Left out of the original: version and compiler switches, DLL import and export marks, afx_msg (declared
// with the windows), inline control. Nothing here behaves otherwise; on x64 the calling conventions are all
// one.
#pragma once

#include <windows.h>

#ifndef AFXAPI
#define AFXAPI __stdcall
#endif
