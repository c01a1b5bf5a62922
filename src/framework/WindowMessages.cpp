// The way of a message through a window: reflection to the child that caused it, the message map, the default.
#include <utility>

#include "framework/StandardControls.h"
#include "framework/Window.h"
#include "framework/WindowProcedure.h"
#include "framework/WindowThread.h"

BEGIN_MESSAGE_MAP(CWnd, CCmdTarget)
ON_WM_NCDESTROY()
ON_WM_CTLCOLOR()
END_MESSAGE_MAP()

namespace afx {

CWnd* WindowOf(HWND window) {
    return CWnd::FromHandle(window);
}

CScrollBar* ScrollBarOf(LPARAM window) {
    return WindowAs<CScrollBar>(reinterpret_cast<HWND>(window));
}

CDC* ContextOf(WPARAM context) {
    return CDC::FromHandle(reinterpret_cast<HDC>(context));
}

}  // namespace afx

CWnd* CWnd::FromHandle(HWND window) {
    return afx::WindowAs<CWnd>(window);
}

LRESULT CWnd::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    LRESULT result = 0;
    return OnWndMsg(message, wParam, lParam, &result) ? result : DefWindowProc(message, wParam, lParam);
}

LRESULT CWnd::DefWindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    return m_pfnSuper != nullptr ? ::CallWindowProcW(m_pfnSuper, m_hWnd, message, wParam, lParam)
                                 : ::DefWindowProcW(m_hWnd, message, wParam, lParam);
}

LRESULT CWnd::Default() {
    const MSG& current = afx::ThisThread().current;
    return DefWindowProc(current.message, current.wParam, current.lParam);
}

BOOL CWnd::OnWndMsg(UINT message, WPARAM wParam, LPARAM lParam, LRESULT* result) {
    if (message == WM_COMMAND) return OnCommand(wParam, lParam);
    if (message == WM_NOTIFY) return OnNotify(wParam, lParam, result);
    const bool isColor = message >= WM_CTLCOLORMSGBOX && message <= WM_CTLCOLORSTATIC;
    const AFX_MSGMAP_ENTRY* entry = FindEntry(isColor ? WM_CTLCOLOR : message);
    if (entry == nullptr) return FALSE;
    AFX_MSG_CALL call{message, wParam, lParam, 0};
    const bool taken = entry->pfn(*this, call);
    *result = call.result;
    return taken;
}

BOOL CWnd::OnCommand(WPARAM wParam, LPARAM lParam) {
    const auto control = reinterpret_cast<HWND>(lParam);
    const UINT code = control != nullptr ? HIWORD(wParam) : 0;  // 1 for an accelerator, which is a command all the same
    if (control != nullptr) {
        if (afx::ThisThread().lockedOut == m_hWnd) return TRUE;
        LRESULT unused = 0;
        if (Reflect(control, WM_COMMAND, code, wParam, lParam, &unused)) return TRUE;
    }
    return OnCmdMsg(LOWORD(wParam), static_cast<int>(code), nullptr, nullptr);
}

BOOL CWnd::OnNotify(WPARAM wParam, LPARAM lParam, LRESULT* result) {
    auto* const header = reinterpret_cast<NMHDR*>(lParam);
    if (Reflect(header->hwndFrom, WM_NOTIFY, header->code, wParam, lParam, result)) return TRUE;
    AFX_NOTIFY notify{result, header};
    return OnCmdMsg(static_cast<UINT>(header->idFrom), MAKELONG(header->code, WM_NOTIFY), &notify, nullptr);
}

bool CWnd::Reflect(HWND child, UINT message, UINT code, WPARAM wParam, LPARAM lParam, LRESULT* result) {
    CWnd* const object = FromHandlePermanent(child);
    if (object == nullptr) return false;
    const bool isColor = message >= WM_CTLCOLORMSGBOX && message <= WM_CTLCOLORSTATIC;
    const AFX_MSGMAP_ENTRY* entry =
        object->FindEntry(WM_REFLECT_BASE + (isColor ? WM_CTLCOLOR : message), static_cast<WORD>(code));
    if (entry == nullptr) return false;
    AFX_MANAGE_STATE(object->m_pModuleState)
    AFX_MSG_CALL call{message, wParam, lParam, 0};
    if (!entry->pfn(*object, call)) return false;
    *result = call.result;
    return true;
}

HBRUSH CWnd::OnCtlColor(CDC* context, CWnd* control, UINT type) {
    LRESULT brush = 0;
    if (!Reflect(control->m_hWnd, WM_CTLCOLORMSGBOX + type, 0, reinterpret_cast<WPARAM>(context->m_hDC),
                 reinterpret_cast<LPARAM>(control->m_hWnd), &brush))
        brush = Default();
    return reinterpret_cast<HBRUSH>(brush);
}

void CWnd::OnNcDestroy() {
    Default();
    CWindowProcedure::Remove(this);
    Detach();
    PostNcDestroy();
}
