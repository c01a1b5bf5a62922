#include "framework/Object.h"

CRuntimeClass CObject::classCObject = {"CObject", nullptr, nullptr};

CObject* CRuntimeClass::CreateObject() const {
    return m_pfnCreateObject != nullptr ? m_pfnCreateObject() : nullptr;
}

BOOL CRuntimeClass::IsDerivedFrom(const CRuntimeClass* base) const {
    for (const CRuntimeClass* step = this; step != nullptr;
         step = step->m_pfnGetBaseClass != nullptr ? step->m_pfnGetBaseClass() : nullptr) {
        if (step == base) return TRUE;
    }
    return FALSE;
}

CRuntimeClass* CObject::GetRuntimeClass() const {
    return RUNTIME_CLASS(CObject);
}

void CObject::Serialize(CArchive&) {}

void CObject::AssertValid() const {}

void CObject::Dump(CDumpContext&) const {}

BOOL CObject::IsKindOf(const CRuntimeClass* runtimeClass) const {
    return GetRuntimeClass()->IsDerivedFrom(runtimeClass);
}
