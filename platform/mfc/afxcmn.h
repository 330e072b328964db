// Progress bar, rich-edit and link controls.
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
    void SetRange32(int nLower, int nUpper);
    void GetRange(int& nLower, int& nUpper);
    /// Moves the bar and returns the previous position.
    int SetPos(int nPos);
    int GetPos();
};

class CRichEditCtrl : public CWnd
{
    DECLARE_DYNAMIC(CRichEditCtrl)
public:
    /// The device and line width (twips) that lines are broken for; a null device and 0 break them at the
    /// control's own width. Returns FALSE on failure.
    BOOL SetTargetDevice(HDC hDC, long lLineWidth);
    int GetLineCount() const;
};

class CLinkCtrl : public CWnd
{
    DECLARE_DYNAMIC(CLinkCtrl)
};
