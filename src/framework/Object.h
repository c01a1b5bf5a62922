// The root of the framework's classes and the run-time class records that describe them.
//
//     class CShape : public CObject {
//         DECLARE_DYNAMIC(CShape)
//     };
//     IMPLEMENT_DYNAMIC(CShape, CObject)          // in the .cpp
//     ...
//     if (object->IsKindOf(RUNTIME_CLASS(CShape))) { ... }
//
// With DECLARE_DYNCREATE and IMPLEMENT_DYNCREATE the record can also make objects of the class.
#pragma once

#include "framework/Api.h"

class CArchive;
class CDumpContext;
class CObject;

// Describes one class. Records are compared by address: there is one per class and process.
struct CRuntimeClass {
    LPCSTR m_lpszClassName;
    CObject* (*m_pfnCreateObject)();  // null: objects cannot be made by the record
    CRuntimeClass* (*m_pfnGetBaseClass)();

    // A new object, owned by the caller, or null if the class cannot be made this way.
    AFX_API CObject* CreateObject() const;
    // Whether the class is `base` or descends from it.
    AFX_API BOOL IsDerivedFrom(const CRuntimeClass* base) const;
};

class AFX_API CObject {
public:
    virtual CRuntimeClass* GetRuntimeClass() const;
    virtual ~CObject() = default;
    virtual void Serialize(CArchive& archive);
    virtual void AssertValid() const;
    virtual void Dump(CDumpContext& context) const;

    CObject(const CObject&) = delete;
    CObject& operator=(const CObject&) = delete;

    BOOL IsKindOf(const CRuntimeClass* runtimeClass) const;

    static CRuntimeClass classCObject;

protected:
    CObject() = default;
};

#define RUNTIME_CLASS(class_name) (&class_name::class##class_name)

#define DECLARE_DYNAMIC(class_name)                  \
public:                                              \
    static CRuntimeClass class##class_name;          \
    static CRuntimeClass* GetBaseRuntimeClass();     \
    CRuntimeClass* GetRuntimeClass() const override; \
                                                     \
private:

#define DECLARE_DYNCREATE(class_name) \
    DECLARE_DYNAMIC(class_name)       \
public:                               \
    static CObject* CreateObject();   \
                                      \
private:

// The base's record is reached through a function, because the address of another DLL's data is no constant.
#define IMPLEMENT_RUNTIMECLASS(class_name, base_class_name, create)                                        \
    CRuntimeClass* class_name::GetBaseRuntimeClass() {                                                     \
        return RUNTIME_CLASS(base_class_name);                                                             \
    }                                                                                                      \
    CRuntimeClass class_name::class##class_name = {#class_name, create, &class_name::GetBaseRuntimeClass}; \
    CRuntimeClass* class_name::GetRuntimeClass() const {                                                   \
        return RUNTIME_CLASS(class_name);                                                                  \
    }

#define IMPLEMENT_DYNAMIC(class_name, base_class_name) IMPLEMENT_RUNTIMECLASS(class_name, base_class_name, nullptr)

#define IMPLEMENT_DYNCREATE(class_name, base_class_name) \
    CObject* class_name::CreateObject() {                \
        return new class_name;                           \
    }                                                    \
    IMPLEMENT_RUNTIMECLASS(class_name, base_class_name, &class_name::CreateObject)
