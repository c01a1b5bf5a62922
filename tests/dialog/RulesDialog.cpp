#include "dialog/RulesDialog.h"

#include <commctrl.h>

#include <algorithm>

#include "dialog/RegistryRulesDlg.h"
#include "support/WindowText.h"

HostWindow::HostWindow()
    : m_window(CreateWindowExW(0, L"STATIC", L"Host", WS_POPUP | WS_CAPTION | WS_VISIBLE, 0, 0, 300, 200, nullptr,
                               nullptr, GetModuleHandleW(nullptr), nullptr)) {
    SetForegroundWindow(m_window);
    SetActiveWindow(m_window);
}

HostWindow::~HostWindow() {
    DestroyWindow(m_window);
}

long RulesDialog::Show(CRegistryRulesCtrl& shown, const std::function<void(Dialog&)>& script) {
    long result = -1;
    m_look.clear();
    driver.Run([&] { result = shown.Show(); }, script);
    return result;
}

long RulesDialog::ShowAndPress(int button) {
    return Show([&](Dialog& d) { d.Click(button); });
}

RulesDialog::Texts RulesDialog::HostRules(CRegistryRulesCtrl& source) {
    Texts rules;
    CString key;
    CString value;
    long position = 0;
    for (long i = 0; i < source.GetKeyRuleCount(); ++i) {
        int isBranch = 0;
        EXPECT_EQ(source.GetKeyRule(i, key, &isBranch, &position), 1);
        const std::wstring kind = isBranch == 0 ? L"Key" : isBranch == 1 ? L"Branch" : std::to_wstring(isBranch);
        rules.push_back(kind + L"|" + key.GetString() + L"|" + std::to_wstring(position));
    }
    for (long i = 0; i < source.GetValueRuleCount(); ++i) {
        EXPECT_EQ(source.GetValueRule(i, key, value, &position), 1);
        rules.push_back(std::wstring(L"Value|") + key.GetString() + L"|" + value.GetString() + L"|" +
                        std::to_wstring(position));
    }
    return rules;
}

RulesDialog::Texts RulesDialog::Rows(Dialog& d) {
    Texts rows;
    for (const auto& cells : d.List(IDC_RULE_LIST).Rows()) rows.push_back(cells[0] + L"|" + cells[1] + L"|" + cells[2]);
    return rows;
}

HWND RulesDialog::CellEdit(Dialog& d) {
    return Dialog::FindBelow(d.Control(IDC_RULE_LIST), L"Edit");
}

HWND RulesDialog::CellCombo(Dialog& d) {
    return Dialog::FindBelow(d.Control(IDC_RULE_LIST), L"ComboBox");
}

void RulesDialog::SelectRow(Dialog& d, int row) {
    const HWND list = d.Control(IDC_RULE_LIST);
    d.OnGuiThread([&] { SetFocus(list); });
    d.Key(VK_HOME);
    for (int i = 0; i < row; ++i) d.Key(VK_DOWN);
}

HWND RulesDialog::OpenCell(Dialog& d, int row, int column, HWND (*editor)(Dialog&)) {
    d.List(IDC_RULE_LIST).Click(row, column);
    if (editor(d) == nullptr) d.List(IDC_RULE_LIST).Click(row, column);
    d.WaitFor("a cell's editor", [&] { return editor(d) != nullptr; });
    return editor(d);
}

HWND RulesDialog::OpenPopup(Dialog& d, int row) {
    const HWND combo = OpenCellCombo(d, row);
    if (!SendMessageW(combo, CB_GETDROPPEDSTATE, 0, 0)) d.Click(combo);
    return combo;
}

bool RulesDialog::DeleteIsLive(Dialog& d) {
    return IsWindowEnabled(d.Control(IDC_DELETE_RULE));
}

bool RulesDialog::DeleteHasTabStop(Dialog& d) {
    return (GetWindowLongW(d.Control(IDC_DELETE_RULE), GWL_STYLE) & WS_TABSTOP) != 0;
}

RECT RulesDialog::Frame(HWND window) {
    RECT frame{};
    GetWindowRect(window, &frame);
    return frame;
}

POINT RulesDialog::Gap(Dialog& d) {
    const RECT tree = Frame(d.Control(IDC_REGISTRY_TREE));
    const RECT list = Frame(d.Control(IDC_RULE_LIST));
    return {(tree.right + list.left) / 2, (list.top + list.bottom) / 2};
}

bool RulesDialog::CursorIs(Dialog& d, const wchar_t* standard) {
    HCURSOR cursor = nullptr;
    d.OnGuiThread([&] { cursor = GetCursor(); });
    return cursor == LoadCursorW(nullptr, standard);
}

void RulesDialog::Discard(Dialog& d) {
    d.Click(IDCANCEL);
    d.AnswerBox(IDYES);
}

void RulesDialog::Put(HWND edit, const std::wstring& text) {
    SendMessageW(edit, EM_SETSEL, 0, -1);
    SendMessageW(edit, EM_REPLACESEL, 0, reinterpret_cast<LPARAM>(text.c_str()));
}

void RulesDialog::ClearByKeys(Dialog& d) {
    d.Key(VK_HOME);
    d.Key(VK_END, {VK_SHIFT});
    d.Key(VK_DELETE);
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

// Whether what stands on the screen is what painting all anew gives.
std::wstring ComparePicture(HWND window) {
    RECT frame{};
    GetWindowRect(window, &frame);
    const SIZE size{frame.right - frame.left, frame.bottom - frame.top};
    HideCaret(nullptr);
    RedrawWindow(window, nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
    const std::vector<DWORD> stands = Picture(window, size);
    RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_UPDATENOW);
    const std::vector<DWORD> fresh = Picture(window, size);
    ShowCaret(nullptr);
    const auto [at, same] = std::mismatch(stands.begin(), stands.end(), fresh.begin());
    if (at == stands.end()) return L"fresh";
    const auto place = at - stands.begin();
    return L"stale at " + std::to_wstring(place % size.cx) + L"," + std::to_wstring(place / size.cx);
}

}  // namespace

RulesDialog::Look RulesDialog::LookAt(Dialog& d) {
    Look look;
    const HWND window = d.Window();
    for (const std::wstring& row : Rows(d)) look["rows"] += row + L"; ";
    const int selected = d.List(IDC_RULE_LIST).SelectedRow();
    look["selected"] = selected != -1 ? std::to_wstring(selected) : L"";
    const std::map<int, const wchar_t*> names{{IDC_REGISTRY_TREE, L"tree"},
                                              {IDC_RULE_LIST, L"list"},
                                              {IDC_NEW_TYPE, L"kind"},
                                              {IDC_NEW_KEY, L"key"},
                                              {IDC_NEW_VALUE, L"value"},
                                              {IDC_DELETE_RULE, L"delete"},
                                              {IDOK, L"ok"},
                                              {IDCANCEL, L"cancel"},
                                              {0, L"cell"}};
    const auto focus = names.find(d.FocusId());
    look["focus"] = focus != names.end() ? focus->second : L"elsewhere";
    const std::wstring key = d.Text(IDC_NEW_KEY);
    look["strip"] = d.Text(IDC_NEW_TYPE) + L"|" + (key == watermark ? L"..." : key) + L"|" + d.Text(IDC_NEW_VALUE);
    look["delete"] = std::wstring(DeleteIsLive(d) ? L"live" : L"dead") + (DeleteHasTabStop(d) ? L", tab" : L"");
    const HWND editor = CellEdit(d) != nullptr ? CellEdit(d) : CellCombo(d);
    look["cell"] = editor != nullptr ? WindowText(editor) : L"";
    std::wstring& mouse = look["mouse"];
    if (d.Capture() != nullptr) mouse += d.Capture() == window ? L"captured " : L"captured elsewhere ";
    RECT clip{};
    GetClipCursor(&clip);
    if (clip.right - clip.left < GetSystemMetrics(SM_CXSCREEN)) mouse += L"clipped ";
    const int target = d.List(IDC_RULE_LIST).RowWithState(LVIS_DROPHILITED);
    if (target != -1) mouse += L"row " + std::to_wstring(target) + L" ";
    d.OnGuiThread([&] {
        if (ImageList_GetDragImage(nullptr, nullptr) != nullptr) mouse += L"image ";
        look["dirty"] = static_cast<CRegistryRulesDlg*>(CWnd::FromHandlePermanent(window))->IsDirty() ? L"yes" : L"no";
        // Wine 8.0's tree does not always repaint what a press in it has left.
        RedrawWindow(GetDlgItem(window, IDC_REGISTRY_TREE), nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE);
        look["picture"] = ComparePicture(window);
    });
    return look;
}

RulesDialog::Look RulesDialog::Changes(Dialog& d) {
    Look changes;
    Look now = LookAt(d);
    for (const auto& [thing, text] : now)
        if (!m_look.contains(thing) || m_look[thing] != text) changes[thing] = text;
    m_look = std::move(now);
    return changes;
}

void RulesDialog::MoveTheGapAbout() {
    const HostWindow host;
    CRegistryRulesCtrl control;
    for (short row = 0; row < 30; ++row) control.AddKeyRule((L"HKCU\\" + std::to_wstring(row)).c_str(), 1, row);
    DialogDriver driver;
    driver.Run([&] { control.Show(); },
               [&](Dialog& d) {
                   const POINT gap = Gap(d);
                   d.Move(gap);
                   d.Press();
                   for (const int by : {-1, 3, -40, -120, 60, -7, 90, 150, 0, -60}) {
                       d.Move({gap.x + by, gap.y});
                       d.OnGuiThread([&] { EXPECT_EQ(ComparePicture(d.Window()), L"fresh") << by; });
                   }
                   d.Release();
                   d.Key(VK_ESCAPE);
               });
}
