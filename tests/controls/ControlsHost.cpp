#include "controls/ControlsHost.h"

#include <iomanip>
#include <sstream>
#include <utility>

#include "entry/InPlaceCombo.h"
#include "entry/PrivateMessages.h"
#include "support/Narrow.h"
#include "support/WindowText.h"

LRESULT CWatchedList::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    std::ostringstream told;
    if (message >= RRM_ENABLE_CELL_EDIT && message <= RRM_FILL_COMBO) told << " list:" << std::hex << message;
    if (message == WM_NOTIFY && reinterpret_cast<const NMHDR*>(lParam)->code == LVN_ENDLABELEDITW) {
        const auto& [header, item] = *reinterpret_cast<const NMLVDISPINFOW*>(lParam);
        const std::wstring text = item.pszText;
        told << " end " << item.iItem << ',' << item.iSubItem << " '" << Narrow(text) << '\'';
        EXPECT_EQ(header.hwndFrom, m_hWnd);
        EXPECT_EQ(header.idFrom, static_cast<UINT_PTR>(IDC_RULE_LIST));
        EXPECT_EQ(item.mask, static_cast<UINT>(LVIF_TEXT));
        EXPECT_EQ(item.cchTextMax, static_cast<int>(text.size()));
    }
    m_told += told.str();
    if (message == WM_NOTIFY && m_onEndEdit && !told.str().empty()) std::exchange(m_onEndEdit, {})();
    return CComboListCtrl::WindowProc(message, wParam, lParam);
}

void CControlsHost::DoDataExchange(CDataExchange* exchange) {
    CDialogEx::DoDataExchange(exchange);
    DDX_Control(exchange, IDC_RULE_LIST, m_list);
}

BOOL CControlsHost::OnInitDialog() {
    CDialogEx::OnInitDialog();
    m_list.SetExtendedStyle(LVS_EX_GRIDLINES | LVS_EX_FULLROWSELECT);
    m_list.InsertColumn(0, L"Type", LVCFMT_LEFT, 61);
    m_list.InsertColumn(1, L"Key", LVCFMT_LEFT, 250);
    m_list.InsertColumn(2, L"Value", LVCFMT_LEFT, 95);
    m_list.SetComboColumns(0, true);
    m_list.SetReadOnlyColumns(0, true);
    for (const auto& row : m_rows) {
        const int index = m_list.InsertItem(m_list.GetItemCount(), row[0]);
        m_list.SetItemText(index, 1, row[1]);
        m_list.SetItemText(index, 2, row[2]);
    }
    m_list.SetFocus();
    m_list.m_told.clear();
    return FALSE;
}

LRESULT CControlsHost::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    std::ostringstream told;
    if (message == WM_KEYUP) told << " key" << wParam;
    const bool isPrivate = message >= RRM_ENABLE_CELL_EDIT && message <= RRM_FILL_COMBO;
    if (message == RRM_LIST_KEY_UP) ++m_keysReleased;
    if (isPrivate && message != RRM_LIST_KEY_UP) told << ' ' << std::hex << message;
    m_list.m_told += told.str();
    if (!isPrivate) return CDialogEx::WindowProc(message, wParam, lParam);
    if (message != RRM_FILL_COMBO) return 0;
    for (const wchar_t* kind : {L"Branch", L"Key", L"Value"}) reinterpret_cast<CStringList*>(lParam)->AddTail(kind);
    return 1;
}

ControlsTest::ControlsTest() {
    m_host.m_rows = {{L"Branch", L"HKCU\\a", L""}, {L"Value", L"HKCU\\b", L"v"}, {L"Key", L"HKCU\\c", L""}};
}

void ControlsTest::Run(const std::function<void(Dialog&)>& script) {
    m_driver.Run([this] { m_host.DoModal(); },
                 [&](Dialog& d) {
                     m_d = &d;
                     script(d);
                     d.Click(IDCANCEL);
                     d.WaitUntilClosed();
                 });
}

std::string ControlsTest::Told() {
    std::string told;
    m_d->OnGuiThread([&] { told = std::exchange(m_host.m_list.m_told, {}); });
    return told.empty() ? told : told.substr(1);
}

HWND ControlsTest::OpenEdit(int row, int column, const wchar_t* text, const wchar_t* validChars) {
    m_d->OnGuiThread([&] {
        m_host.m_list.SetValidEditCtrlCharacters(validChars);
        m_host.m_list.ShowInPlaceEdit(row, column, text);
        m_host.m_list.m_told.clear();
    });
    return Edit();
}

HWND ControlsTest::OpenCombo(int row, const wchar_t* text, int selection) {
    m_d->OnGuiThread([&] {
        CStringList kinds(10);
        for (const wchar_t* kind : {L"Branch", L"Key", L"Value"}) kinds.AddTail(kind);
        CInPlaceCombo* const combo = m_host.m_list.ShowInPlaceCombo(row, kType, kinds, text, selection);
        if (selection == -1) combo->SelectString(-1, text);
        m_host.m_list.m_told.clear();
    });
    m_d->Move(Dialog::Centre(m_d->Control(IDOK)));  // away from the list that drops down
    return Combo();
}

void ControlsTest::Leave() {
    PostMessageW(m_d->Window(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(m_d->Control(IDC_NEW_VALUE)), TRUE);
}

void ControlsTest::Expect(const std::function<void()>& action, const std::wstring& box, int answer,
                          const std::string& told, const wchar_t* left) {
    SCOPED_TRACE(told);
    const HWND edit = Edit();
    action();
    EXPECT_EQ(box.empty() ? box : m_d->AnswerBox(answer), box);
    if (left == kClosed) m_d->WaitFor("the editor's end", [&] { return !IsWindow(edit); });
    EXPECT_EQ(Told(), told);
    EXPECT_EQ(CInPlaceEdit::IsActive(), left != kClosed);
    if (left == kClosed) return;
    EXPECT_EQ(WindowText(edit), left);
    EXPECT_EQ(m_d->Focus(), edit);
}
