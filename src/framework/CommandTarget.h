// Whatever has a message map: windows, and the application object at the end of a command's way.
#pragma once

#include "framework/MessageMap.h"
#include "framework/Object.h"

struct AFX_CMDHANDLERINFO;

// What OnCmdMsg gets as its extra parameter for a WM_NOTIFY.
struct AFX_NOTIFY {
    LRESULT* pResult;
    NMHDR* pNMHDR;
};

class AFX_API CCmdTarget : public CObject {
    DECLARE_DYNAMIC(CCmdTarget)

public:
    // Offers a command or notification to the message map; TRUE if a handler took it. `code` holds the notification
    // code in its low half and WM_NOTIFY in its high half, or 0 there for a WM_COMMAND. Override it to route commands
    // on.
    virtual BOOL OnCmdMsg(UINT id, int code, void* extra, AFX_CMDHANDLERINFO* info);

protected:
    static const AFX_MSGMAP* GetThisMessageMap();
    virtual const AFX_MSGMAP* GetMessageMap() const;

    // The entry for the message, the most derived class first, or null.
    const AFX_MSGMAP_ENTRY* FindEntry(UINT message, UINT code = 0, UINT id = 0) const;
};
