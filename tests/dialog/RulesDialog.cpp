#include "dialog/RulesDialog.h"

#include <commctrl.h>

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
