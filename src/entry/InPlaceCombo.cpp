#include "entry/InPlaceCombo.h"

#include "entry/EndLabelEdit.h"

CInPlaceCombo* CInPlaceCombo::s_instance = nullptr;

BEGIN_MESSAGE_MAP(CInPlaceCombo, CComboBox)
ON_WM_CREATE()
ON_WM_KILLFOCUS()
ON_WM_CHAR()
ON_CONTROL_REFLECT(CBN_CLOSEUP, &CInPlaceCombo::OnCloseup)
ON_CONTROL_REFLECT(CBN_DROPDOWN, &CInPlaceCombo::OnDropdown)
ON_CONTROL_REFLECT(CBN_SELENDCANCEL, &CInPlaceCombo::OnSelendcancel)
END_MESSAGE_MAP()

CInPlaceCombo* CInPlaceCombo::GetInstance() {
    if (s_instance == nullptr) s_instance = new CInPlaceCombo;
    return s_instance;
}

void CInPlaceCombo::DeleteInstance() {
    CEditorScope<CInPlaceCombo>::Delete(s_instance);
}

BOOL CInPlaceCombo::ShowComboCtrl(DWORD style, const RECT& rect, CWnd* parent, UINT id, int row, int column,
                                  const CStringList& list, const CString& text, int selection) {
    const CEditorScope<CInPlaceCombo> scope(this);
    m_iRowIndex = row;
    m_iColumnIndex = column;
    m_bESC = FALSE;
    m_DropDownList.RemoveAll();
    for (POSITION place = list.GetHeadPosition(); place != nullptr;) m_DropDownList.AddTail(list.GetNext(place));
    if (selection == CB_ERR) {
        if (!text.IsEmpty()) m_strWindowText = text;
    } else if (const POSITION item = m_DropDownList.FindIndex(selection); item != nullptr) {
        m_strWindowText = m_DropDownList.GetAt(item);
    }

    BOOL created = TRUE;
    if (m_hWnd == nullptr) {
        m_life.m_ended = false;
        m_isDropped = false;
        created = Create(style, rect, parent, id);
    }
    if (m_hWnd != nullptr) SetCurSel(selection);
    return created;
}

BOOL CInPlaceCombo::PreTranslateMessage(MSG* pMsg) {
    if (pMsg->message != WM_KEYDOWN || (pMsg->wParam != VK_RETURN && pMsg->wParam != VK_ESCAPE)) {
        return CComboBox::PreTranslateMessage(pMsg);
    }
    // Past the dialog, which would take both keys for its buttons.
    ::TranslateMessage(pMsg);
    ::DispatchMessageW(pMsg);
    return TRUE;
}

LRESULT CInPlaceCombo::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    const CEditorScope<CInPlaceCombo> scope(this);
    return CComboBox::WindowProc(message, wParam, lParam);
}

int CInPlaceCombo::OnCreate(LPCREATESTRUCT lpCreateStruct) {
    if (CComboBox::OnCreate(lpCreateStruct) == -1) return -1;
    SendMessage(WM_SETFONT, static_cast<WPARAM>(GetParent()->SendMessage(WM_GETFONT)), TRUE);
    SetFocus();
    ResetContent();
    for (POSITION place = m_DropDownList.GetHeadPosition(); place != nullptr;) {
        AddString(m_DropDownList.GetNext(place));
    }
    return 0;
}

void CInPlaceCombo::OnKillFocus(CWnd* pNewWnd) {
    CComboBox::OnKillFocus(pNewWnd);
    if (m_life.m_ended) return;
    m_life.m_ended = true;
    CString text;
    GetWindowText(text);
    SendEndLabelEdit(::GetParent(m_hWnd), m_iRowIndex, m_iColumnIndex, m_bESC ? m_strWindowText : text);
    if (m_hWnd != nullptr) PostMessage(WM_CLOSE);
}

void CInPlaceCombo::OnChar(UINT nChar, UINT nRepCnt, UINT nFlags) {
    if (nChar != VK_RETURN && nChar != VK_ESCAPE) {
        CComboBox::OnChar(nChar, nRepCnt, nFlags);
        return;
    }
    if (nChar == VK_ESCAPE) m_bESC = TRUE;
    FocusList();
}

void CInPlaceCombo::OnCloseup() {
    m_isDropped = false;
    FocusList();
}

void CInPlaceCombo::FocusList() {
    // A key that closed the dropped list has ended the edit by that; its character comes after it, when the focus may
    // already be in the next cell's editor.
    if (!m_life.m_ended) ::SetFocus(::GetParent(m_hWnd));
}

void CInPlaceCombo::OnDropdown() {
    m_isDropped = true;
    m_droppedSelection = GetCurSel();
}

// Wine 8.0 keeps the item that was hot in a list that the user cancelled, where Windows goes back to the one that was
// selected before it dropped down; see Cells.KeysAndClicksEndADropDownWithWhatTheyLeave. The notification also comes
// when a combo that is not dropped loses the focus.
void CInPlaceCombo::OnSelendcancel() {
    if (m_isDropped) SetCurSel(m_droppedSelection);
}
