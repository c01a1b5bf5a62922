#include "support/TreeSteps.h"

#include "support/Dialog.h"
#include "support/Narrow.h"

HTREEITEM TreeSteps::Next(UINT relation, HTREEITEM item) const {
    return reinterpret_cast<HTREEITEM>(SendMessageW(m_tree, TVM_GETNEXTITEM, relation, reinterpret_cast<LPARAM>(item)));
}

HTREEITEM TreeSteps::ChildWithText(HTREEITEM parent, const std::wstring& text) const {
    HTREEITEM child = parent != nullptr ? Next(TVGN_CHILD, parent) : Next(TVGN_ROOT, nullptr);
    while (child != nullptr && Text(child) != text) child = Next(TVGN_NEXT, child);
    return child;
}

HTREEITEM TreeSteps::Item(const Path& path) const {
    HTREEITEM item = nullptr;
    for (const std::wstring& text : path) {
        item = ChildWithText(item, text);
        if (item == nullptr) m_dialog.Fail("no tree item " + Narrow(text));
    }
    return item;
}

std::wstring TreeSteps::Text(HTREEITEM item) const {
    for (std::wstring text(512, L'\0');; text.resize(text.size() * 4)) {
        TVITEMW request{};
        request.mask = TVIF_TEXT;
        request.hItem = item;
        request.pszText = text.data();
        request.cchTextMax = static_cast<int>(text.size());
        if (!SendMessageW(m_tree, TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&request))) return {};
        // The tree may have put a text of its own in the buffer's place.
        const std::wstring whole = request.pszText;
        if (whole.size() + 1 < text.size()) return whole;
    }
}

std::wstring TreeSteps::SelectedText() const {
    const HTREEITEM item = Next(TVGN_CARET, nullptr);
    return item != nullptr ? Text(item) : std::wstring();
}

bool TreeSteps::IsExpanded(HTREEITEM item) const {
    return (SendMessageW(m_tree, TVM_GETITEMSTATE, reinterpret_cast<WPARAM>(item), TVIS_EXPANDED) & TVIS_EXPANDED) != 0;
}

POINT TreeSteps::Centre(HTREEITEM item) const {
    SendMessageW(m_tree, TVM_ENSUREVISIBLE, 0, reinterpret_cast<LPARAM>(item));
    m_dialog.Settle();
    RECT area{};
    *reinterpret_cast<HTREEITEM*>(&area) = item;
    if (!SendMessageW(m_tree, TVM_GETITEMRECT, TRUE, reinterpret_cast<LPARAM>(&area))) {
        m_dialog.Fail("the tree item is not visible");
    }
    RECT client{};
    GetClientRect(m_tree, &client);
    if (area.right > client.right) area.right = client.right;
    MapWindowPoints(m_tree, nullptr, reinterpret_cast<POINT*>(&area), 2);
    return {(area.left + area.right) / 2, (area.top + area.bottom) / 2};
}

void TreeSteps::ClickButton(HTREEITEM item) {
    POINT place = Centre(item);
    ScreenToClient(m_tree, &place);
    for (; place.x >= 0; place.x -= 2) {
        TVHITTESTINFO hit{};
        hit.pt = place;
        SendMessageW(m_tree, TVM_HITTEST, 0, reinterpret_cast<LPARAM>(&hit));
        if ((hit.flags & TVHT_ONITEMBUTTON) != 0 && hit.hItem == item) {
            ClientToScreen(m_tree, &place);
            m_dialog.Click(place);
            return;
        }
    }
    m_dialog.Fail("the tree item has no button to click: " + Narrow(Text(item)));
}

HTREEITEM TreeSteps::Expand(const Path& path) {
    HTREEITEM item = nullptr;
    for (size_t length = 1; length <= path.size(); ++length) {
        item = Item(Path(path.begin(), path.begin() + static_cast<Path::difference_type>(length)));
        if (!IsExpanded(item)) ClickButton(item);
    }
    return item;
}
