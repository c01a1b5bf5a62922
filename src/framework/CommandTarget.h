// Whatever has a message map.
#pragma once

#include "framework/MessageMap.h"
#include "framework/Object.h"

class AFX_API CCmdTarget : public CObject {
    DECLARE_DYNAMIC(CCmdTarget)

protected:
    static const AFX_MSGMAP* GetThisMessageMap();
    virtual const AFX_MSGMAP* GetMessageMap() const;

    // The entry for the message, the most derived class first, or null.
    const AFX_MSGMAP_ENTRY* FindEntry(UINT message, UINT code = 0, UINT id = 0) const;
};
