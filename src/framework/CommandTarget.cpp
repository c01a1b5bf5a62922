#include "framework/CommandTarget.h"

IMPLEMENT_DYNAMIC(CCmdTarget, CObject)

const AFX_MSGMAP* CCmdTarget::GetMessageMap() const {
    return GetThisMessageMap();
}

const AFX_MSGMAP* CCmdTarget::GetThisMessageMap() {
    static const AFX_MSGMAP_ENTRY entries[] = {{0, 0, 0, 0, nullptr}};
    static const AFX_MSGMAP map = {nullptr, entries};
    return &map;
}

const AFX_MSGMAP_ENTRY* CCmdTarget::FindEntry(UINT message, UINT code, UINT id) const {
    for (const AFX_MSGMAP* map = GetMessageMap(); map != nullptr;
         map = map->pfnGetBaseMap != nullptr ? map->pfnGetBaseMap() : nullptr) {
        for (const AFX_MSGMAP_ENTRY* entry = map->lpEntries; entry->pfn != nullptr; ++entry) {
            if (entry->nMessage == message && entry->nCode == code && id >= entry->nID && id <= entry->nLastID)
                return entry;
        }
    }
    return nullptr;
}

BOOL CCmdTarget::OnCmdMsg(UINT id, int code, void* extra, AFX_CMDHANDLERINFO*) {
    const UINT message = HIWORD(code) != 0 ? HIWORD(code) : static_cast<UINT>(WM_COMMAND);
    const AFX_MSGMAP_ENTRY* entry = FindEntry(message, LOWORD(code), id);
    if (entry == nullptr) return FALSE;
    AFX_MSG_CALL call{message, id, 0, 0};
    if (message != WM_NOTIFY) return entry->pfn(*this, call);
    const AFX_NOTIFY& notify = *static_cast<AFX_NOTIFY*>(extra);
    call.lParam = reinterpret_cast<LPARAM>(notify.pNMHDR);
    const bool taken = entry->pfn(*this, call);
    if (taken) *notify.pResult = call.result;
    return taken;
}
