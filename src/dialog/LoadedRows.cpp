#include "dialog/LoadedRows.h"

#include <windows.h>

#include "dialog/KindNames.h"

void AppendFolded(std::wstring& folded, std::wstring_view text) {
    const std::size_t start = folded.size();
    bool onlyAscii = true;
    for (const wchar_t character : text) {
        const bool isSmall = character >= L'a' && character <= L'z';
        folded += isSmall ? static_cast<wchar_t>(character - (L'a' - L'A')) : character;
        onlyAscii = onlyAscii && character < 0x80;
    }
    // Most names are plain, and the system's call costs more than everything else about a row.
    if (!onlyAscii) CharUpperBuffW(folded.data() + start, static_cast<DWORD>(text.size()));
}

void LoadedRows::Add(const CString& kind, CString key, CString value, int position) {
    m_rows.push_back({&kind, std::move(key), std::move(value), position});
}

std::vector<const LoadedRows::Row*> LoadedRows::InFinalOrder() const {
    std::size_t length = 0;
    for (const Row& row : m_rows) length += View(row.key).size() + View(row.value).size();
    std::wstring folded;
    folded.reserve(length);  // the identities look into it
    const auto fold = [&](const CString& text) {
        const std::size_t start = folded.size();
        AppendFolded(folded, View(text));
        return std::wstring_view(folded).substr(start);
    };
    std::vector<PlacedRule> rules;
    rules.reserve(m_rows.size());
    for (const Row& row : m_rows) {
        const std::wstring_view key = fold(row.key);
        rules.push_back({{View(*row.kind), key, fold(row.value)}, row.position});
    }
    std::vector<const Row*> ordered;
    ordered.reserve(m_rows.size());
    for (const std::size_t rule : PlanRows(rules)) ordered.push_back(&m_rows[rule]);
    return ordered;
}
