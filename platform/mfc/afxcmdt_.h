// The base of everything that has a message map; part of <afxwin.h>, which is the header to include.
//
// Left out: OLE automation, connection maps, wait cursors, command-UI updates.
#pragma once

#include "afxmsg_.h"

#include <afx.h>

class CCmdTarget : public CObject
{
    DECLARE_DYNAMIC(CCmdTarget)
public:
    CCmdTarget() = default;

    /// Routes a command or control notification to the message map. `nCode` is the control's code for
    /// WM_COMMAND and, for WM_NOTIFY, MAKELONG(code, WM_NOTIFY) with `pExtra` pointing to an AFX_NOTIFY. With
    /// `pHandlerInfo` the handler is only looked up. Returns TRUE when there is a handler.
    virtual BOOL OnCmdMsg(UINT nID, int nCode, void* pExtra, AFX_CMDHANDLERINFO* pHandlerInfo);

protected:
    /// The entry for a message, searched from `pMap` through its bases; null when there is none.
    static const AFX_MSGMAP_ENTRY* FindMessageEntry(const AFX_MSGMAP* pMap, UINT nMessage, UINT nCode,
                                                    UINT nID);

    /// Spelled out, since only the classes derived from this one override it.
    static const AFX_MSGMAP* GetThisMessageMap();
    virtual const AFX_MSGMAP* GetMessageMap() const;
};
