// A page in the property sheet of a control. What a sheet would ask of it through OLE is not here: no page of ours is
// in one.
#pragma once

#include "framework/Dialog.h"

class AFX_API COlePropertyPage : public CDialog {
    DECLARE_DYNAMIC(COlePropertyPage)

public:
    // A dialog template and the string that a sheet shows on the page's tab, both of the current module state.
    COlePropertyPage(UINT templateId, UINT captionId) : CDialog(templateId), m_idCaption(captionId) {}

protected:
    virtual HRESULT GetClassID(LPCLSID clsid) = 0;

    UINT m_idCaption;
};

// The last step of a page's DoDataExchange: hands what was collected to the control. Nothing here collects.
inline void AFXAPI DDP_PostProcessing(CDataExchange*) {}
