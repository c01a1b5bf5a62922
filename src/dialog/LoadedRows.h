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

    // In the order in which the rules go into the list. `kind` must outlive this object.
    void Add(const CString& kind, CString key, CString value, int position);

    // The rows that stand in the list after all have gone in, top row first.
    std::vector<const Row*> InFinalOrder() const;

private:
    std::vector<Row> m_rows;
};

// Appends the text in the letter case in which two texts are equal exactly when CString::CompareNoCase calls them
// equal. As long as the text, so a reserved string does not move.
void AppendFolded(std::wstring& folded, std::wstring_view text);
