#include "dialog/LoadedRows.h"

#include <windows.h>

#include <functional>
#include <unordered_set>

#include "dialog/KindNames.h"

void FoldCase(std::wstring_view text, std::wstring& folded) {
    folded.assign(text);
    bool onlyAscii = true;
    for (wchar_t& character : folded) {
        if (character >= L'a' && character <= L'z') character = static_cast<wchar_t>(character - (L'a' - L'A'));
        onlyAscii = onlyAscii && character < 0x80;
    }
    // Most names are plain, and the system's call costs more than everything else about a row.
    if (!onlyAscii) CharUpperBuffW(folded.data(), static_cast<DWORD>(folded.size()));
}

void LoadedRows::Add(const CString& kind, CString key, CString value, int position) {
    m_rows.push_back({&kind, std::move(key), std::move(value), position});
}

// Folded texts are hashed and not kept: as many again as the rows hold would cost more than comparing two of them when
// two hashes are equal.
std::vector<std::size_t> LoadedRows::Identities() const {
    std::wstring folded;
    const auto hash = [&](std::size_t row) {
        FoldCase(ViewOf(m_rows[row].key), folded);
        const std::size_t key = std::hash<std::wstring>()(folded);
        FoldCase(ViewOf(m_rows[row].value), folded);
        return key * 31 + std::hash<std::wstring>()(folded);
    };
    const auto isEqual = [&](std::size_t a, std::size_t b) {
        return m_rows[a].kind == m_rows[b].kind && m_rows[a].key.CompareNoCase(m_rows[b].key) == 0 &&
               m_rows[a].value.CompareNoCase(m_rows[b].value) == 0;
    };
    std::unordered_set<std::size_t, decltype(hash), decltype(isEqual)> first(m_rows.size(), hash, isEqual);
    std::vector<std::size_t> identities;
    identities.reserve(m_rows.size());
    for (std::size_t row = 0; row < m_rows.size(); ++row) identities.push_back(*first.insert(row).first);
    return identities;
}

std::vector<const LoadedRows::Row*> LoadedRows::InFinalOrder() const {
    const std::vector<std::size_t> identities = Identities();
    std::vector<PlacedRule> rules;
    rules.reserve(m_rows.size());
    for (std::size_t row = 0; row < m_rows.size(); ++row) rules.push_back({identities[row], m_rows[row].position});
    std::vector<const Row*> ordered;
    ordered.reserve(m_rows.size());
    for (const std::size_t row : PlanRows(rules)) ordered.push_back(&m_rows[row]);
    return ordered;
}
