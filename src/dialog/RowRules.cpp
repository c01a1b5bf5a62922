#include "dialog/RowRules.h"

#include "helpers/Trim.h"

RuleKind KindOfCell(std::wstring_view typeCell, const KindTexts& texts) {
    if (typeCell == texts.branch) return RuleKind::Branch;
    if (typeCell == texts.key) return RuleKind::Key;
    if (typeCell == texts.value) return RuleKind::Value;
    return RuleKind::Unknown;
}

CellFollowUp FollowCellChange(int column, std::wstring_view typeCell, std::wstring_view valueCell,
                              const KindTexts& texts, std::wstring_view defaultValueText) {
    if (column == typeColumn) {
        const RuleKind kind = KindOfCell(typeCell, texts);
        if (kind == RuleKind::Branch || kind == RuleKind::Key) return {valueColumn, L""};
        if (valueCell.empty()) return {valueColumn, defaultValueText, true};
    } else if (column == valueColumn) {
        return {typeColumn, TrimBlanks(valueCell).empty() ? texts.branch : texts.value};
    }
    return {};
}

int RowAfterDeletion(int from, int countAfter) {
    return from < countAfter ? from : from - 1;
}
