#include "controls/RegistryTree.h"

#include <string>
#include <string_view>

#include "controls/KeyReader.h"
#include "controls/ScopedRedrawOff.h"
#include "controls/TreePath.h"
#include "controls/ValueType.h"
#include "helpers/CursorHelper.h"
#include "helpers/TextView.h"
#include "resources/resource.h"

namespace {

constexpr int kImageListInit = 32;
constexpr auto kKeyIcon = static_cast<ShellIcons::ShellIconId>(3);

// Stands below a key that was not read yet, so that the tree draws a plus sign. Found by its place; nobody compares the
// text.
constexpr wchar_t kPlaceholder[] = L"{A5E3444A-0357-4a91-8394-AD8F8E641A72}";

class ScopedWaitCursor {
public:
    ScopedWaitCursor() { CursorHelper::SetWaitCursor(true); }
    ~ScopedWaitCursor() { CursorHelper::RestoreCursor(); }
    ScopedWaitCursor(const ScopedWaitCursor&) = delete;
    ScopedWaitCursor& operator=(const ScopedWaitCursor&) = delete;
};

using ItemTexts = std::unordered_map<HTREEITEM, CString>;

int CALLBACK CompareItems(LPARAM first, LPARAM second, LPARAM itemTexts) {
    const auto& texts = *reinterpret_cast<const ItemTexts*>(itemTexts);
    const auto& record1 = *reinterpret_cast<const RegTreeItemData*>(first);
    const auto& record2 = *reinterpret_cast<const RegTreeItemData*>(second);
    return CompareSiblings(record1.m_nKind, ViewOf(texts.find(record1.m_hItem)->second), record2.m_nKind,
                           ViewOf(texts.find(record2.m_hItem)->second));
}

}  // namespace

BEGIN_MESSAGE_MAP(CRegistryTree, CTreeCtrl)
ON_NOTIFY_REFLECT(TVN_ITEMEXPANDINGW, &CRegistryTree::OnItemExpanding)
ON_WM_DESTROY()
END_MESSAGE_MAP()

void CRegistryTree::Initialize(bool showValues) {
    m_ImageList.Initialize(kImageListInit);
    SetImageList(&m_ImageList, TVSIL_NORMAL);
    m_bShowValues = showValues;
    if (showValues) {
        m_iBinaryValueImage = AddIcon(IDI_BINARY_VALUE);
        m_iStringValueImage = AddIcon(IDI_STRING_VALUE);
    }

    const std::pair<const wchar_t*, HKEY> hives[] = {{L"HKEY_LOCAL_MACHINE", HKEY_LOCAL_MACHINE},
                                                     {L"HKEY_CURRENT_USER", HKEY_CURRENT_USER},
                                                     {L"HKEY_CLASSES_ROOT", HKEY_CLASSES_ROOT},
                                                     {L"HKEY_USERS", HKEY_USERS},
                                                     {L"HKEY_CURRENT_CONFIG", HKEY_CURRENT_CONFIG}};
    static_assert(std::size(hives) == std::tuple_size_v<decltype(m_hiveRecords)>);
    GrowingBranch top{TVI_ROOT};
    for (std::size_t i = 0; i < std::size(hives); ++i) {
        const auto& [name, rootKey] = hives[i];
        const HTREEITEM item = InsertKey(top, name, rootKey);
        m_hiveRecords[i] = {TreeItemKind::Key, rootKey, item};
        SetItemData(item, reinterpret_cast<DWORD_PTR>(&m_hiveRecords[i]));
    }
    SortSiblings(top);
}

int CRegistryTree::AddIcon(UINT id) {
    const LPCWSTR name = MAKEINTRESOURCEW(id);
    return m_ImageList.Add(LoadIconW(AfxFindResourceHandle(name, RT_GROUP_ICON), name));
}

HTREEITEM CRegistryTree::InsertChild(GrowingBranch& branch, const wchar_t* text, int image) {
    const HTREEITEM item = InsertItem(text, branch.parent, branch.last);
    if (item != nullptr) {
        branch.last = item;
        branch.texts.emplace(item, text);
        SetItemImage(item, image, image);
    }
    return item;
}

HTREEITEM CRegistryTree::InsertKey(GrowingBranch& branch, const wchar_t* name, HKEY key) {
    const HTREEITEM item = InsertChild(branch, name, m_ImageList.GetIconIndex(kKeyIcon));
    if (item != nullptr && HasChildren(key, m_bShowValues)) {
        InsertItem(kPlaceholder, item, TVI_LAST);
    }
    return item;
}

void CRegistryTree::InsertSubkeys(GrowingBranch& branch, HKEY rootKey, const CString& path, HKEY key) {
    EnumerateSubkeys(key, [&](const wchar_t* name) {
        const std::wstring childPath = ChildPath(ViewOf(path), name);
        if (const KeyHandle child = OpenKeyForReading(rootKey, childPath.c_str())) {
            GiveRecord(InsertKey(branch, name, child.get()), TreeItemKind::Key);
        }
    });
}

void CRegistryTree::InsertValues(GrowingBranch& branch, HKEY key) {
    EnumerateValues(key, m_valueName, [&](const wchar_t* name, DWORD type) {
        const int image = IsTextValueType(type) ? m_iStringValueImage : m_iBinaryValueImage;
        GiveRecord(InsertChild(branch, name, image), TreeItemKind::Value);
    });
}

void CRegistryTree::GiveRecord(HTREEITEM item, TreeItemKind kind) {
    if (item != nullptr) {
        SetItemData(item, reinterpret_cast<DWORD_PTR>(new RegTreeItemData{kind, nullptr, item}));
    }
}

void CRegistryTree::OnItemExpanding(NMHDR* header, LRESULT* result) {
    *result = 0;
    const TVITEMW& item = reinterpret_cast<const NMTREEVIEWW*>(header)->itemNew;
    if ((item.state & TVIS_EXPANDEDONCE) == 0) {
        const ScopedWaitCursor wait;
        const ScopedRedrawOff still(*this);
        ReadChildren(item.hItem);
    }
}

void CRegistryTree::ReadChildren(HTREEITEM item) {
    if (const HTREEITEM placeholder = GetChildItem(item)) {
        DeleteItem(placeholder);
    }
    HKEY rootKey = nullptr;
    CString path;
    GetItemPath(item, rootKey, path);
    HKEY key = rootKey;
    if (!path.IsEmpty()) {
        // Never closed: an expanded key stays open, which a key can be only once in the life of the tree.
        key = OpenKeyForReading(rootKey, path).release();
        if (key == nullptr) {
            return;
        }
    }
    GrowingBranch branch{item};
    InsertSubkeys(branch, rootKey, path, key);
    if (m_bShowValues) {
        InsertValues(branch, key);
    }
    SortSiblings(branch);
}

void CRegistryTree::SortSiblings(const GrowingBranch& branch) {
    TVSORTCB sort{branch.parent, CompareItems, reinterpret_cast<LPARAM>(&branch.texts)};
    SortChildrenCB(&sort);
}

RegTreeItemData* CRegistryTree::RecordOf(HTREEITEM item) const {
    return item != nullptr ? reinterpret_cast<RegTreeItemData*>(GetItemData(item)) : nullptr;
}

void CRegistryTree::GetItemPath(HTREEITEM item, HKEY& rootKey, CString& path) const {
    std::wstring below;
    HTREEITEM hive = item;
    for (HTREEITEM parent = nullptr; hive != nullptr && (parent = GetParentItem(hive)) != nullptr; hive = parent) {
        below = PathThrough(ViewOf(GetItemText(hive)), below);
    }
    const RegTreeItemData* record = RecordOf(hive);
    rootKey = record != nullptr ? record->m_hRootKey : nullptr;
    path = CString(below.data(), static_cast<int>(below.size()));
}

bool CRegistryTree::IsKeyItem(HTREEITEM item) const {
    const RegTreeItemData* record = RecordOf(item);
    return record != nullptr && record->m_nKind == TreeItemKind::Key;
}

bool CRegistryTree::IsHiveItem(HTREEITEM item) const {
    return IsKeyItem(item) && GetParentItem(item) == nullptr;
}

void CRegistryTree::OnDestroy() {
    for (HTREEITEM hive = GetRootItem(); hive != nullptr;) {
        const HTREEITEM next = GetNextSiblingItem(hive);
        FreeRecordsBelow(hive);
        DeleteItem(hive);
        hive = next;
    }
    CTreeCtrl::OnDestroy();
}

void CRegistryTree::FreeRecordsBelow(HTREEITEM item) {
    for (HTREEITEM child = GetChildItem(item); child != nullptr; child = GetNextSiblingItem(child)) {
        FreeRecordsBelow(child);
        delete RecordOf(child);
        SetItemData(child, 0);
    }
}
