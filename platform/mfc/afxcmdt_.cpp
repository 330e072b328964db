#include "afxcmdt_.h"

IMPLEMENT_DYNAMIC(CCmdTarget, CObject)

const AFX_MSGMAP* CCmdTarget::GetMessageMap() const
{
    return GetThisMessageMap();
}

const AFX_MSGMAP* CCmdTarget::GetThisMessageMap()
{
    static constexpr AFX_MSGMAP_ENTRY noEntries[] = {{0, 0, 0, 0, nullptr}};
    static constexpr AFX_MSGMAP map = {nullptr, noEntries};
    return &map;
}

const AFX_MSGMAP_ENTRY* CCmdTarget::FindMessageEntry(const AFX_MSGMAP* pMap, UINT nMessage, UINT nCode,
                                                     UINT nID)
{
    for (const AFX_MSGMAP* map = pMap; map; map = map->pfnGetBaseMap ? map->pfnGetBaseMap() : nullptr)
    {
        for (const AFX_MSGMAP_ENTRY* entry = map->lpEntries; entry->pfn; ++entry)
        {
            if (entry->nMessage == nMessage && entry->nCode == nCode && nID >= entry->nID &&
                nID <= entry->nLastID)
            {
                return entry;
            }
        }
    }
    return nullptr;
}

BOOL CCmdTarget::OnCmdMsg(UINT nID, int nCode, void* pExtra, AFX_CMDHANDLERINFO* pHandlerInfo)
{
    const UINT message = HIWORD(nCode) ? HIWORD(nCode) : WM_COMMAND;
    const AFX_MSGMAP_ENTRY* entry = FindMessageEntry(GetMessageMap(), message, LOWORD(nCode), nID);
    if (!entry)
    {
        return FALSE;
    }
    if (pHandlerInfo)
    {
        *pHandlerInfo = {this, entry->pfn};
        return TRUE;
    }
    AFX_MSG_CALL call = {message, nID, 0, 0};
    if (message == WM_NOTIFY)
    {
        auto* notify = static_cast<AFX_NOTIFY*>(pExtra);
        call.lParam = reinterpret_cast<LPARAM>(notify->pNMHDR);
        call.result = *notify->pResult;
        entry->pfn(this, call);
        *notify->pResult = call.result;
    }
    else
    {
        entry->pfn(this, call);
    }
    return TRUE;
}
