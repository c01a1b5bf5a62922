// Maps from pointers to pointers, which own neither:
//
//     void* value = nullptr;
//     if (map.Lookup(key, value)) ...
//     for (POSITION place = map.GetStartPosition(); place != nullptr;) map.GetNextAssoc(place, key, value);
#pragma once

#include <map>

#include "framework/Object.h"

class CMapPtrToPtr : public CObject {
public:
    // The block size is a hint that this implementation has no use for.
    explicit CMapPtrToPtr(INT_PTR blockSize = 10) { static_cast<void>(blockSize); }

    // FALSE, and `value` as it was, if the key is not there.
    BOOL Lookup(void* key, void*& value) const {
        const auto found = m_values.find(key);
        if (found == m_values.end()) return FALSE;
        value = found->second;
        return TRUE;
    }
    void SetAt(void* key, void* value) { m_values[key] = value; }
    // FALSE if the key is not there.
    BOOL RemoveKey(void* key) { return m_values.erase(key) != 0; }

    // Null if the map is empty. A position stays good until its key is removed.
    POSITION GetStartPosition() const { return Place(m_values.begin()); }
    // The pair at `place`, which moves on, or becomes null behind the last.
    void GetNextAssoc(POSITION& place, void*& key, void*& value) const {
        const auto& pair = *reinterpret_cast<const std::pair<void* const, void*>*>(place);
        key = pair.first;
        value = pair.second;
        place = Place(m_values.upper_bound(key));
    }

private:
    using Values = std::map<void*, void*>;

    POSITION Place(Values::const_iterator pair) const {
        if (pair == m_values.end()) return nullptr;
        return reinterpret_cast<POSITION>(const_cast<Values::value_type*>(&*pair));
    }

    Values m_values;
};
