#include "framework/Window.h"

#include "framework/DataExchange.h"
#include "framework/Temporary.h"
#include "framework/WindowProcedure.h"
#include "framework/WindowThread.h"

IMPLEMENT_DYNAMIC(CWnd, CCmdTarget)

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

BOOL CWnd::SubclassDlgItem(UINT id, CWnd* parent) {
    return SubclassWindow(::GetDlgItem(parent->m_hWnd, static_cast<int>(id)));
}

HWND CWnd::UnsubclassWindow() {
    CWindowProcedure::Remove(this);
    return Detach();
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
    CREATESTRUCTW create{context, AfxGetInstanceHandle(),   idOrMenu, parent,    height, width, y,
                         x,       static_cast<LONG>(style), title,    className, exStyle};
    if (!PreCreateWindow(create)) {
        PostNcDestroy();
        return FALSE;
    }
    afx::RegisterCommonControls();
    const afx::CreationScope creation(this);
    const HWND window = ::CreateWindowExW(create.dwExStyle, create.lpszClass, create.lpszName,
                                          static_cast<DWORD>(create.style), create.x, create.y, create.cx, create.cy,
                                          create.hwndParent, create.hMenu, create.hInstance, create.lpCreateParams);
    if (window == nullptr && !creation.IsBound()) PostNcDestroy();
    return window != nullptr;
}

BOOL CWnd::PreCreateWindow(CREATESTRUCTW& create) {
    if (create.lpszClass != nullptr) return TRUE;
    static constexpr wchar_t kPlainClass[] = L"AfxWnd";
    WNDCLASSW plain{};
    plain.style = CS_DBLCLKS;
    plain.lpfnWndProc = &::DefWindowProcW;
    plain.hInstance = create.hInstance;
    plain.hCursor = ::LoadCursorW(nullptr, IDC_ARROW);
    plain.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_WINDOW + 1);
    plain.lpszClassName = kPlainClass;
    ::RegisterClassW(&plain);  // fails when it has been done before
    create.lpszClass = kPlainClass;
    return TRUE;
}

BOOL CWnd::DestroyWindow() {
    if (m_hWnd == nullptr) return FALSE;
    const BOOL destroyed = ::DestroyWindow(m_hWnd);
    // An object that was only attached does not see the window's end.
    if (m_hWnd != nullptr && !::IsWindow(m_hWnd)) Detach();
    return destroyed;
}

void CWnd::PostNcDestroy() {}

BOOL CWnd::PreTranslateMessage(MSG*) {
    return FALSE;
}

BOOL CWnd::WalkPreTranslateTree(HWND stop, MSG* message) {
    for (HWND window = message->hwnd; window != nullptr; window = ::GetParent(window)) {
        CWnd* const object = FromHandlePermanent(window);
        if (object != nullptr && CWindowProcedure::PreTranslate(object, message)) return TRUE;
        if (window == stop) break;
    }
    return FALSE;
}

void CWnd::GetWindowText(CString& text) const {
    const int length = GetWindowTextLength();
    const int copied = ::GetWindowTextW(m_hWnd, text.GetBuffer(length), length + 1);
    text.ReleaseBuffer(copied);
}

void CWnd::SetFont(CFont* font, BOOL redraw) {
    SendMessage(WM_SETFONT, reinterpret_cast<WPARAM>(font != nullptr ? font->m_hObject : nullptr), redraw);
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

void CWnd::CenterWindow(CWnd* other) {
    const HWND around = other != nullptr ? other->m_hWnd : ::GetWindow(m_hWnd, GW_OWNER);
    MONITORINFO monitor{};
    monitor.cbSize = sizeof(monitor);
    ::GetMonitorInfoW(::MonitorFromWindow(around != nullptr ? around : m_hWnd, MONITOR_DEFAULTTOPRIMARY), &monitor);
    const CRect work(monitor.rcWork);
    CRect area = work;
    if (around != nullptr && ::IsWindowVisible(around) && !::IsIconic(around)) ::GetWindowRect(around, area);
    CRect own;
    GetWindowRect(own);
    const CPoint middle = area.CenterPoint();
    const int x = std::max<int>(work.left, std::min<int>(middle.x - own.Width() / 2, work.right - own.Width()));
    const int y = std::max<int>(work.top, std::min<int>(middle.y - own.Height() / 2, work.bottom - own.Height()));
    SetWindowPos(nullptr, x, y, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
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
