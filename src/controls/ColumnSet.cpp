#include "controls/ColumnSet.h"

#include <algorithm>

void ColumnSet::Set(int column, bool member) {
    if (!member) {
        std::erase(m_columns, column);
    } else if (!Contains(column)) {
        m_columns.push_back(column);
    }
}

bool ColumnSet::Contains(int column) const {
    return std::find(m_columns.begin(), m_columns.end(), column) != m_columns.end();
}
