#include "afxcmn.h"

IMPLEMENT_DYNAMIC(CProgressCtrl, CWnd)
IMPLEMENT_DYNAMIC(CRichEditCtrl, CWnd)

void CProgressCtrl::SetRange(short nLower, short nUpper)
{
    SendMessage(PBM_SETRANGE, 0, MAKELPARAM(nLower, nUpper));
}

int CProgressCtrl::SetPos(int nPos)
{
    return int(SendMessage(PBM_SETPOS, WPARAM(nPos)));
}
