// The registry of this machine as a tree: the five hives, their subkeys, and values as leaves if asked for. It is read
// level by level as the user opens it, each key once; what changes afterwards does not show. A key that cannot be
// opened is left out without a word.
#pragma once

#include <afxcmn.h>

#include <array>
#include <memory>
#include <unordered_map>

#include "controls/TreeOrder.h"
#include "siblings/uictrl/ShellImageList.h"

// What stands behind a tree item, except a placeholder: its item data points to one.
struct RegTreeItemData {
    TreeItemKind m_nKind = TreeItemKind::Key;
    HKEY m_hRootKey = nullptr;  // the predefined root key on a hive's item, else null
    HTREEITEM m_hItem = nullptr;
};

class CRegistryTree : public CTreeCtrl {
public:
    // Pictures and the hives, sorted; with `showValues` keys list their values too. Once per window.
    void Initialize(bool showValues);

    // The hive's root key, and the path from there, empty for the hive itself. A value's path ends with its name; that
    // of a key's default value, whose name is empty, is the key's. A null item gives a null key and an empty path.
    void GetItemPath(HTREEITEM item, HKEY& rootKey, CString& path) const;
    // True for keys and hives; false for values and for a null item.
    bool IsKeyItem(HTREEITEM item) const;
    bool IsHiveItem(HTREEITEM item) const;

protected:
    afx_msg void OnItemExpanding(NMHDR* header, LRESULT* result);
    afx_msg void OnDestroy();
    DECLARE_MESSAGE_MAP()

private:
    // A row of siblings that grows. The next child goes behind `last`: the same place as "at the end", which some
    // systems find only by walking all siblings. The texts are kept for the sort, which the tree would be slow to tell.
    struct GrowingBranch {
        HTREEITEM parent = nullptr;
        HTREEITEM last = TVI_LAST;
        std::unordered_map<HTREEITEM, CString> texts = {};
    };

    RegTreeItemData* RecordOf(HTREEITEM item) const;
    int AddIcon(UINT id);
    void ReadChildren(HTREEITEM item);
    HTREEITEM InsertChild(GrowingBranch& branch, const wchar_t* text, int image);
    HTREEITEM InsertKey(GrowingBranch& branch, const wchar_t* name, HKEY key);
    void InsertSubkeys(GrowingBranch& branch, HKEY rootKey, const CString& path, HKEY key);
    void InsertValues(GrowingBranch& branch, HKEY key);
    void GiveRecord(HTREEITEM item, TreeItemKind kind);
    void SortSiblings(const GrowingBranch& branch);
    void FreeRecordsBelow(HTREEITEM item);

    CShellImageList m_ImageList;
    bool m_bShowValues = false;
    int m_iStringValueImage = -1;
    int m_iBinaryValueImage = -1;
    // The hives' records live as long as this object; those of all other items belong to their items.
    std::array<RegTreeItemData, 5> m_hiveRecords;
    // Holds a value's name during an expansion; the last one stays.
    std::unique_ptr<wchar_t[]> m_valueName;
};
