// Progress bar and rich-edit controls.
//
// Left out: all other common controls, and all operations but those below.
#pragma once

#include <afxwin.h>

#include <commctrl.h>
#include <richedit.h>

class CProgressCtrl : public CWnd
{
    DECLARE_DYNAMIC(CProgressCtrl)
public:
    void SetRange(short nLower, short nUpper);
    /// Moves the bar and returns the previous position.
    int SetPos(int nPos);
};

class CRichEditCtrl : public CWnd
{
    DECLARE_DYNAMIC(CRichEditCtrl)
};
