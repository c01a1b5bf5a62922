#include "dialog/DropPlan.h"

namespace {
// A default value has no name of its own, so below a key its path is the key's path and nothing is to be cut.
std::wstring_view KeyOfValue(std::wstring_view path, std::wstring_view name) {
    const bool hasName = path.size() > name.size() && path[path.size() - name.size() - 1] == L'\\';
    return hasName ? path.substr(0, path.size() - name.size() - 1) : path;
}
}  // namespace

DropPlan PlanDrop(DraggedItem item, std::wstring_view path, std::wstring_view itemText, int dropRow, int rowCount) {
    const int row = dropRow == -1 ? rowCount : dropRow;
    switch (item) {
        case DraggedItem::Hive:
            break;
        case DraggedItem::Key:
            return {false, RuleKind::Branch, std::wstring(path), {}, row};
        case DraggedItem::Value:
            return {false, RuleKind::Value, std::wstring(KeyOfValue(path, itemText)), std::wstring(itemText), row};
    }
    DropPlan refusal;
    refusal.refused = true;
    return refusal;
}
