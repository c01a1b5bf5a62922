// The edit that the rules list lays over one cell. It ends, when the focus leaves it, by sending the list an
// LVN_ENDLABELEDITW with the text; in the key column it may refuse to end and keep the focus until the key is good.
#pragma once

#include "entry/ColorEdit.h"
#include "entry/EditorLife.h"

class CInPlaceEdit : public CColorEdit {
public:
    // The single edit of the process, made on first demand and shared by all lists; the class owns it until
    // DeleteInstance, which also takes an open window down, without a notification. Deleting while one of the edit's
    // own handlers runs (its message box is up, say) puts the deletion off until that handler has returned.
    static CInPlaceEdit* GetInstance();
    static void DeleteInstance();

    // 1 from the creation of the window until the edit has ended or its window is gone, else 0.
    static int IsActive();

    // Opens the editor in `parent`, the list, over `rect` (client coordinates of the list), selects the text and takes
    // the focus. `validChars`: the characters that may be typed, empty for all. TRUE also when a window from before
    // still exists: then only the cell and the texts are replaced. FALSE if the window could not be created.
    BOOL ShowEditCtrl(DWORD style, const RECT& rect, CWnd* parent, UINT id, int row, int column,
                      const CString& validChars, const CString& text);

    // KEY_OK outside of the key column, else what ValidateKey says.
    int ValidateInPlace();

    BOOL PreTranslateMessage(MSG* pMsg) override;

protected:
    CInPlaceEdit();
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;
    void PostNcDestroy() override;

    afx_msg int OnCreate(LPCREATESTRUCT lpCreateStruct);
    afx_msg void OnKillFocus(CWnd* pNewWnd);
    afx_msg void OnChar(UINT nChar, UINT nRepCnt, UINT nFlags);
    DECLARE_MESSAGE_MAP()

private:
    friend class CEditorScope<CInPlaceEdit>;

    void EndEdit();
    // Asks what to do about a key that was deleted: KEY_RETRY or KEY_DISMISSED.
    int ConfirmDeletedKey(HWND dialog);

    static CInPlaceEdit* s_instance;
    static int m_bInPlaceEditActive;

    int m_iRowIndex = -1;
    int m_iColumnIndex = -1;
    BOOL m_bESC = FALSE;
    CString m_strValidChars;
    CString m_strInitText;
    CString m_strNotAllowed;
    CEditorLife m_life;
};
