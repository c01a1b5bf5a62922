// Class factories, as far as a class object needs one that OLE is never told of, and the registration of classes.
#pragma once

#include "framework/CommandTarget.h"

class AFX_API COleObjectFactory : public CCmdTarget {
    DECLARE_DYNAMIC(COleObjectFactory)

public:
    // `runtimeClass` makes the objects; both it and the text live as long as the factory. With `multiInstance`, each
    // object wants a process of its own.
    COleObjectFactory(REFCLSID clsid, CRuntimeClass* runtimeClass, BOOL multiInstance, LPCWSTR progId)
        : m_clsid(clsid), m_pRuntimeClass(runtimeClass), m_bMultiInstance(multiInstance), m_lpszProgID(progId) {}

    // Whether OLE knows the factory as a class object.
    virtual BOOL IsRegistered() const { return m_dwRegister != 0; }
    // Override it to write the class into the registry, or to take it out; TRUE for success.
    virtual BOOL UpdateRegistry(BOOL registers);

protected:
    CLSID m_clsid;
    CRuntimeClass* m_pRuntimeClass;
    BOOL m_bMultiInstance;
    LPCWSTR m_lpszProgID;
    DWORD m_dwRegister = 0;
};

// Writes the class under HKEY_CLASSES_ROOT\CLSID as one that lives in the module, with a string resource as its name.
// FALSE when the registry refuses or there is no such string.
AFX_API BOOL AFXAPI AfxOleRegisterPropertyPageClass(HINSTANCE module, REFCLSID clsid, UINT typeNameId);
// Removes the class, and its program identifier if one is given. FALSE when the class is not there.
AFX_API BOOL AFXAPI AfxOleUnregisterClass(REFCLSID clsid, LPCWSTR progId);
