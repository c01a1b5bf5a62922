#include "entry/InPlaceEdit.h"

#include "entry/CharFilter.h"
#include "entry/EndLabelEdit.h"
#include "entry/EntryMessage.h"
#include "entry/PrivateMessages.h"
#include "helpers/ResourceString.h"
#include "helpers/TextView.h"
#include "resources/resource.h"

namespace {

constexpr int kKeyColumn = 1;

}  // namespace

CInPlaceEdit* CInPlaceEdit::s_instance = nullptr;
int CInPlaceEdit::m_bInPlaceEditActive = 0;

BEGIN_MESSAGE_MAP(CInPlaceEdit, CColorEdit)
ON_WM_CREATE()
ON_WM_KILLFOCUS()
ON_WM_CHAR()
END_MESSAGE_MAP()

CInPlaceEdit::CInPlaceEdit() : m_strNotAllowed(LoadResourceString(IDS_NOT_ALLOWED)) {}

CInPlaceEdit* CInPlaceEdit::GetInstance() {
    if (s_instance == nullptr) s_instance = new CInPlaceEdit;
    return s_instance;
}

void CInPlaceEdit::DeleteInstance() {
    CEditorScope<CInPlaceEdit>::Delete(s_instance);
}

int CInPlaceEdit::IsActive() {
    return m_bInPlaceEditActive;
}

BOOL CInPlaceEdit::ShowEditCtrl(DWORD style, const RECT& rect, CWnd* parent, UINT id, int row, int column,
                                const CString& validChars, const CString& text) {
    const CEditorScope<CInPlaceEdit> scope(this);
    m_iRowIndex = row;
    m_iColumnIndex = column;
    m_strValidChars = validChars;
    m_strInitText = text;
    m_bESC = FALSE;
    if (m_hWnd != nullptr) return TRUE;

    m_bInPlaceEditActive = 1;
    m_life.m_ended = false;
    return Create(style, rect, parent, id);
}

int CInPlaceEdit::ValidateInPlace() {
    return m_iColumnIndex == kKeyColumn ? ValidateKey() : KEY_OK;
}

BOOL CInPlaceEdit::PreTranslateMessage(MSG* pMsg) {
    if (pMsg->message != WM_KEYDOWN || (pMsg->wParam != VK_RETURN && pMsg->wParam != VK_ESCAPE)) {
        return CColorEdit::PreTranslateMessage(pMsg);
    }
    // Escape that meets a refusal stays in force: the flag only chooses the text that the list gets in the end.
    if (pMsg->wParam == VK_ESCAPE) m_bESC = TRUE;
    ::SetFocus(::GetParent(m_hWnd));
    return TRUE;
}

LRESULT CInPlaceEdit::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    const CEditorScope<CInPlaceEdit> scope(this);
    // An edit of one line has no use for the wheel and leaves it to its parent; Wine 8.0's swallows it.
    if (message == WM_MOUSEWHEEL || message == WM_MOUSEHWHEEL)
        return ::SendMessageW(::GetParent(m_hWnd), message, wParam, lParam);
    return CColorEdit::WindowProc(message, wParam, lParam);
}

void CInPlaceEdit::PostNcDestroy() {
    // A window that goes down with its list in the middle of an edit, or could not be created, must not block the next
    // edit.
    m_bInPlaceEditActive = 0;
    CColorEdit::PostNcDestroy();
}

int CInPlaceEdit::OnCreate(LPCREATESTRUCT lpCreateStruct) {
    if (CColorEdit::OnCreate(lpCreateStruct) == -1) return -1;
    LimitText(0);  // once more: the base class asked before there was an edit
    SendMessage(WM_SETFONT, static_cast<WPARAM>(GetParent()->SendMessage(WM_GETFONT)), TRUE);
    ShowWindow(SW_SHOW);
    SetWindowText(m_strInitText);
    SetSel(0, -1);
    SetFocus();
    return 0;
}

void CInPlaceEdit::OnKillFocus(CWnd* pNewWnd) {
    CColorEdit::OnKillFocus(pNewWnd);
    if (pNewWnd != nullptr) EndEdit();
}

void CInPlaceEdit::OnChar(UINT nChar, UINT nRepCnt, UINT nFlags) {
    if (!MayTypeCharacter(static_cast<wchar_t>(nChar), ViewOf(m_strValidChars))) {
        // The text to fill in is the format itself, so the box shows it twice over; it has always read like that.
        CString message;
        message.Format(LoadResourceString(IDS_NOT_ALLOWED), m_strNotAllowed.GetString());
        ShowEntryMessage(m_hWnd, message, MB_OK);
        return;
    }
    CColorEdit::OnChar(nChar, nRepCnt, nFlags);
    if (nChar != VK_RETURN) return;
    const HWND dialog = ::GetParent(::GetParent(m_hWnd));
    EndEdit();
    ::SendMessageW(dialog, WM_KEYUP, nChar, 0);
}

void CInPlaceEdit::EndEdit() {
    // One end for one edit. While a box of ours is up, the edit is being decided on or the focus is only lent to the
    // box: the text stays, the box's answer says how it goes on, and a refusal takes the focus back by itself.
    if (m_life.m_ended || IsEntryMessageUp()) return;

    const HWND window = m_hWnd;
    const HWND list = ::GetParent(window);
    const HWND dialog = ::GetParent(list);
    CString text;
    GetWindowText(text);
    const bool keyDeleted = text.IsEmpty() && m_iColumnIndex == kKeyColumn;
    const int result = keyDeleted ? ConfirmDeletedKey(dialog) : ValidateInPlace();
    if (m_hWnd != window) return;  // gone while the box was up
    if (result == KEY_RETRY) {     // and the focus is back here
        ::SendMessageW(dialog, RRM_CELL_EDIT_HELD, 0, 0);
        return;
    }

    m_life.m_ended = true;
    m_bInPlaceEditActive = 0;
    if (result == KEY_OK) SendEndLabelEdit(list, m_iRowIndex, m_iColumnIndex, m_bESC ? m_strInitText : text);
    // A deleted key that was given up ends without this message.
    if (!keyDeleted) ::SendMessageW(dialog, RRM_CELL_EDIT_DONE, 0, 0);
    if (m_hWnd != nullptr) PostMessage(WM_CLOSE);
}

int CInPlaceEdit::ConfirmDeletedKey(HWND dialog) {
    const HWND window = m_hWnd;
    const int answer = ShowEntryMessage(m_hWnd, LoadResourceString(IDS_UNKNOWN_HIVE), MB_OKCANCEL);
    if (m_hWnd != window) return KEY_DISMISSED;
    if (answer == IDOK) {
        SetFocus();
        ::SendMessageW(dialog, RRM_HOLD_EDIT, 0, 0);
        return KEY_RETRY;
    }
    SetWindowText(L"");
    ::SendMessageW(dialog, RRM_RELEASE_EDIT, 0, 0);
    return KEY_DISMISSED;
}
