// A tree view of the dialog: what stands in it, and steps on its items. Items are named by their texts from the root
// on.
#pragma once

#include <windows.h>
#include <commctrl.h>

#include <string>
#include <vector>

class Dialog;

class TreeSteps {
public:
    using Path = std::vector<std::wstring>;

    TreeSteps(Dialog& dialog, HWND tree) : m_dialog(dialog), m_tree(tree) {}

    // The item of that path, the first of several with one text. Expands nothing; a missing item ends the script.
    HTREEITEM Item(const Path& path) const;
    std::wstring Text(HTREEITEM item) const;
    std::wstring SelectedText() const;
    bool IsExpanded(HTREEITEM item) const;

    // The middle of the item's text on the screen; the item is scrolled into view first.
    POINT Centre(HTREEITEM item) const;
    // Clicks the item's button; a tree item without one ends the script.
    void ClickButton(HTREEITEM item);
    // Clicks the buttons of the collapsed items on the way, the last one included, and gives the last item.
    HTREEITEM Expand(const Path& path);

private:
    HTREEITEM Next(UINT relation, HTREEITEM item) const;
    HTREEITEM ChildWithText(HTREEITEM parent, const std::wstring& text) const;

    Dialog& m_dialog;
    HWND m_tree;
};
