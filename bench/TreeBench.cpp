// Expanding one key of the registry tree, against the same registry calls, insertions and sort made directly.
#include <afxcmn.h>
#include <afxwin.h>

#include <deque>
#include <string>
#include <vector>

#include "controls/RegistryTree.h"
#include "support/Ratios.h"

namespace {

constexpr wchar_t kBenchKey[] = L"Software\\RegistryTreeBench";

std::wstring PathOf(int subkeys) {
    return kBenchKey + (L"\\" + std::to_wstring(subkeys));
}

void MakeKey(int subkeys, int values) {
    HKEY key = nullptr;
    RegCreateKeyExW(HKEY_CURRENT_USER, PathOf(subkeys).c_str(), 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS,
                    nullptr, &key, nullptr);
    for (int i = 0; i < subkeys; ++i) {
        HKEY child = nullptr;
        const std::wstring name = L"Subkey with a name of some length " + std::to_wstring(i * 7919 % subkeys);
        RegCreateKeyExW(key, name.c_str(), 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS, nullptr, &child, nullptr);
        RegCloseKey(child);
    }
    for (int i = 0; i < values; ++i) {
        const std::wstring name = L"Value " + std::to_wstring(i * 7919 % values);
        RegSetValueExW(key, name.c_str(), 0, i % 2 == 0 ? REG_SZ : REG_DWORD, reinterpret_cast<const BYTE*>(L"x"), 4);
    }
    RegCloseKey(key);
}

// A window with room for a tree, which sees the tree's notifications as the dialog does.
class CBenchWindow : public CWnd {
public:
    CBenchWindow() { CWnd::CreateEx(0, L"STATIC", L"", WS_POPUP | WS_VISIBLE, CRect(0, 0, 300, 400), nullptr, 0); }
    ~CBenchWindow() override { DestroyWindow(); }
};

constexpr DWORD kTreeStyle = WS_CHILD | WS_VISIBLE | TVS_HASBUTTONS | TVS_HASLINES | TVS_LINESATROOT;

HTREEITEM ChildWithText(const CTreeCtrl& tree, HTREEITEM parent, const std::wstring& text) {
    HTREEITEM item = parent != nullptr ? tree.GetChildItem(parent) : tree.GetRootItem();
    while (item != nullptr && tree.GetItemText(item) != text.c_str()) {
        item = tree.GetNextSiblingItem(item);
    }
    return item;
}

double ExpandOurs(int subkeys) {
    CBenchWindow window;
    CRegistryTree tree;
    tree.Create(kTreeStyle, CRect(0, 0, 300, 400), &window, 1);
    tree.Initialize(true);
    HTREEITEM item = ChildWithText(tree, nullptr, L"HKEY_CURRENT_USER");
    for (const std::wstring name : {L"Software", L"RegistryTreeBench"}) {
        tree.Expand(item, TVE_EXPAND);
        item = ChildWithText(tree, item, name);
    }
    tree.Expand(item, TVE_EXPAND);
    item = ChildWithText(tree, item, std::to_wstring(subkeys));
    return SecondsOf([&] { tree.Expand(item, TVE_EXPAND); });
}

struct BareRecord {
    bool isValue;
    std::wstring name;
};

int CALLBACK CompareBare(LPARAM first, LPARAM second, LPARAM) {
    const auto& record1 = *reinterpret_cast<const BareRecord*>(first);
    const auto& record2 = *reinterpret_cast<const BareRecord*>(second);
    return record1.isValue != record2.isValue ? record1.isValue - record2.isValue : record1.name.compare(record2.name);
}

HTREEITEM InsertBare(HWND tree, HTREEITEM parent, HTREEITEM after, const BareRecord& record) {
    TVINSERTSTRUCTW insert{};
    insert.hParent = parent;
    insert.hInsertAfter = after;
    insert.item.mask = TVIF_TEXT | TVIF_IMAGE | TVIF_SELECTEDIMAGE | TVIF_PARAM;
    insert.item.pszText = const_cast<wchar_t*>(record.name.c_str());
    insert.item.lParam = reinterpret_cast<LPARAM>(&record);
    return reinterpret_cast<HTREEITEM>(SendMessageW(tree, TVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&insert)));
}

void ExpandBare(HWND tree, HTREEITEM item, const std::wstring& path, std::deque<BareRecord>& records) {
    SendMessageW(tree, WM_SETREDRAW, FALSE, 0);
    HKEY key = nullptr;
    RegOpenKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, KEY_READ, &key);
    HTREEITEM last = TVI_LAST;
    wchar_t name[1024];
    DWORD length = 1024;
    for (DWORD i = 0;
         RegEnumKeyExW(key, i, name, &(length = 1024), nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS; ++i) {
        HKEY child = nullptr;
        RegOpenKeyExW(HKEY_CURRENT_USER, (path + L"\\" + name).c_str(), 0, KEY_READ, &child);
        DWORD subkeys = 0;
        DWORD values = 0;
        RegQueryInfoKeyW(child, nullptr, nullptr, nullptr, &subkeys, nullptr, nullptr, &values, nullptr, nullptr,
                         nullptr, nullptr);
        last = InsertBare(tree, item, last, records.emplace_back(BareRecord{false, name}));
        RegCloseKey(child);
    }
    DWORD type = 0;
    for (DWORD i = 0; RegEnumValueW(key, i, name, &(length = 1024), nullptr, &type, nullptr, nullptr) == ERROR_SUCCESS;
         ++i) {
        last = InsertBare(tree, item, last, records.emplace_back(BareRecord{true, name}));
    }
    RegCloseKey(key);
    TVSORTCB sort{item, CompareBare, 0};
    SendMessageW(tree, TVM_SORTCHILDRENCB, 0, reinterpret_cast<LPARAM>(&sort));
    SendMessageW(tree, TVM_EXPAND, TVE_EXPAND, reinterpret_cast<LPARAM>(item));
    SendMessageW(tree, WM_SETREDRAW, TRUE, 0);
    InvalidateRect(tree, nullptr, TRUE);
}

double ExpandBare(int subkeys) {
    CBenchWindow window;
    const HWND tree =
        CreateWindowExW(0, WC_TREEVIEWW, L"", kTreeStyle, 0, 0, 300, 400, window.m_hWnd, nullptr, nullptr, nullptr);
    std::deque<BareRecord> records{{false, L"top"}};
    const HTREEITEM item = InsertBare(tree, TVI_ROOT, TVI_LAST, records.front());
    return SecondsOf([&] { ExpandBare(tree, item, PathOf(subkeys), records); });
}

}  // namespace

int wmain() {
    const std::vector<int> sizes{5000, 10000, 20000};
    for (const int subkeys : sizes) {
        MakeKey(subkeys, subkeys / 20);
    }
    Ratios ratios;
    ratios.Compare(
        "expanding 20000 subkeys and 1000 values", 1.3, [] { return ExpandOurs(20000); },
        [] { return ExpandBare(20000); }, 5);
    ratios.Grow("expanding", kLinear, sizes, ExpandOurs);
    RegDeleteTreeW(HKEY_CURRENT_USER, kBenchKey);
    ratios.Print();
    return 0;
}
