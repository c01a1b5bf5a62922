// The value box of the new-rule strip: reports Return and Tab to its parent like the key box, and checks nothing.
#pragma once

#include <afxwin.h>

class CValueEdit : public CEdit {
protected:
    void PreSubclassWindow() override;

    afx_msg UINT OnGetDlgCode();
    afx_msg void OnKeyDown(UINT nChar, UINT nRepCnt, UINT nFlags);
    DECLARE_MESSAGE_MAP()
};
