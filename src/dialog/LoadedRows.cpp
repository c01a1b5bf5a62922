#include "dialog/LoadedRows.h"

#include "dialog/KindNames.h"

CString FoldCase(const CString& text) {
    CString folded = text;
    folded.MakeUpper();
    return folded;
}

void LoadedRows::Add(const CString& kind, CString key, CString value, int position) {
    m_rows.push_back({&kind, std::move(key), std::move(value), position});
}

std::vector<const LoadedRows::Row*> LoadedRows::InFinalOrder() const {
    std::vector<CString> folded;
    folded.reserve(2 * m_rows.size());  // the identities below look into these texts
    std::vector<PlacedRule> rules;
    rules.reserve(m_rows.size());
    for (const Row& row : m_rows) {
        const CString& key = folded.emplace_back(FoldCase(row.key));
        const CString& value = folded.emplace_back(FoldCase(row.value));
        rules.push_back({{View(*row.kind), View(key), View(value)}, row.position});
    }
    std::vector<const Row*> ordered;
    ordered.reserve(m_rows.size());
    for (const std::size_t rule : PlanRows(rules)) ordered.push_back(&m_rows[rule]);
    return ordered;
}
