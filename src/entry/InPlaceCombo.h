// The drop-down list that the rules list lays over one cell. It ends, when the focus leaves it, by sending the list an
// LVN_ENDLABELEDITW with the text that is selected; it checks nothing and never refuses to end.
#pragma once

#include <afxcoll.h>
#include <afxwin.h>

#include "entry/EditorLife.h"

class CInPlaceCombo : public CComboBox {
public:
    // The single combo of the process, with the life of CInPlaceEdit's.
    static CInPlaceCombo* GetInstance();
    static void DeleteInstance();

    // Opens the combo in `parent`, the list, over `rect` (client coordinates, the height of the dropped list included)
    // with the items of `list` and takes the focus. Escape brings back the item at `selection`, or, when that is -1,
    // `text`; an empty `text` leaves the one from before. TRUE also when a window from before still exists. FALSE if
    // the window could not be created.
    BOOL ShowComboCtrl(DWORD style, const RECT& rect, CWnd* parent, UINT id, int row, int column,
                       const CStringList& list, const CString& text, int selection);

    BOOL PreTranslateMessage(MSG* pMsg) override;

protected:
    CInPlaceCombo() = default;
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;

    afx_msg int OnCreate(LPCREATESTRUCT lpCreateStruct);
    afx_msg void OnKillFocus(CWnd* pNewWnd);
    afx_msg void OnChar(UINT nChar, UINT nRepCnt, UINT nFlags);
    afx_msg void OnCloseup();
    afx_msg void OnDropdown();
    afx_msg void OnSelendcancel();
    DECLARE_MESSAGE_MAP()

private:
    friend class CEditorScope<CInPlaceCombo>;

    void FocusList();

    static CInPlaceCombo* s_instance;

    int m_iRowIndex = -1;
    int m_iColumnIndex = -1;
    BOOL m_bESC = FALSE;
    CString m_strWindowText;
    CStringList m_DropDownList{10};
    bool m_isDropped = false;
    int m_droppedSelection = CB_ERR;  // what was selected when the list dropped down
    CEditorLife m_life;
};
