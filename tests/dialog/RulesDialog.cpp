#include "dialog/RulesDialog.h"

#include <algorithm>

#include "dialog/RegistryRulesDlg.h"

RECT Frame(HWND window) {
    RECT frame{};
    GetWindowRect(window, &frame);
    return frame;
}

namespace {

// Pixels of a window as it stands on the screen.
std::vector<DWORD> Picture(HWND window, SIZE size) {
    const HDC screen = GetWindowDC(window);
    const HDC memory = CreateCompatibleDC(screen);
    BITMAPINFO info{};
    info.bmiHeader = {sizeof info.bmiHeader, size.cx, -size.cy, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    void* bits = nullptr;
    const HBITMAP bitmap = CreateDIBSection(screen, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    const HGDIOBJ previous = SelectObject(memory, bitmap);
    BitBlt(memory, 0, 0, size.cx, size.cy, screen, 0, 0, SRCCOPY);
    GdiFlush();
    const auto* const first = static_cast<const DWORD*>(bits);
    std::vector<DWORD> pixels(first, first + std::size_t(size.cx) * std::size_t(size.cy));
    SelectObject(memory, previous);
    DeleteObject(bitmap);
    DeleteDC(memory);
    ReleaseDC(window, screen);
    return pixels;
}

std::wstring WhatTheMouseHolds(Dialog& d) {
    std::wstring holds;
    if (d.Capture() == d.Window()) holds += L", captured";
    RECT clip{};
    GetClipCursor(&clip);
    if (clip.right - clip.left < GetSystemMetrics(SM_CXSCREEN)) holds += L", clipped";
    const ListSteps list = d.List(IDC_RULE_LIST);
    for (int row = 0; row < list.RowCount(); ++row) {
        if (ListView_GetItemState(list.Window(), row, LVIS_DROPHILITED) != 0) holds += L", row " + std::to_wstring(row);
    }
    if (ImageList_GetDragImage(nullptr, nullptr) != nullptr) holds += L", image";
    return holds.substr(holds.empty() ? 0 : 2);
}

std::wstring ItemText(HWND tree, HTREEITEM item) {
    std::wstring text(512, L'\0');
    TVITEMW request{};
    request.mask = TVIF_TEXT;
    request.hItem = item;
    request.pszText = text.data();
    request.cchTextMax = static_cast<int>(text.size());
    // The tree may have put a text of its own in the buffer's place.
    return SendMessageW(tree, TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&request)) != 0 ? request.pszText : L"";
}

// The middle of the item's text; the item is scrolled into view first.
POINT ItemCentre(Dialog& d, HWND tree, HTREEITEM item) {
    SendMessageW(tree, TVM_ENSUREVISIBLE, 0, reinterpret_cast<LPARAM>(item));
    d.Settle();
    RECT area{};
    TreeView_GetItemRect(tree, item, &area, TRUE);
    area.right = std::min(area.right, Frame(tree).right - Frame(tree).left);
    return Dialog::Centre(tree, area);
}

void ClickButton(Dialog& d, HWND tree, HTREEITEM item) {
    TVHITTESTINFO hit{};
    hit.pt = ItemCentre(d, tree, item);
    ScreenToClient(tree, &hit.pt);
    for (hit.hItem = nullptr; hit.hItem != item || (hit.flags & TVHT_ONITEMBUTTON) == 0; --hit.pt.x) {
        if (hit.pt.x < 0) d.Fail("the tree item has no button to click");
        SendMessageW(tree, TVM_HITTEST, 0, reinterpret_cast<LPARAM>(&hit));
    }
    ClientToScreen(tree, &hit.pt);
    d.Click(hit.pt);
}

std::wstring KeyBox(Dialog& d) {
    static const std::wstring watermark = L"Click here to create a new rule";
    std::wstring key = d.Text(IDC_NEW_KEY);
    if (key.starts_with(watermark)) key.replace(0, watermark.size(), L"...");
    const HDC dc = CreateCompatibleDC(nullptr);
    SendMessageW(d.Window(), WM_CTLCOLOREDIT, reinterpret_cast<WPARAM>(dc),
                 reinterpret_cast<LPARAM>(d.Control(IDC_NEW_KEY)));
    if (GetTextColor(dc) == RGB(0x80, 0x80, 0x80)) key = L"(" + key + L")";
    DeleteDC(dc);
    return key;
}

}  // namespace

HostWindow::HostWindow()
    : m_window(CreateWindowExW(0, L"STATIC", L"Host", WS_POPUP | WS_CAPTION | WS_VISIBLE, 0, 0, 300, 200, nullptr,
                               nullptr, GetModuleHandleW(nullptr), nullptr)) {
    SetForegroundWindow(m_window);
    SetActiveWindow(m_window);
}

POINT Gap(Dialog& d) {
    const RECT list = Frame(d.Control(IDC_RULE_LIST));
    return {(Frame(d.Control(IDC_REGISTRY_TREE)).right + list.left) / 2, (list.top + list.bottom) / 2};
}

std::wstring ComparePicture(HWND window, std::initializer_list<int> without) {
    const RECT frame = Frame(window);
    const SIZE size{frame.right - frame.left, frame.bottom - frame.top};
    HideCaret(nullptr);
    RedrawWindow(window, nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
    const std::vector<DWORD> stands = Picture(window, size);
    RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_UPDATENOW);
    const std::vector<DWORD> fresh = Picture(window, size);
    ShowCaret(nullptr);
    for (LONG i = 0; i < std::ssize(stands); ++i) {
        const POINT place{frame.left + i % size.cx, frame.top + i / size.cx};
        const auto covers = [&](int id) {
            const RECT area = Frame(GetDlgItem(window, id));
            return PtInRect(&area, place) != FALSE;
        };
        const auto at = static_cast<std::size_t>(i);
        if (stands[at] != fresh[at] && std::ranges::none_of(without, covers))
            return L"differs at " + std::to_wstring(place.x - frame.left) + L"," + std::to_wstring(place.y - frame.top);
    }
    return L"fresh";
}

Act RulesDialog::Open(int row, int column) {
    return [=](Dialog& d) {
        if (column == 0) ListView_Scroll(List(d).Window(), -1000, 0);  // an edit has scrolled to its own column
        List(d).Click(row, column);
        if (CellEditor(d) == nullptr) List(d).Click(row, column);
        d.WaitFor("a cell's editor", [&] { return CellEditor(d) != nullptr; });
    };
}

Act RulesDialog::Pick(int row, int index) {
    return [=](Dialog& d) {
        if (row != ofStrip) Open(row, 0)(d);
        const HWND combo = row != ofStrip ? CellEditor(d) : d.Control(IDC_NEW_TYPE);
        if (!SendMessageW(combo, CB_GETDROPPEDSTATE, 0, 0)) d.Click(combo);
        d.PickFromPopup(combo, index);
    };
}

Act RulesDialog::HoldOver(const Texts& item, int row) {
    return
        [=](Dialog& d) { d.DragTo(Hold(d, item), row == behindRows ? List(d).BehindRows() : List(d).Centre(row, 1)); };
}

Act RulesDialog::Drop(const Texts& item, int row) {
    return [=](Dialog& d) {
        HoldOver(item, row)(d);
        d.Release();
    };
}

HTREEITEM RulesDialog::Reach(Dialog& d, const Texts& path) {
    const HWND tree = d.Control(IDC_REGISTRY_TREE);
    HTREEITEM item = nullptr;
    for (const std::wstring& text : path) {
        if (item != nullptr && (TreeView_GetItemState(tree, item, TVIS_EXPANDED) & TVIS_EXPANDED) == 0)
            ClickButton(d, tree, item);
        item = item != nullptr ? TreeView_GetChild(tree, item) : TreeView_GetRoot(tree);
        while (item != nullptr && ItemText(tree, item) != text) item = TreeView_GetNextSibling(tree, item);
        if (item == nullptr) d.Fail("no such tree item");
    }
    return item;
}

POINT RulesDialog::Hold(Dialog& d, const Texts& item) {
    Texts path{L"HKEY_CURRENT_USER", L"T"};
    path.insert(path.end(), item.begin(), item.end());
    POINT hold = ItemCentre(d, d.Control(IDC_REGISTRY_TREE), Reach(d, item.front().starts_with(L"HKEY") ? item : path));
    // A default value has no text to take hold of, only an icon left of where it would be.
    if (item.back().empty()) hold.x -= 10;
    return hold;
}

std::wstring RulesDialog::RowsOf(Dialog& d) {
    std::wstring rows;
    for (const auto& cells : List(d).Rows())
        rows += (rows.empty() ? L"" : L" ") + cells[0] + L"|" + cells[1] + L"|" + cells[2] + L";";
    return rows;
}

HWND RulesDialog::CellEditor(Dialog& d) {
    const HWND edit = Dialog::FindBelow(d.Control(IDC_RULE_LIST), L"Edit");
    return edit != nullptr ? edit : Dialog::FindBelow(d.Control(IDC_RULE_LIST), L"ComboBox");
}

bool RulesDialog::CursorIs(Dialog& d, const wchar_t* standard) {
    HCURSOR cursor = nullptr;
    d.OnGuiThread([&] { cursor = GetCursor(); });
    return cursor == LoadCursorW(nullptr, standard);
}

RulesDialog::RulesDialog() {
    m_branch.AddKey(L"Vendor\\App");
    m_branch.AddKey(L"Viewer");
    m_branch.SetText(L"Vendor", L"Vendor", L"x");
    m_branch.SetText(L"Vendor", L"", L"the default");
    m_branch.SetNumber(L"Vendor", L"back\\slash", 7);
}

void RulesDialog::AddBranches(std::initializer_list<const wchar_t*> keys, int first, int end) {
    for (const wchar_t* key : keys) control.AddKeyRule(key, 1, 32767);
    for (int i = first; i < end; ++i) control.AddKeyRule((L"HKCU\\" + std::to_wstring(i)).c_str(), 1, 32767);
}

long RulesDialog::Show(const std::function<void(Dialog&)>& script) {
    long result = -1;
    driver.Run([&] { result = control.Show(); },
               [&](Dialog& d) {
                   look = Seen(d);
                   script(d);
               });
    return result;
}

Look RulesDialog::LookAt(Dialog& d) {
    static const std::map<int, const wchar_t*> names{
        {0, L"elsewhere"},     {IDC_REGISTRY_TREE, L"tree"}, {IDC_RULE_LIST, L"list"},     {IDC_NEW_TYPE, L"kind"},
        {IDC_NEW_KEY, L"key"}, {IDC_NEW_VALUE, L"value"},    {IDC_DELETE_RULE, L"delete"}, {IDOK, L"ok"},
        {IDCANCEL, L"cancel"}};
    const HWND cell = CellEditor(d);
    const HWND button = d.Control(IDC_DELETE_RULE);
    const bool isTabStop = (GetWindowLongW(button, GWL_STYLE) & WS_TABSTOP) != 0;
    const int selected = List(d).SelectedRow();
    const auto* const dialog = static_cast<CRegistryRulesDlg*>(CWnd::FromHandlePermanent(d.Window()));
    return {
        {L"gap", std::to_wstring(Gap(d).x)},
        {L"rows", RowsOf(d)},
        {L"selected", selected != -1 ? std::to_wstring(selected) : L""},
        {L"focus",
         cell != nullptr && d.Focus() == cell ? L"cell" : names.at(IsChild(d.Window(), d.Focus()) ? d.FocusId() : 0)},
        {L"strip", d.Text(IDC_NEW_TYPE) + L"|" + KeyBox(d) + L"|" + d.Text(IDC_NEW_VALUE)},
        {L"delete", std::wstring(IsWindowEnabled(button) ? L"live" : L"dead") + (isTabStop ? L", tab" : L"")},
        {L"cell", cell != nullptr ? WindowText(cell) : L""},
        {L"mouse", WhatTheMouseHolds(d)},
        {L"dirty", dialog->IsDirty() != 0 ? L"yes" : L"no"},
        {L"picture", ComparePicture(d.Window(), {IDC_REGISTRY_TREE, IDC_RULE_LIST})}};
}

Texts RulesDialog::HostRules() {
    Texts rules;
    CString key;
    CString value;
    long position = 0;
    for (long i = 0; i < control.GetKeyRuleCount(); ++i) {
        int isBranch = 0;
        EXPECT_EQ(control.GetKeyRule(i, key, &isBranch, &position), 1);
        const std::wstring kind = isBranch == 0 ? L"Key" : isBranch == 1 ? L"Branch" : std::to_wstring(isBranch);
        rules.push_back(kind + L"|" + key.GetString() + L"|" + std::to_wstring(position));
    }
    for (long i = 0; i < control.GetValueRuleCount(); ++i) {
        EXPECT_EQ(control.GetValueRule(i, key, value, &position), 1);
        rules.push_back(std::wstring(L"Value|") + key.GetString() + L"|" + value.GetString() + L"|" +
                        std::to_wstring(position));
    }
    return rules;
}
