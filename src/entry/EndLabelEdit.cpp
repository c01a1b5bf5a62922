#include "entry/EndLabelEdit.h"

#include <afxcmn.h>

void SendEndLabelEdit(HWND list, int row, int column, CString text) {
    NMLVDISPINFOW info{};
    info.hdr.hwndFrom = list;
    info.hdr.idFrom = static_cast<UINT>(::GetDlgCtrlID(list));
    info.hdr.code = LVN_ENDLABELEDITW;
    info.item.mask = LVIF_TEXT;
    info.item.iItem = row;
    info.item.iSubItem = column;
    info.item.cchTextMax = text.GetLength();
    info.item.pszText = text.GetBuffer();
    ::SendMessageW(list, WM_NOTIFY, info.hdr.idFrom, reinterpret_cast<LPARAM>(&info));
}
