// The columns of a list that share a property. A handful at most, so they are searched from the head.
#pragma once

#include <vector>

class ColumnSet {
public:
    // Puts the column in (`member` true) or takes it out; a column is held at most once.
    void Set(int column, bool member);
    bool Contains(int column) const;

private:
    std::vector<int> m_columns;
};
