// The system's own small controls. Each is created by Create, or bound to a dialog's control by DDX_Control.
#pragma once

#include "framework/Window.h"

class AFX_API CButton : public CWnd {
    DECLARE_DYNAMIC(CButton)
};

class AFX_API CStatic : public CWnd {
    DECLARE_DYNAMIC(CStatic)
};

class AFX_API CScrollBar : public CWnd {
    DECLARE_DYNAMIC(CScrollBar)
};

class AFX_API CEdit : public CWnd {
    DECLARE_DYNAMIC(CEdit)

public:
    BOOL Create(DWORD style, const RECT& rect, CWnd* parent, UINT id) {
        return CWnd::Create(L"EDIT", nullptr, style, rect, parent, id);
    }
    // Characters; (0, -1) is the whole text, a start of -1 no selection. Brings the caret into view unless told not to.
    void SetSel(int start, int end, BOOL noScroll = FALSE) {
        SendMessage(EM_SETSEL, static_cast<WPARAM>(start), end);
        if (!noScroll) SendMessage(EM_SCROLLCARET);
    }
    BOOL SetReadOnly(BOOL readOnly = TRUE) {
        return static_cast<BOOL>(SendMessage(EM_SETREADONLY, static_cast<WPARAM>(readOnly)));
    }
    // How many characters can be typed; 0 for as many as the control can hold.
    void LimitText(int chars = 0) { SendMessage(EM_LIMITTEXT, static_cast<WPARAM>(chars)); }
};

// Indexes are from 0; CB_ERR (-1) stands for none and for failure.
class AFX_API CComboBox : public CWnd {
    DECLARE_DYNAMIC(CComboBox)

public:
    // The height of `rect` is that of the control with its list dropped down.
    BOOL Create(DWORD style, const RECT& rect, CWnd* parent, UINT id) {
        return CWnd::Create(L"COMBOBOX", nullptr, style, rect, parent, id);
    }
    int GetCurSel() const { return Ask(CB_GETCURSEL); }
    int SetCurSel(int index) { return Ask(CB_SETCURSEL, static_cast<WPARAM>(index)); }
    int AddString(LPCWSTR text) { return Ask(CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text)); }
    void ResetContent() { SendMessage(CB_RESETCONTENT); }
    // Selects the first item behind `after` that begins with `text`, ignoring case; -1 to begin at the top.
    int SelectString(int after, LPCWSTR text) {
        return Ask(CB_SELECTSTRING, static_cast<WPARAM>(after), reinterpret_cast<LPARAM>(text));
    }

private:
    int Ask(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const {
        return static_cast<int>(SendMessage(message, wParam, lParam));
    }
};
