// Arrays of pointers, which they do not own:
//
//     CTypedPtrArray<CPtrArray, CShape*> shapes;
//     shapes.Add(shape);
//     for (INT_PTR i = 0; i < shapes.GetCount(); ++i) shapes.GetAt(i)->Draw();
//
// An index outside the array throws CInvalidArgException.
#pragma once

#include <vector>

#include "framework/Exception.h"
#include "framework/Object.h"

class CPtrArray : public CObject {
public:
    INT_PTR GetCount() const { return static_cast<INT_PTR>(m_elements.size()); }
    void* GetAt(INT_PTR index) const { return m_elements[Checked(index)]; }
    // Returns the index of the new element.
    INT_PTR Add(void* element) {
        m_elements.push_back(element);
        return GetCount() - 1;
    }
    // Those behind it move up.
    void RemoveAt(INT_PTR index) { m_elements.erase(m_elements.begin() + static_cast<INT_PTR>(Checked(index))); }
    void RemoveAll() { m_elements.clear(); }

private:
    size_t Checked(INT_PTR index) const {
        if (index < 0 || index >= GetCount()) AfxThrowInvalidArgException();
        return static_cast<size_t>(index);
    }

    std::vector<void*> m_elements;
};

// The same with a pointer type of one's own.
template <class BASE_CLASS, class TYPE>
class CTypedPtrArray : public BASE_CLASS {
public:
    TYPE GetAt(INT_PTR index) const { return static_cast<TYPE>(BASE_CLASS::GetAt(index)); }
    INT_PTR Add(TYPE element) { return BASE_CLASS::Add(element); }
};
