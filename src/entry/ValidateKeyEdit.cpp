#include "entry/ValidateKeyEdit.h"

#include "entry/EntryMessage.h"
#include "entry/HiveText.h"
#include "entry/PrivateMessages.h"
#include "helpers/ResourceString.h"
#include "resources/resource.h"

namespace {

UINT RefusalId(KeyVerdict verdict) {
    switch (verdict) {
        case KeyVerdict::KeyUnknownHive:
            return IDS_UNKNOWN_HIVE;
        case KeyVerdict::KeyBareHive:
            return IDS_BARE_HIVE;
        case KeyVerdict::KeyTrailingBackslash:
            return IDS_TRAILING_BACKSLASH;
        default:
            return IDS_MULTIPLE_BACKSLASH;
    }
}

// A strip edit hangs directly on the dialog, so its messages go to the dialog's owner and by design never reach the
// dialog: the dialog's flag follows the cell editors alone. Where there is no owner there is nobody to tell.
void TellGrandparent(HWND edit, UINT message) {
    const HWND grandparent = ::GetParent(::GetParent(edit));
    if (grandparent != nullptr) ::SendMessageW(grandparent, message, 0, 0);
}

}  // namespace

int CValidateKeyEdit::ValidateKey() {
    CString text;
    GetWindowText(text);
    const KeyCheck check = CheckKeyPath(text, LoadResourceString(IDS_WATERMARK));
    if (check.verdict == KeyVerdict::KeyBlank) return KEY_OK;
    if (check.verdict == KeyVerdict::KeyAccepted) {
        TellGrandparent(m_hWnd, RRM_RELEASE_EDIT);
        return KEY_OK;
    }

    const HWND window = m_hWnd;
    const int answer = ShowEntryMessage(m_hWnd, LoadResourceString(RefusalId(check.verdict)), MB_OKCANCEL);
    if (m_hWnd != window) return KEY_DISMISSED;
    if (answer != IDOK) {
        if (check.verdict == KeyVerdict::KeyUnknownHive) SetWindowText(L"");
        TellGrandparent(m_hWnd, RRM_RELEASE_EDIT);
        return KEY_DISMISSED;
    }
    SetFocus();
    if (check.selection) SetSel(check.selection->start, check.selection->end);
    TellGrandparent(m_hWnd, RRM_HOLD_EDIT);
    return KEY_RETRY;
}
