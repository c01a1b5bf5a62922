#include "controls/RegistryTree.h"

#include <gtest/gtest.h>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "controls/RegistryWatch.h"
#include "resources/resource.h"
#include "support/ImportPatch.h"
#include "support/ScopedRegistryKey.h"

namespace {

using Texts = std::vector<std::wstring>;

// Blocks of the size of an item's record that this program took from the heap and did not give back.
int g_recordBlocks = 0;
void* (*g_new)(size_t) = nullptr;
void (*g_delete)(void*, size_t) = nullptr;

void* CountNew(size_t bytes) {
    g_recordBlocks += bytes == sizeof(RegTreeItemData);
    return g_new(bytes);
}

void CountDelete(void* block, size_t bytes) {
    g_recordBlocks -= block != nullptr && bytes == sizeof(RegTreeItemData);
    g_delete(block, bytes);
}

// A tree in a window that is never shown, over the real registry, in which each test has a key of its own.
class RegistryTreeTest : public testing::Test {
protected:
    RegistryTreeTest() { m_parent.CreateEx(0, L"STATIC", L"", WS_POPUP, CRect(0, 0, 300, 400), nullptr, 0); }
    ~RegistryTreeTest() override { m_parent.DestroyWindow(); }

    void OpenTree(bool showValues = true) {
        constexpr DWORD kStyle = WS_CHILD | WS_VISIBLE | TVS_HASBUTTONS | TVS_HASLINES | TVS_LINESATROOT;
        m_tree.Create(kStyle, CRect(0, 0, 300, 400), &m_parent, IDC_REGISTRY_TREE);
        m_tree.Initialize(showValues);
    }

    std::wstring Text(HTREEITEM item) { return m_tree.GetItemText(item).GetString(); }

    std::vector<HTREEITEM> Items(HTREEITEM parent) {
        std::vector<HTREEITEM> items;
        HTREEITEM item = parent != nullptr ? m_tree.GetChildItem(parent) : m_tree.GetRootItem();
        for (; item != nullptr; item = m_tree.GetNextSiblingItem(item)) {
            items.push_back(item);
        }
        return items;
    }

    Texts Children(HTREEITEM parent) {
        Texts texts;
        for (const HTREEITEM item : Items(parent)) {
            texts.push_back(Text(item));
        }
        return texts;
    }

    HTREEITEM Child(HTREEITEM parent, const std::wstring& text) {
        for (const HTREEITEM item : Items(parent)) {
            if (Text(item) == text) {
                return item;
            }
        }
        return nullptr;
    }

    // The item of a key below HKEY_CURRENT_USER, with all above it expanded.
    HTREEITEM Reach(const Texts& names) {
        HTREEITEM item = Child(nullptr, L"HKEY_CURRENT_USER");
        for (const std::wstring& name : names) {
            m_tree.Expand(item, TVE_EXPAND);
            item = Child(item, name);
        }
        return item;
    }

    // Opens a tree and expands the test's own key in it.
    HTREEITEM OpenKey(bool showValues = true) {
        OpenTree(showValues);
        const HTREEITEM item = Reach({L"Software", m_key.Name()});
        m_tree.Expand(item, TVE_EXPAND);
        return item;
    }

    std::wstring Path(HTREEITEM item) {
        HKEY root = nullptr;
        CString path;
        m_tree.GetItemPath(item, root, path);
        EXPECT_TRUE(item == nullptr || root == HKEY_CURRENT_USER);
        return path.GetString();
    }

    CWnd m_parent;
    CRegistryTree m_tree;
    ScopedRegistryKey m_key;
};

TEST_F(RegistryTreeTest, BeginsWithTheHivesInAlphabeticalOrder) {
    const std::vector<std::pair<std::wstring, HKEY>> hives{{L"HKEY_CLASSES_ROOT", HKEY_CLASSES_ROOT},
                                                           {L"HKEY_CURRENT_CONFIG", HKEY_CURRENT_CONFIG},
                                                           {L"HKEY_CURRENT_USER", HKEY_CURRENT_USER},
                                                           {L"HKEY_LOCAL_MACHINE", HKEY_LOCAL_MACHINE},
                                                           {L"HKEY_USERS", HKEY_USERS}};
    OpenTree();
    std::vector<std::pair<std::wstring, HKEY>> shown;
    for (const HTREEITEM hive : Items(nullptr)) {
        HKEY root = nullptr;
        CString path = L"left over";
        m_tree.GetItemPath(hive, root, path);
        shown.emplace_back(Text(hive), root);
        EXPECT_TRUE(path.IsEmpty());
        EXPECT_TRUE(m_tree.IsKeyItem(hive));
        EXPECT_TRUE(m_tree.IsHiveItem(hive));
    }
    EXPECT_EQ(shown, hives);
}

TEST_F(RegistryTreeTest, ListsKeysAboveValuesCapitalsFirst) {
    for (const wchar_t* name : {L"apple", L"Zebra", L"zebra2", L"Apple3"}) {
        m_key.AddKey(name);
    }
    m_key.SetText(L"", L"value", L"");
    m_key.SetText(L"", L"Value2", L"");
    m_key.SetText(L"", L"", L"the default value");
    const HTREEITEM item = OpenKey();
    EXPECT_EQ(Children(item), (Texts{L"Apple3", L"Zebra", L"apple", L"zebra2", L"", L"Value2", L"value"}));
    EXPECT_TRUE(m_tree.IsKeyItem(Child(item, L"apple")));
    EXPECT_FALSE(m_tree.IsHiveItem(Child(item, L"apple")));
    EXPECT_FALSE(m_tree.IsKeyItem(Child(item, L"")));
    EXPECT_EQ(Path(Child(item, L"Zebra")), m_key.Path() + L"\\Zebra");
    EXPECT_EQ(Path(Child(item, L"value")), m_key.Path() + L"\\value");
    EXPECT_EQ(Path(Child(item, L"")), m_key.Path());
    EXPECT_EQ(Path(nullptr), L"");
    EXPECT_FALSE(m_tree.IsKeyItem(nullptr));
    EXPECT_FALSE(m_tree.IsHiveItem(nullptr));
}

TEST_F(RegistryTreeTest, PicturesFollowTheTypeOfTheValue) {
    for (DWORD type = REG_NONE; type <= REG_QWORD; ++type) {
        m_key.SetData(L"", std::to_wstring(type), type, L"", 2);
    }
    m_key.SetData(L"", L"unknown", 0x12345, L"", 2);
    m_key.AddKey(L"key");
    const HTREEITEM item = OpenKey();
    int keyImage = -1;
    int image = -1;
    int selected = -1;
    m_tree.GetItemImage(Child(item, L"key"), keyImage, selected);
    EXPECT_EQ(keyImage, selected);
    m_tree.GetItemImage(item, image, selected);
    EXPECT_EQ(image, keyImage);

    std::map<int, Texts> byImage;
    for (const HTREEITEM value : Items(item)) {
        m_tree.GetItemImage(value, image, selected);
        EXPECT_EQ(image, selected);
        byImage[image].push_back(Text(value));
    }
    ASSERT_EQ(byImage.size(), 3u);
    EXPECT_EQ(byImage.at(keyImage), Texts{L"key"});
    byImage.erase(keyImage);
    // The binary picture was appended first.
    EXPECT_EQ(byImage.begin()->second, (Texts{L"0", L"10", L"11", L"3", L"4", L"5", L"6", L"8", L"9", L"unknown"}));
    EXPECT_EQ(byImage.rbegin()->second, (Texts{L"1", L"2", L"7"}));
    EXPECT_LT(byImage.rbegin()->first, ImageList_GetImageCount(TreeView_GetImageList(m_tree.m_hWnd, TVSIL_NORMAL)));
}

TEST_F(RegistryTreeTest, PlusSignNeedsSomethingToShow) {
    m_key.AddKey(L"empty");
    m_key.AddKey(L"with key\\below");
    m_key.SetText(L"with value", L"v", L"");
    for (const bool showValues : {true, false}) {
        const HTREEITEM item = OpenKey(showValues);
        EXPECT_EQ(Items(Child(item, L"empty")).size(), 0u);
        EXPECT_EQ(Items(Child(item, L"with key")).size(), 1u);
        EXPECT_EQ(Items(Child(item, L"with value")).size(), showValues ? 1u : 0u);
        const HTREEITEM placeholder = Items(Child(item, L"with key")).front();
        EXPECT_FALSE(m_tree.IsKeyItem(placeholder)) << "a placeholder has no record";
        m_tree.DestroyWindow();
    }
}

TEST_F(RegistryTreeTest, ReadsNothingBeforeItIsNeeded) {
    m_key.AddKey(L"one\\below");
    m_key.AddKey(L"two");
    m_key.SetText(L"", L"v1", L"");
    RegistryWatch watch;
    OpenTree();
    RegistryWatch::Calls calls = watch.Take();
    EXPECT_EQ(calls.queried, 5) << "one question for each hive's plus sign";
    EXPECT_EQ(calls.opened.size(), 0u);
    EXPECT_EQ(calls.subkeysAsked + calls.valuesAsked + calls.closed, 0);

    const HTREEITEM item = Reach({L"Software", m_key.Name()});
    ASSERT_NE(item, nullptr);
    watch.Take();
    m_tree.Expand(item, TVE_EXPAND);
    calls = watch.Take();
    EXPECT_EQ(calls.opened, (Texts{m_key.Path(), m_key.Path() + L"\\one", m_key.Path() + L"\\two"}));
    EXPECT_EQ(calls.subkeysAsked, 3);
    EXPECT_EQ(calls.valuesAsked, 2);
    EXPECT_EQ(calls.queried, 3);
    EXPECT_EQ(calls.closed, 2) << "the expanded key itself stays open";

    // Once in the life of the tree: nothing is read again.
    m_key.AddKey(L"three");
    m_tree.Expand(item, TVE_COLLAPSE);
    m_tree.Expand(item, TVE_EXPAND);
    calls = watch.Take();
    EXPECT_EQ(calls.opened.size(), 0u);
    EXPECT_EQ(calls.subkeysAsked, 0);
    EXPECT_EQ(Children(item), (Texts{L"one", L"two", L"v1"}));
}

TEST_F(RegistryTreeTest, LeavesOutWhatCannotBeOpenedAndWhatComesAfterAFailure) {
    for (const wchar_t* name : {L"a", L"b", L"c", L"d"}) m_key.AddKey(name);
    m_key.SetText(L"", L"value", L"");
    OpenTree();
    const HTREEITEM item = Reach({L"Software", m_key.Name()});
    RegistryWatch watch;
    watch.Deny(m_key.Path() + L"\\b");
    watch.FailSubkeyAt(3);
    m_tree.Expand(item, TVE_EXPAND);
    EXPECT_EQ(Children(item), (Texts{L"a", L"c", L"value"}));
}

TEST_F(RegistryTreeTest, KeyThatCannotBeOpenedAnyMoreShowsNothingBelow) {
    m_key.AddKey(L"gone\\below");
    const HTREEITEM parent = OpenKey();
    const HTREEITEM item = Child(parent, L"gone");
    ASSERT_EQ(Items(item).size(), 1u);
    RegDeleteTreeW(m_key.Key(), L"gone");
    m_tree.Expand(item, TVE_EXPAND);
    EXPECT_EQ(Items(item).size(), 0u) << "the placeholder went";
    EXPECT_EQ(Children(parent), Texts{L"gone"}) << "the tree shows what was";
    EXPECT_EQ(Path(item), m_key.Path() + L"\\gone");
}

TEST_F(RegistryTreeTest, TakesNamesOfAllKinds) {
    const Texts names{L"%s%n",
                      L" blank ",
                      L"for/ward",
                      L"tab\there",
                      L"\u00c4\u4e2d\U0001f511",
                      L"\"quoted\" & more",
                      L"HKCU",
                      std::wstring(255, L'k')};
    const std::wstring longValue(16000, L'v');
    for (const std::wstring& name : names) {
        m_key.AddKey(name + L"\\below");
    }
    m_key.SetText(L"", L"back\\slash", L"");
    m_key.SetText(L"", longValue, L"");
    const HTREEITEM parent = OpenKey();
    ASSERT_EQ(Items(parent).size(), names.size() + 2);
    for (const std::wstring& name : names) {
        const HTREEITEM item = Child(parent, name);
        ASSERT_NE(item, nullptr) << testing::PrintToString(name);
        EXPECT_EQ(Path(item), m_key.Path() + L"\\" + name);
        m_tree.Expand(item, TVE_EXPAND);
        EXPECT_EQ(Children(item), Texts{L"below"}) << testing::PrintToString(name);
    }
    EXPECT_NE(Child(parent, L"back\\slash"), nullptr);
    EXPECT_NE(Child(parent, longValue), nullptr);
}

TEST_F(RegistryTreeTest, FreesTheRecordsOfAllItemsWithItsWindow) {
    m_key.AddKey(L"one\\two");
    m_key.SetText(L"one", L"value", L"");
    m_key.SetText(L"", L"value", L"");
    const ImportPatch<decltype(&CountNew)> newPatch(GetModuleHandleW(nullptr), "_Znwy", CountNew);
    g_new = newPatch.Original();
    const ImportPatch<decltype(&CountDelete)> deletePatch(GetModuleHandleW(nullptr), "_ZdlPvy", CountDelete);
    g_delete = deletePatch.Original();
    OpenTree();
    g_recordBlocks = 0;
    m_tree.Expand(Reach({L"Software", m_key.Name(), L"one"}), TVE_EXPAND);
    // Keys and values from "Software" down; the registry may hold more beside them.
    EXPECT_GE(g_recordBlocks, 6);
    m_tree.DestroyWindow();
    EXPECT_EQ(g_recordBlocks, 0);
}

}  // namespace
