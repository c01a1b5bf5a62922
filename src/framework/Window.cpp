#include "framework/Window.h"

#include "framework/DataExchange.h"
#include "framework/Temporary.h"
#include "framework/WindowProcedure.h"
#include "framework/WindowThread.h"

IMPLEMENT_DYNAMIC(CWnd, CCmdTarget)

namespace {

LPCWSTR PlainClass(HINSTANCE module) {
    static constexpr wchar_t kName[] = L"AfxWnd";
    WNDCLASSW plain{};
    plain.style = CS_DBLCLKS;
    plain.lpfnWndProc = &::DefWindowProcW;
    plain.hInstance = module;
    plain.hCursor = ::LoadCursorW(nullptr, IDC_ARROW);
    plain.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_WINDOW + 1);
    plain.lpszClassName = kName;
    ::RegisterClassW(&plain);  // fails when it has been done before
    return kName;
}

}  // namespace

CWnd::~CWnd() {
    // A temporary object shares the handle with whoever owns the window.
    if (m_hWnd != nullptr && FromHandlePermanent(m_hWnd) == this) CWnd::DestroyWindow();
}

CWnd* CWnd::FromHandlePermanent(HWND window) {
    const auto& windows = afx::ThisThread().permanent;
    const auto found = windows.find(window);
    return found != windows.end() ? found->second : nullptr;
}

size_t CWnd::PermanentCountForTesting() {
    return afx::ThisThread().permanent.size();
}

size_t CWnd::TemporaryCountForTesting() {
    return afx::ThisThread().temporaries.size();
}

BOOL CWnd::Attach(HWND window) {
    if (window == nullptr || m_hWnd != nullptr) return FALSE;
    if (!afx::ThisThread().permanent.emplace(window, this).second) return FALSE;
    m_hWnd = window;
    m_pModuleState = AfxGetModuleState();
    return TRUE;
}

HWND CWnd::Detach() {
    if (FromHandlePermanent(m_hWnd) == this) afx::ThisThread().permanent.erase(m_hWnd);
    return std::exchange(m_hWnd, nullptr);
}

BOOL CWnd::SubclassWindow(HWND window) {
    return window != nullptr && CWindowProcedure::Install(this, window);
}

BOOL CWnd::Create(LPCWSTR className, LPCWSTR title, DWORD style, const RECT& rect, CWnd* parent, UINT id,
                  void* context) {
    return CreateEx(0, className, title, style | WS_CHILD, rect, parent, id, context);
}

BOOL CWnd::CreateEx(DWORD exStyle, LPCWSTR className, LPCWSTR title, DWORD style, const RECT& rect, CWnd* parent,
                    UINT id, void* context) {
    return CreateEx(exStyle, className, title, style, rect.left, rect.top, rect.right - rect.left,
                    rect.bottom - rect.top, parent != nullptr ? parent->m_hWnd : nullptr,
                    reinterpret_cast<HMENU>(static_cast<UINT_PTR>(id)), context);
}

BOOL CWnd::CreateEx(DWORD exStyle, LPCWSTR className, LPCWSTR title, DWORD style, int x, int y, int width, int height,
                    HWND parent, HMENU idOrMenu, void* context) {
    const HINSTANCE module = AfxGetInstanceHandle();
    if (className == nullptr) className = PlainClass(module);
    afx::RegisterCommonControls();
    const afx::CreationScope creation(this);
    const HWND window =
        ::CreateWindowExW(exStyle, className, title, style, x, y, width, height, parent, idOrMenu, module, context);
    if (window == nullptr && !creation.IsBound()) PostNcDestroy();
    return window != nullptr;
}

BOOL CWnd::DestroyWindow() {
    return m_hWnd != nullptr && ::DestroyWindow(m_hWnd);
}

void CWnd::PostNcDestroy() {}

BOOL CWnd::PreTranslateMessage(MSG*) {
    return FALSE;
}

void CWnd::GetWindowText(CString& text) const {
    const int length = ::GetWindowTextLengthW(m_hWnd);
    const int copied = ::GetWindowTextW(m_hWnd, text.GetBuffer(length), length + 1);
    text.ReleaseBuffer(copied);
}

BOOL CWnd::ModifyStyle(DWORD remove, DWORD add, UINT positionFlags) {
    const DWORD before = GetStyle();
    const DWORD after = (before & ~remove) | add;
    if (after == before) return FALSE;
    ::SetWindowLongPtrW(m_hWnd, GWL_STYLE, static_cast<LONG_PTR>(after));
    if (positionFlags != 0)
        SetWindowPos(nullptr, 0, 0, 0, 0, SWP_NOSIZE | SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE | positionFlags);
    return TRUE;
}

void CWnd::DoDataExchange(CDataExchange*) {}

BOOL CWnd::UpdateData(BOOL saveAndValidate) {
    struct Lockout {
        HWND outer;
        explicit Lockout(HWND window) : outer(std::exchange(afx::ThisThread().lockedOut, window)) {}
        ~Lockout() { afx::ThisThread().lockedOut = outer; }
    } const lockout(m_hWnd);
    CDataExchange exchange(this, saveAndValidate);
    try {
        DoDataExchange(&exchange);
    } catch (CUserException* told) {
        told->Delete();
        return FALSE;
    }
    return TRUE;
}
