// The rules of the sets as the rows that show them when the dialog opens.
#pragma once

#include <afx.h>

#include <string>
#include <string_view>
#include <vector>

#include "dialog/RowPlacement.h"

class LoadedRows {
public:
    struct Row {
        const CString* kind;
        CString key;
        CString value;
        int position;
    };

    explicit LoadedRows(int expectedCount) { m_rows.reserve(static_cast<std::size_t>(expectedCount)); }

    // In the order in which the rules go into the list. `kind` must outlive this object; kinds are told apart by their
    // addresses.
    void Add(const CString& kind, CString key, CString value, int position);

    // The rows that stand in the list after all have gone in, top row first.
    std::vector<const Row*> InFinalOrder() const;

private:
    std::vector<std::size_t> Identities() const;

    std::vector<Row> m_rows;
};

// The text in the letter case in which two texts are equal exactly when CString::CompareNoCase calls them equal.
void FoldCase(std::wstring_view text, std::wstring& folded);
