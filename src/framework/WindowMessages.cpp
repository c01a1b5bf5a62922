// The way of a message through a window: reflection to the child that caused it, the message map, the default.
#include <utility>

#include "framework/StandardControls.h"
#include "framework/Window.h"
#include "framework/WindowProcedure.h"
#include "framework/WindowThread.h"

namespace {

UINT NumberInMaps(UINT message) {
    return message >= WM_CTLCOLORMSGBOX && message <= WM_CTLCOLORSTATIC ? WM_CTLCOLOR : message;
}

// Gives the message to the entry's handler; false if there is none or it declined.
bool Handles(CCmdTarget& target, const AFX_MSGMAP_ENTRY* entry, AFX_MSG_CALL call, LRESULT* result) {
    if (entry == nullptr || !entry->pfn(target, call)) return false;
    *result = call.result;
    return true;
}

}  // namespace

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

bool CWnd::OnWndMsg(UINT message, WPARAM wParam, LPARAM lParam, LRESULT* result) {
    if (message == WM_COMMAND) return OnCommand(wParam, lParam, result);
    if (message == WM_NOTIFY) return OnNotify(wParam, lParam, result);
    return Handles(*this, FindEntry(NumberInMaps(message)), {message, wParam, lParam, 0}, result);
}

bool CWnd::OnCommand(WPARAM wParam, LPARAM lParam, LRESULT* result) {
    const auto control = reinterpret_cast<HWND>(lParam);
    const UINT code = control != nullptr ? HIWORD(wParam) : 0;  // 1 for an accelerator, which is a command all the same
    if (control != nullptr) {
        if (afx::ThisThread().lockedOut == m_hWnd) return true;
        if (Reflect(control, WM_COMMAND, code, wParam, lParam, result)) return true;
    }
    return Handles(*this, FindEntry(WM_COMMAND, code, LOWORD(wParam)), {WM_COMMAND, wParam, lParam, 0}, result);
}

bool CWnd::OnNotify(WPARAM wParam, LPARAM lParam, LRESULT* result) {
    const NMHDR& header = *reinterpret_cast<const NMHDR*>(lParam);
    const UINT code = LOWORD(header.code);
    if (Reflect(header.hwndFrom, WM_NOTIFY, code, wParam, lParam, result)) return true;
    const AFX_MSGMAP_ENTRY* entry = FindEntry(WM_NOTIFY, code, static_cast<UINT>(header.idFrom));
    return Handles(*this, entry, {WM_NOTIFY, wParam, lParam, 0}, result);
}

bool CWnd::Reflect(HWND child, UINT message, UINT code, WPARAM wParam, LPARAM lParam, LRESULT* result) {
    CWnd* const object = FromHandlePermanent(child);
    if (object == nullptr) return false;
    AFX_MANAGE_STATE(object->m_pModuleState)
    const AFX_MSGMAP_ENTRY* entry = object->FindEntry(WM_REFLECT_BASE + NumberInMaps(message), code);
    return Handles(*object, entry, {message, wParam, lParam, 0}, result);
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
