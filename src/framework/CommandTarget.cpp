#include "framework/CommandTarget.h"

IMPLEMENT_DYNAMIC(CCmdTarget, CObject)

const AFX_MSGMAP* CCmdTarget::GetMessageMap() const {
    return GetThisMessageMap();
}

const AFX_MSGMAP* CCmdTarget::GetThisMessageMap() {
    static const AFX_MSGMAP_ENTRY entries[] = {{0, 0, 0, nullptr}};
    static const AFX_MSGMAP map = {nullptr, entries};
    return &map;
}

const AFX_MSGMAP_ENTRY* CCmdTarget::FindEntry(UINT message, UINT code, UINT id) const {
    for (const AFX_MSGMAP* map = GetMessageMap(); map != nullptr;
         map = map->pfnGetBaseMap != nullptr ? map->pfnGetBaseMap() : nullptr) {
        for (const AFX_MSGMAP_ENTRY* entry = map->lpEntries; entry->pfn != nullptr; ++entry) {
            if (entry->nMessage == message && entry->nCode == code && entry->nID == id) return entry;
        }
    }
    return nullptr;
}
