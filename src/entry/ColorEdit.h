// The key box of the new-rule strip: an edit with colours of its own and a grey watermark, which checks the key before
// Return or Tab may act.
#pragma once

#include "entry/ValidateKeyEdit.h"

// The three colours in use, 0x00BBGGRR.
inline constexpr COLORREF TYPED_TEXT_COLOR = RGB(0, 0, 0);
inline constexpr COLORREF WATERMARK_COLOR = RGB(0x80, 0x80, 0x80);
inline constexpr COLORREF EDIT_BACKGROUND_COLOR = RGB(0xFF, 0xFF, 0xFF);

class CColorEdit : public CValidateKeyEdit {
public:
    CColorEdit();

    // Both show at once.
    void SetBackgroundColor(COLORREF color);
    void SetTextColor(COLORREF color);
    // Writable makes the background white; read-only leaves it as it is.
    void SetReadOnly(bool readOnly);

    // The watermark is a text like any other: a click on a box that holds exactly it clears the box, and as a key it
    // counts as blank. These two set text and colours.
    void ShowWatermark();
    void ClearWatermark();

protected:
    void PreSubclassWindow() override;

    afx_msg HBRUSH CtlColor(CDC* pDC, UINT nCtlColor);
    afx_msg UINT OnGetDlgCode();
    afx_msg void OnKeyDown(UINT nChar, UINT nRepCnt, UINT nFlags);
    afx_msg void OnLButtonUp(UINT nFlags, CPoint point);
    afx_msg void OnRButtonDown(UINT nFlags, CPoint point);
    DECLARE_MESSAGE_MAP()

private:
    void Redraw();
    void ClearIfWatermark();

    [[maybe_unused]] BYTE m_bInitial = 1;  // set at construction and read by nothing
    CBrush m_brBackground;
    COLORREF m_crBackground = EDIT_BACKGROUND_COLOR;
    COLORREF m_crText = TYPED_TEXT_COLOR;
};
