#include "framework/OleFactory.h"

#include "framework/GrowingText.h"
#include "framework/RegKey.h"

IMPLEMENT_DYNAMIC(COleObjectFactory, CCmdTarget)

namespace {

CString ClassKey(REFCLSID clsid) {
    CString key;
    key.Format(L"CLSID\\{%08lX-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}", clsid.Data1, clsid.Data2, clsid.Data3,
               clsid.Data4[0], clsid.Data4[1], clsid.Data4[2], clsid.Data4[3], clsid.Data4[4], clsid.Data4[5],
               clsid.Data4[6], clsid.Data4[7]);
    return key;
}

CString PathOf(HINSTANCE module) {
    return afx::GrowingText([module](wchar_t* buffer, int chars) {
        return static_cast<int>(GetModuleFileNameW(module, buffer, static_cast<DWORD>(chars)));
    });
}

bool SetDefaultValue(const CString& path, const CString& value) {
    CRegKey key;
    return key.Create(HKEY_CLASSES_ROOT, path) == ERROR_SUCCESS && key.SetStringValue(nullptr, value) == ERROR_SUCCESS;
}

}  // namespace

BOOL COleObjectFactory::UpdateRegistry(BOOL) {
    return TRUE;
}

BOOL AFXAPI AfxOleRegisterPropertyPageClass(HINSTANCE module, REFCLSID clsid, UINT typeNameId) {
    CString typeName;
    if (!typeName.LoadString(typeNameId)) return FALSE;
    const CString key = ClassKey(clsid);
    return SetDefaultValue(key, typeName) && SetDefaultValue(key + L"\\InprocServer32", PathOf(module));
}

BOOL AFXAPI AfxOleUnregisterClass(REFCLSID clsid, LPCWSTR progId) {
    if (progId != nullptr) RegDeleteTreeW(HKEY_CLASSES_ROOT, progId);
    return RegDeleteTreeW(HKEY_CLASSES_ROOT, ClassKey(clsid)) == ERROR_SUCCESS;
}
