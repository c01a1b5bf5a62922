#include "controls/RegistryTree.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

#include "resources/resource.h"
#include "support/ImportPatch.h"
#include "support/ScopedRegistryKey.h"

namespace {

using Texts = std::vector<std::wstring>;

// Writes down which keys this program opens ("~" is the test's own) and closes ("x"), and when it asks for a subkey
// ("?"), and makes chosen calls fail. One at a time.
class RegistryWatch {
public:
    explicit RegistryWatch(const std::wstring& key, const std::wstring& denied = {}, DWORD failingSubkey = MAXDWORD) {
        s_key = key;
        s_denied = denied;
        s_failingSubkey = failingSubkey;
        Take();
    }
    static std::wstring Take() { return std::exchange(s_log, {}); }

private:
    static LSTATUS WINAPI Open(HKEY root, LPCWSTR path, DWORD options, REGSAM access, PHKEY key) {
        EXPECT_TRUE(options == 0 && access == 0x20019);
        const std::wstring name = path;
        s_log += L" " + (name.starts_with(s_key) ? L"~" + name.substr(s_key.size()) : name);
        if (name == s_denied) return ERROR_ACCESS_DENIED;
        return SystemFunction(&RegOpenKeyExW, L"advapi32.dll", "RegOpenKeyExW")(root, path, options, access, key);
    }
    static LSTATUS WINAPI Close(HKEY key) {
        s_log += L" x";
        return SystemFunction(&RegCloseKey, L"advapi32.dll", "RegCloseKey")(key);
    }
    static LSTATUS WINAPI Enum(HKEY key, DWORD index, LPWSTR name, LPDWORD chars, LPDWORD a, LPWSTR b, LPDWORD c,
                               PFILETIME d) {
        EXPECT_EQ(*chars, 1024u);
        EXPECT_EQ(GetCursor(), LoadCursorW(nullptr, IDC_WAIT));
        s_log += L" ?";
        if (index == s_failingSubkey) return ERROR_MORE_DATA;  // as at a name that is too long
        return SystemFunction(&RegEnumKeyExW, L"advapi32.dll", "RegEnumKeyExW")(key, index, name, chars, a, b, c, d);
    }

    static inline std::wstring s_log, s_key, s_denied;
    static inline DWORD s_failingSubkey;
    ImportPatch<decltype(&RegOpenKeyExW)> m_open{GetModuleHandleW(nullptr), "RegOpenKeyExW", Open};
    ImportPatch<decltype(&RegCloseKey)> m_close{GetModuleHandleW(nullptr), "RegCloseKey", Close};
    ImportPatch<decltype(&RegEnumKeyExW)> m_enum{GetModuleHandleW(nullptr), "RegEnumKeyExW", Enum};
};

// Blocks of the size of an item's record that this program took from the heap and did not give back.
int g_recordBlocks = 0;
void* (*g_new)(size_t) = nullptr;
void (*g_delete)(void*, size_t) = nullptr;

// A tree in a window that is never shown, over the real registry, in which each test has a key of its own.
class RegistryTree : public testing::Test {
protected:
    RegistryTree() { m_parent.CreateEx(0, L"STATIC", L"", WS_POPUP, CRect(0, 0, 300, 400), nullptr, 0); }
    ~RegistryTree() override { m_parent.DestroyWindow(); }

    void OpenTree(bool showValues = true) {
        m_tree.Create(WS_CHILD | TVS_HASBUTTONS, CRect(0, 0, 300, 400), &m_parent, IDC_REGISTRY_TREE);
        m_tree.Initialize(showValues);
    }
    std::vector<HTREEITEM> Items(HTREEITEM parent) {
        std::vector<HTREEITEM> items;
        HTREEITEM item = parent != nullptr ? m_tree.GetChildItem(parent) : m_tree.GetRootItem();
        for (; item != nullptr; item = m_tree.GetNextSiblingItem(item)) items.push_back(item);
        return items;
    }
    Texts Children(HTREEITEM parent) {
        Texts texts;
        for (const HTREEITEM item : Items(parent)) texts.emplace_back(m_tree.GetItemText(item));
        return texts;
    }
    HTREEITEM Child(HTREEITEM parent, const std::wstring& text) {
        const Texts texts = Children(parent);
        const auto at = std::ranges::find(texts, text);
        return at != texts.end() ? Items(parent)[static_cast<size_t>(at - texts.begin())] : nullptr;
    }
    // The item of the test's own key, with all above it expanded.
    HTREEITEM Reach() {
        HTREEITEM item = Child(nullptr, L"HKEY_CURRENT_USER");
        for (const std::wstring& name : {std::wstring(L"Software"), m_key.Name()}) {
            m_tree.Expand(item, TVE_EXPAND);
            item = Child(item, name);
        }
        return item;
    }
    std::wstring Path(HTREEITEM item) {
        HKEY root = nullptr;
        CString path = L"left over";
        m_tree.GetItemPath(item, root, path);
        EXPECT_EQ(root, item != nullptr ? HKEY_CURRENT_USER : nullptr);
        return path.GetString();
    }

    CWnd m_parent;
    CRegistryTree m_tree;
    ScopedRegistryKey m_key;
};

}  // namespace

TEST_F(RegistryTree, ShowsHivesThenKeysAboveValuesCapitalsFirstWithPicturesByType) {
    for (const wchar_t* name : {L"apple", L"Zebra", L"zebra2", L"Apple3"}) m_key.AddKey(name);
    for (const wchar_t* name : {L"value", L"Value2", L""}) m_key.SetText(L"", name, L"");
    for (DWORD type = REG_NONE; type <= REG_QWORD; ++type) m_key.SetData(L"", std::to_wstring(type), type, L"", 2);
    m_key.SetData(L"", L"unknown", 0x12345, L"", 2);
    OpenTree();
    const HTREEITEM item = Reach();
    m_tree.Expand(item, TVE_EXPAND);
    std::vector<std::pair<std::wstring, HKEY>> hives;
    for (const HTREEITEM hive : Items(nullptr)) {
        HKEY root = nullptr;
        CString path = L"left over";
        m_tree.GetItemPath(hive, root, path);
        hives.emplace_back(m_tree.GetItemText(hive), root);
        EXPECT_TRUE(path.IsEmpty() && m_tree.IsKeyItem(hive) && m_tree.IsHiveItem(hive));
    }
    EXPECT_EQ(hives, (decltype(hives){{L"HKEY_CLASSES_ROOT", HKEY_CLASSES_ROOT},
                                      {L"HKEY_CURRENT_CONFIG", HKEY_CURRENT_CONFIG},
                                      {L"HKEY_CURRENT_USER", HKEY_CURRENT_USER},
                                      {L"HKEY_LOCAL_MACHINE", HKEY_LOCAL_MACHINE},
                                      {L"HKEY_USERS", HKEY_USERS}}));
    // The pictures were appended in this order: binary, text, key.
    Texts shown = {L"", L"", L""};
    for (const HTREEITEM child : Items(item)) {
        int image = -1;
        int selected = -2;
        m_tree.GetItemImage(child, image, selected);
        EXPECT_EQ(image, selected);
        shown.at(static_cast<size_t>(image)) += L" " + std::wstring(m_tree.GetItemText(child));
    }
    EXPECT_EQ(shown, (Texts{L" 0 10 11 3 4 5 6 8 9 unknown", L"  1 2 7 Value2 value", L" Apple3 Zebra apple zebra2"}));
    EXPECT_EQ(ImageList_GetImageCount(TreeView_GetImageList(m_tree.m_hWnd, TVSIL_NORMAL)), 3);
    EXPECT_EQ(m_tree.GetItemText(Items(item)[4]), L"") << "the first value stands below the last key";
    EXPECT_TRUE(m_tree.IsKeyItem(Child(item, L"apple")) && !m_tree.IsHiveItem(Child(item, L"apple")));
    EXPECT_FALSE(m_tree.IsKeyItem(Child(item, L"")) || m_tree.IsKeyItem(nullptr) || m_tree.IsHiveItem(nullptr));
    EXPECT_EQ(Path(Child(item, L"Zebra")), m_key.Path() + L"\\Zebra");
    EXPECT_EQ(Path(Child(item, L"value")), m_key.Path() + L"\\value");
    EXPECT_EQ(Path(Child(item, L"")), m_key.Path());
    EXPECT_EQ(Path(nullptr), L"");
}

TEST_F(RegistryTree, ReadsNothingBeforeItIsNeededAndEachKeyOnce) {
    m_key.AddKey(L"empty");
    m_key.AddKey(L"key\\below");
    m_key.SetText(L"named", L"v", L"");
    m_key.SetText(L"", L"v1", L"");
    const RegistryWatch watch(m_key.Path());
    for (const bool showValues : {false, true}) {
        OpenTree(showValues);
        EXPECT_EQ(watch.Take(), L"");
        const HTREEITEM item = Reach();
        watch.Take();
        SetCursor(LoadCursorW(nullptr, IDC_CROSS));
        m_tree.Expand(item, TVE_EXPAND);
        EXPECT_EQ(GetCursor(), LoadCursorW(nullptr, IDC_CROSS)) << "waits while it reads only";
        EXPECT_EQ(watch.Take(), L" ~ ? ~\\empty x ? ~\\key x ? ~\\named x ?") << "the key itself stays open";
        EXPECT_EQ(Items(Child(item, L"empty")).size(), 0u);
        EXPECT_EQ(Items(Child(item, L"named")).size(), showValues ? 1u : 0u);
        ASSERT_EQ(Items(Child(item, L"key")).size(), 1u) << "a placeholder";
        EXPECT_FALSE(m_tree.IsKeyItem(Items(Child(item, L"key"))[0])) << "which has no record";
        m_key.AddKey(L"later");
        watch.Take();
        m_tree.SelectItem(item);
        for (const WPARAM key : {WPARAM{VK_LEFT}, WPARAM{VK_RIGHT}})
            m_tree.SendMessage(WM_KEYDOWN, key);  // closed and opened again
        EXPECT_EQ(watch.Take(), L"") << "once in the life of the tree";
        m_tree.DestroyWindow();
        RegDeleteKeyW(m_key.Key(), L"later");
    }
}

TEST_F(RegistryTree, LeavesOutWhatCannotBeReadAndWhatComesAfterAFailure) {
    for (const wchar_t* name : {L"a\\below", L"b", L"c", L"d"}) m_key.AddKey(name);
    m_key.SetText(L"", L"value", L"");
    OpenTree();
    const HTREEITEM item = Reach();
    {
        const RegistryWatch watch(m_key.Path(), m_key.Path() + L"\\b", 3);
        m_tree.Expand(item, TVE_EXPAND);
    }
    EXPECT_EQ(Children(item), (Texts{L"a", L"c", L"value"}));
    const HTREEITEM gone = Child(item, L"a");
    RegDeleteTreeW(m_key.Key(), L"a");
    m_tree.Expand(gone, TVE_EXPAND);
    EXPECT_EQ(Items(gone).size(), 0u) << "the placeholder went";
    EXPECT_EQ(Path(gone), m_key.Path() + L"\\a") << "the tree shows what was";
}

TEST_F(RegistryTree, TakesNamesOfAllKindsAndFreesTheRecordsOfAllItemsWithItsWindow) {
    const Texts names{L"%s%n",
                      L" blank ",
                      L"for/ward",
                      L"tab\there",
                      L"\u00c4\u4e2d\U0001f511",
                      L"\"quoted\" & more",
                      L"HKCU",
                      std::wstring(255, L'k')};
    const std::wstring longValue(16000, L'v');
    for (const std::wstring& name : names) m_key.AddKey(name + L"\\below");
    m_key.SetText(L"", L"back\\slash", L"");
    m_key.SetText(L"", longValue, L"");
    const ImportPatch<decltype(g_new)> newPatch(GetModuleHandleW(nullptr), "_Znwy", [](size_t bytes) {
        g_recordBlocks += bytes == sizeof(RegTreeItemData);
        return g_new(bytes);
    });
    g_new = newPatch.Original();
    const ImportPatch<decltype(g_delete)> deletePatch(
        GetModuleHandleW(nullptr), "_ZdlPvy", [](void* block, size_t bytes) {
            g_recordBlocks -= block != nullptr && bytes == sizeof(RegTreeItemData);
            g_delete(block, bytes);
        });
    g_delete = deletePatch.Original();
    OpenTree();
    g_recordBlocks = 0;
    const HTREEITEM parent = Reach();
    m_tree.Expand(parent, TVE_EXPAND);
    ASSERT_EQ(Items(parent).size(), names.size() + 2);
    for (const std::wstring& name : names) {
        const HTREEITEM item = Child(parent, name);
        ASSERT_NE(item, nullptr) << testing::PrintToString(name);
        EXPECT_EQ(Path(item), m_key.Path() + L"\\" + name);
        m_tree.Expand(item, TVE_EXPAND);
        EXPECT_EQ(Children(item), Texts{L"below"}) << testing::PrintToString(name);
    }
    EXPECT_TRUE(Child(parent, L"back\\slash") != nullptr && Child(parent, longValue) != nullptr);
    EXPECT_GE(g_recordBlocks, 20) << "keys and values from \"Software\" down";
    m_tree.DestroyWindow();
    EXPECT_EQ(g_recordBlocks, 0);
}
