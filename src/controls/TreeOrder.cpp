#include "controls/TreeOrder.h"

int CompareSiblings(TreeItemKind kind1, std::wstring_view text1, TreeItemKind kind2, std::wstring_view text2) {
    if (kind1 != kind2) {
        return kind1 == TreeItemKind::Key ? -1 : 1;
    }
    return text1.compare(text2);
}
