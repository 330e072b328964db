// Windows, dialogs, controls, message maps, module state and threads, as MFC names them.
//
// Left out: everything that the add-in does not use; each of the included headers says what. Control classes
// have only what is used of them, and no window creation. AfxInitRichEdit2 leaves the library loaded for
// good.
#pragma once

#include "afxcmdt_.h"
#include "afxdd_.h"
#include "afxdlg_.h"
#include "afxgdi_.h"
#include "afxmsg_.h"
#include "afxstat_.h"
#include "afxthrd_.h"
#include "afxwnd_.h"
#include "atltypes.h"

#include <afx.h>

#include <windows.h>
#include <commctrl.h>

class CStatic : public CWnd
{
    DECLARE_DYNAMIC(CStatic)
};

/// Loads the library that registers the window class "RichEdit20W", once; FALSE when it cannot be loaded.
BOOL AFXAPI AfxInitRichEdit2();
