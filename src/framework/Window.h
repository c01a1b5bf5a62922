// Windows. A class derives from CWnd (or a control class), lists its handlers in a message map, and is bound to a
// window by creating one, or by taking over one that exists:
//
//     class CPad : public CWnd {
//     protected:
//         afx_msg void OnLButtonDown(UINT flags, CPoint point);
//         DECLARE_MESSAGE_MAP()
//     };
//     BEGIN_MESSAGE_MAP(CPad, CWnd)
//     ON_WM_LBUTTONDOWN()
//     END_MESSAGE_MAP()
//
//     void CPad::OnLButtonDown(UINT flags, CPoint point) {
//         SetFocus();
//         CWnd::OnLButtonDown(flags, point);    // what the window would have done by itself
//     }
//
//     CPad pad;
//     pad.Create(nullptr, L"Pad", WS_CHILD | WS_VISIBLE, CRect(0, 0, 80, 60), parent, 100);
//
// Override: PreSubclassWindow, WindowProc, PreTranslateMessage, DoDataExchange, PostNcDestroy, and the On... handlers.
// Everything else is called, not overridden.
//
// A window belongs to the thread that bound it: on another thread its object is not found. Its handlers run in the
// module state that was current when it was bound. What a handler throws never crosses the system: inside a modal
// dialog it is kept and leaves DoModal after the dialog has been taken down (the first, if there are several; the
// others are dropped); outside of one it is reported to the user and ends there. The message counts as answered with 0,
// a WM_CREATE as failed.
#pragma once

#include "framework/CString.h"
#include "framework/CommandTarget.h"
#include "framework/DeviceContext.h"
#include "framework/ModuleState.h"

#undef SubclassWindow  // an old macro of the system's headers

class CDataExchange;
class CRgn;  // there are none: pass null

class AFX_API CWnd : public CCmdTarget {
    DECLARE_DYNAMIC(CWnd)

public:
    HWND m_hWnd = nullptr;

    CWnd() = default;
    // Destroys a window that is still bound.
    ~CWnd() override;

    // The object of the window; for one that has none, a temporary object, good for this handler: it ends when the
    // handler returns or, made outside of any, when the modal loop goes idle, so keep the HWND and not the pointer.
    // Null for null.
    static CWnd* FromHandle(HWND window);
    // The object that was bound to the window on this thread, or null.
    static CWnd* FromHandlePermanent(HWND window);
    // How many windows of this thread are bound to objects.
    static size_t PermanentCountForTesting();
    // How many temporary objects of all classes this thread has.
    static size_t TemporaryCountForTesting();

    operator HWND() const { return m_hWnd; }  // NOLINT(google-explicit-constructor)

    // Binds an existing window: its messages go through the message map from now on. FALSE if the window or the object
    // is bound already.
    BOOL SubclassWindow(HWND window);
    // Called when a window is about to be bound: by SubclassWindow, or at its creation, when it takes no messages yet.
    virtual void PreSubclassWindow() {}

    // Creation; handlers run from the first message on. A null class name makes a plain window. For a child `id` is its
    // control id. FALSE if the window was not created.
    BOOL Create(LPCWSTR className, LPCWSTR title, DWORD style, const RECT& rect, CWnd* parent, UINT id,
                void* context = nullptr);
    BOOL CreateEx(DWORD exStyle, LPCWSTR className, LPCWSTR title, DWORD style, const RECT& rect, CWnd* parent, UINT id,
                  void* context = nullptr);
    BOOL CreateEx(DWORD exStyle, LPCWSTR className, LPCWSTR title, DWORD style, int x, int y, int width, int height,
                  HWND parent, HMENU idOrMenu, void* context = nullptr);
    virtual BOOL DestroyWindow();

    // Messages.
    LRESULT SendMessage(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const {
        return ::SendMessageW(m_hWnd, message, wParam, lParam);
    }
    BOOL PostMessage(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const {
        return ::PostMessageW(m_hWnd, message, wParam, lParam);
    }
    // Sees a message of the modal loop before it is translated; TRUE ends its way. The loop asks the window with the
    // focus first, then its parents up to the top.
    virtual BOOL PreTranslateMessage(MSG* message);

    // Relatives.
    CWnd* GetParent() const { return FromHandle(::GetParent(m_hWnd)); }
    CWnd* GetDlgItem(int id) const { return FromHandle(::GetDlgItem(m_hWnd, id)); }
    int GetDlgCtrlID() const { return ::GetDlgCtrlID(m_hWnd); }
    static CWnd* WindowFromPoint(POINT screenPoint) { return FromHandle(::WindowFromPoint(screenPoint)); }
    static CWnd* GetDesktopWindow() { return FromHandle(::GetDesktopWindow()); }

    // Text, of any length.
    void GetWindowText(CString& text) const;
    void SetWindowText(LPCWSTR text) { ::SetWindowTextW(m_hWnd, text); }
    CFont* GetFont() const { return CFont::FromHandle(reinterpret_cast<HFONT>(SendMessage(WM_GETFONT))); }

    // Place and look. Rectangles of children are in client coordinates of their parent.
    DWORD GetStyle() const { return static_cast<DWORD>(::GetWindowLongPtrW(m_hWnd, GWL_STYLE)); }
    // FALSE if nothing changed. With `positionFlags` the frame is told of it by SetWindowPos.
    BOOL ModifyStyle(DWORD remove, DWORD add, UINT positionFlags = 0);
    void MoveWindow(int x, int y, int width, int height, BOOL repaint = TRUE) {
        ::MoveWindow(m_hWnd, x, y, width, height, repaint);
    }
    void MoveWindow(const RECT* rect, BOOL repaint = TRUE) {
        MoveWindow(rect->left, rect->top, rect->right - rect->left, rect->bottom - rect->top, repaint);
    }
    BOOL SetWindowPos(const CWnd* after, int x, int y, int width, int height, UINT flags) {
        return ::SetWindowPos(m_hWnd, after != nullptr ? after->m_hWnd : nullptr, x, y, width, height, flags);
    }
    void BringWindowToTop() { ::BringWindowToTop(m_hWnd); }
    BOOL ShowWindow(int command) { return ::ShowWindow(m_hWnd, command); }
    BOOL IsWindowVisible() const { return ::IsWindowVisible(m_hWnd); }
    void GetClientRect(RECT* rect) const { ::GetClientRect(m_hWnd, rect); }
    void GetWindowRect(RECT* rect) const { ::GetWindowRect(m_hWnd, rect); }
    void ClientToScreen(POINT* point) const { ::ClientToScreen(m_hWnd, point); }
    void ClientToScreen(RECT* rect) const { ::MapWindowPoints(m_hWnd, nullptr, reinterpret_cast<POINT*>(rect), 2); }
    void ScreenToClient(POINT* point) const { ::ScreenToClient(m_hWnd, point); }
    void ScreenToClient(RECT* rect) const { ::MapWindowPoints(nullptr, m_hWnd, reinterpret_cast<POINT*>(rect), 2); }

    // Painting.
    void Invalidate(BOOL erase = TRUE) { ::InvalidateRect(m_hWnd, nullptr, erase); }
    void InvalidateRect(const RECT* rect, BOOL erase = TRUE) { ::InvalidateRect(m_hWnd, rect, erase); }
    void UpdateWindow() { ::UpdateWindow(m_hWnd); }
    BOOL RedrawWindow(const RECT* rect = nullptr, CRgn* /*region*/ = nullptr,
                      UINT flags = RDW_INVALIDATE | RDW_UPDATENOW | RDW_ERASE) {
        return ::RedrawWindow(m_hWnd, rect, nullptr, flags);
    }
    void SetRedraw(BOOL redraw = TRUE) { SendMessage(WM_SETREDRAW, static_cast<WPARAM>(redraw)); }

    // Input. Windows that lost the focus or the capture come back as objects, or null.
    BOOL EnableWindow(BOOL enable = TRUE) { return ::EnableWindow(m_hWnd, enable); }
    BOOL IsWindowEnabled() const { return ::IsWindowEnabled(m_hWnd); }
    CWnd* SetFocus() { return FromHandle(::SetFocus(m_hWnd)); }
    static CWnd* GetFocus() { return FromHandle(::GetFocus()); }
    CWnd* SetCapture() { return FromHandle(::SetCapture(m_hWnd)); }

    // Runs DoDataExchange: from the controls into the members for TRUE, the other way for FALSE. WM_COMMAND
    // notifications of the window's controls are swallowed meanwhile. FALSE if the exchange ended with a
    // CUserException.
    BOOL UpdateData(BOOL saveAndValidate = TRUE);

protected:
    // The last call for a window: the object is unbound and may delete itself.
    virtual void PostNcDestroy();
    virtual void DoDataExchange(CDataExchange* exchange);

    // Every message comes through here: the message map, then DefWindowProc.
    virtual LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam);
    // What the window does by itself: the procedure that it had before it was bound.
    virtual LRESULT DefWindowProc(UINT message, WPARAM wParam, LPARAM lParam);
    // DefWindowProc with the message that is being handled, as it came.
    LRESULT Default();
    // Lets go of the window, which goes on without its object.
    HWND Detach();

    // Message handlers: each does Default().
    afx_msg int OnCreate(CREATESTRUCTW*) { return static_cast<int>(Default()); }
    afx_msg void OnDestroy() { Default(); }
    afx_msg void OnNcDestroy();
    afx_msg void OnClose() { Default(); }
    afx_msg void OnSize(UINT, int, int) { Default(); }
    afx_msg void OnSetFocus(CWnd*) { Default(); }
    afx_msg void OnKillFocus(CWnd*) { Default(); }
    afx_msg void OnKeyDown(UINT, UINT, UINT) { Default(); }
    afx_msg void OnKeyUp(UINT, UINT, UINT) { Default(); }
    afx_msg void OnChar(UINT, UINT, UINT) { Default(); }
    afx_msg void OnMouseMove(UINT, CPoint) { Default(); }
    afx_msg void OnLButtonDown(UINT, CPoint) { Default(); }
    afx_msg void OnLButtonUp(UINT, CPoint) { Default(); }
    afx_msg void OnLButtonDblClk(UINT, CPoint) { Default(); }
    afx_msg void OnRButtonDown(UINT, CPoint) { Default(); }
    afx_msg void OnHScroll(UINT, UINT, CScrollBar*) { Default(); }
    afx_msg void OnVScroll(UINT, UINT, CScrollBar*) { Default(); }
    afx_msg UINT OnGetDlgCode() { return static_cast<UINT>(Default()); }
    // Asks the control for its colours first.
    afx_msg HBRUSH OnCtlColor(CDC* context, CWnd* control, UINT type);

    DECLARE_MESSAGE_MAP()

private:
    friend class CWindowProcedure;

    // Makes the object findable by the window's handle. FALSE if one of them is bound already.
    BOOL Attach(HWND window);
    // Each is true if a handler took the message. OnCommand and OnNotify ask the child that sent it first.
    bool OnWndMsg(UINT message, WPARAM wParam, LPARAM lParam, LRESULT* result);
    bool OnCommand(WPARAM wParam, LPARAM lParam, LRESULT* result);
    bool OnNotify(WPARAM wParam, LPARAM lParam, LRESULT* result);
    // Offers the message to the child's reflected handlers.
    static bool Reflect(HWND child, UINT message, UINT code, WPARAM wParam, LPARAM lParam, LRESULT* result);

    WNDPROC m_pfnSuper = nullptr;
    AFX_MODULE_STATE* m_pModuleState = nullptr;
};
