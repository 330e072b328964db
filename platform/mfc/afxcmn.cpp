#include "afxcmn.h"

IMPLEMENT_DYNAMIC(CProgressCtrl, CWnd)
IMPLEMENT_DYNAMIC(CRichEditCtrl, CWnd)
IMPLEMENT_DYNAMIC(CLinkCtrl, CWnd)

void CProgressCtrl::SetRange(short nLower, short nUpper)
{
    SendMessage(PBM_SETRANGE, 0, MAKELPARAM(nLower, nUpper));
}

void CProgressCtrl::SetRange32(int nLower, int nUpper)
{
    SendMessage(PBM_SETRANGE32, WPARAM(nLower), LPARAM(nUpper));
}

void CProgressCtrl::GetRange(int& nLower, int& nUpper)
{
    PBRANGE range = {};
    SendMessage(PBM_GETRANGE, TRUE, reinterpret_cast<LPARAM>(&range));
    nLower = range.iLow;
    nUpper = range.iHigh;
}

int CProgressCtrl::SetPos(int nPos)
{
    return int(SendMessage(PBM_SETPOS, WPARAM(nPos)));
}

int CProgressCtrl::GetPos()
{
    return int(SendMessage(PBM_GETPOS));
}

BOOL CRichEditCtrl::SetTargetDevice(HDC hDC, long lLineWidth)
{
    return BOOL(SendMessage(EM_SETTARGETDEVICE, reinterpret_cast<WPARAM>(hDC), LPARAM(lLineWidth)));
}

int CRichEditCtrl::GetLineCount() const
{
    return int(SendMessage(EM_GETLINECOUNT));
}
