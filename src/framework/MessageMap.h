// Message maps: which member function handles which message.
//
//     class CColorBox : public CEdit {
//     protected:
//         afx_msg void OnKeyDown(UINT key, UINT repeatCount, UINT flags);
//         afx_msg LRESULT OnRefresh(WPARAM wParam, LPARAM lParam);
//         DECLARE_MESSAGE_MAP()
//     };
//
//     BEGIN_MESSAGE_MAP(CColorBox, CEdit)
//     ON_WM_KEYDOWN()
//     ON_MESSAGE(WM_APP + 1, &CColorBox::OnRefresh)
//     END_MESSAGE_MAP()
//
// An entry holds a small function that the compiler makes from the handler: it takes the message apart into the
// handler's own arguments. A handler whose signature does not fit its macro is therefore a compile error.
#pragma once

#include <tuple>
#include <type_traits>

#include "framework/Geometry.h"

class CCmdTarget;
class CDC;
class CScrollBar;
class CWnd;

// A message on its way to a handler.
struct AFX_MSG_CALL {
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
    LRESULT result;  // the handler's answer; 0 if it gives none
};

// Calls the handler; false if the handler declined and the message is still to be handled.
using AFX_PMSG = bool (*)(CCmdTarget& target, AFX_MSG_CALL& call);

struct AFX_MSGMAP_ENTRY {
    UINT nMessage;
    UINT nCode;    // notification code, in 16 bits
    UINT nID;      // of the control or command
    AFX_PMSG pfn;  // null ends the table
};

struct AFX_MSGMAP {
    const AFX_MSGMAP* (*pfnGetBaseMap)();  // null in the root
    const AFX_MSGMAP_ENTRY* lpEntries;
};

// Added to the number of a message that a parent passes back to the child that caused it.
inline constexpr UINT WM_REFLECT_BASE = WM_USER + 0x1C00;
// Stands in message maps for all of WM_CTLCOLORMSGBOX to WM_CTLCOLORSTATIC.
#ifndef WM_CTLCOLOR
#define WM_CTLCOLOR 0x0019
#endif

// How each kind of message is taken apart.
namespace afx {

AFX_API CWnd* WindowOf(HWND window);
AFX_API CScrollBar* ScrollBarOf(LPARAM window);
AFX_API CDC* ContextOf(WPARAM context);

struct NoArguments {
    static auto Of(AFX_MSG_CALL&) { return std::tuple(); }
};
struct RawArguments {
    static auto Of(AFX_MSG_CALL& call) { return std::tuple(call.wParam, call.lParam); }
};
struct CreateArguments {
    static auto Of(AFX_MSG_CALL& call) { return std::tuple(reinterpret_cast<LPCREATESTRUCTW>(call.lParam)); }
};
struct SizeArguments {
    static auto Of(AFX_MSG_CALL& call) {
        return std::tuple(static_cast<UINT>(call.wParam), static_cast<int>(LOWORD(call.lParam)),
                          static_cast<int>(HIWORD(call.lParam)));
    }
};
struct MouseArguments {
    static auto Of(AFX_MSG_CALL& call) { return std::tuple(static_cast<UINT>(call.wParam), CPoint(call.lParam)); }
};
struct KeyArguments {
    static auto Of(AFX_MSG_CALL& call) {
        return std::tuple(static_cast<UINT>(call.wParam), static_cast<UINT>(LOWORD(call.lParam)),
                          static_cast<UINT>(HIWORD(call.lParam)));
    }
};
struct FocusArguments {
    static auto Of(AFX_MSG_CALL& call) { return std::tuple(WindowOf(reinterpret_cast<HWND>(call.wParam))); }
};
struct ScrollArguments {
    static auto Of(AFX_MSG_CALL& call) {
        return std::tuple(static_cast<UINT>(LOWORD(call.wParam)), static_cast<UINT>(HIWORD(call.wParam)),
                          ScrollBarOf(call.lParam));
    }
};
struct ColorArguments {
    static auto Of(AFX_MSG_CALL& call) {
        return std::tuple(ContextOf(call.wParam), WindowOf(reinterpret_cast<HWND>(call.lParam)),
                          call.message - WM_CTLCOLORMSGBOX);
    }
};
// A handler that answers no brush leaves the colours to the parent.
struct ReflectedColorArguments {
    static constexpr bool kZeroDeclines = true;
    static auto Of(AFX_MSG_CALL& call) { return std::tuple(ContextOf(call.wParam), call.message - WM_CTLCOLORMSGBOX); }
};
struct NotifyArguments {
    static auto Of(AFX_MSG_CALL& call) { return std::tuple(reinterpret_cast<NMHDR*>(call.lParam), &call.result); }
};

template <typename Arguments>
concept ZeroDeclines = Arguments::kZeroDeclines;

template <typename Target, typename Answer, typename... Parameters, typename... Values>
void Call(CCmdTarget& target, Answer (Target::*handler)(Parameters...), AFX_MSG_CALL& call,
          std::tuple<Values...> values) {
    static_assert(std::is_same_v<std::tuple<std::remove_cvref_t<Parameters>...>, std::tuple<Values...>>,
                  "the handler's parameters are not those of its message");
    call.result = 0;
    const auto invoke = [&](Values... arguments) { return (static_cast<Target&>(target).*handler)(arguments...); };
    if constexpr (std::is_void_v<Answer>) {
        std::apply(invoke, values);
    } else if constexpr (std::is_pointer_v<Answer>) {
        call.result = reinterpret_cast<LRESULT>(std::apply(invoke, values));
    } else {
        call.result = static_cast<LRESULT>(std::apply(invoke, values));
    }
}

// The function that an entry holds: handles a message of the given kind with one member function.
template <typename Arguments, auto kHandler>
bool Handle(CCmdTarget& target, AFX_MSG_CALL& call) {
    Call(target, kHandler, call, Arguments::Of(call));
    if constexpr (ZeroDeclines<Arguments>) return call.result != 0;
    return true;
}

}  // namespace afx

#define DECLARE_MESSAGE_MAP()                     \
protected:                                        \
    static const AFX_MSGMAP* GetThisMessageMap(); \
    const AFX_MSGMAP* GetMessageMap() const override;

#define BEGIN_MESSAGE_MAP(the_class, base_class)         \
    const AFX_MSGMAP* the_class::GetMessageMap() const { \
        return GetThisMessageMap();                      \
    }                                                    \
    const AFX_MSGMAP* the_class::GetThisMessageMap() {   \
        using ThisClass [[maybe_unused]] = the_class;    \
        using TheBaseClass = base_class;                 \
        static const AFX_MSGMAP_ENTRY messageEntries[] = {
#define END_MESSAGE_MAP()                                                                    \
    AFX_MSGMAP_ENTRY {}                                                                      \
    }                                                                                        \
    ;                                                                                        \
    static const AFX_MSGMAP messageMap = {&TheBaseClass::GetThisMessageMap, messageEntries}; \
    return &messageMap;                                                                      \
    }

#define AFX_MESSAGE_ENTRY(message, arguments, handler) {message, 0, 0, &afx::Handle<afx::arguments, handler>},
#define AFX_CONTROL_ENTRY(message, code, id, arguments, handler) \
    {message, static_cast<WORD>(code), id, &afx::Handle<afx::arguments, handler>},

#define ON_WM_CREATE() AFX_MESSAGE_ENTRY(WM_CREATE, CreateArguments, &ThisClass::OnCreate)
#define ON_WM_DESTROY() AFX_MESSAGE_ENTRY(WM_DESTROY, NoArguments, &ThisClass::OnDestroy)
#define ON_WM_NCDESTROY() AFX_MESSAGE_ENTRY(WM_NCDESTROY, NoArguments, &ThisClass::OnNcDestroy)
#define ON_WM_CLOSE() AFX_MESSAGE_ENTRY(WM_CLOSE, NoArguments, &ThisClass::OnClose)
#define ON_WM_SIZE() AFX_MESSAGE_ENTRY(WM_SIZE, SizeArguments, &ThisClass::OnSize)
#define ON_WM_SETFOCUS() AFX_MESSAGE_ENTRY(WM_SETFOCUS, FocusArguments, &ThisClass::OnSetFocus)
#define ON_WM_KILLFOCUS() AFX_MESSAGE_ENTRY(WM_KILLFOCUS, FocusArguments, &ThisClass::OnKillFocus)
#define ON_WM_KEYDOWN() AFX_MESSAGE_ENTRY(WM_KEYDOWN, KeyArguments, &ThisClass::OnKeyDown)
#define ON_WM_KEYUP() AFX_MESSAGE_ENTRY(WM_KEYUP, KeyArguments, &ThisClass::OnKeyUp)
#define ON_WM_CHAR() AFX_MESSAGE_ENTRY(WM_CHAR, KeyArguments, &ThisClass::OnChar)
#define ON_WM_MOUSEMOVE() AFX_MESSAGE_ENTRY(WM_MOUSEMOVE, MouseArguments, &ThisClass::OnMouseMove)
#define ON_WM_LBUTTONDOWN() AFX_MESSAGE_ENTRY(WM_LBUTTONDOWN, MouseArguments, &ThisClass::OnLButtonDown)
#define ON_WM_LBUTTONUP() AFX_MESSAGE_ENTRY(WM_LBUTTONUP, MouseArguments, &ThisClass::OnLButtonUp)
#define ON_WM_LBUTTONDBLCLK() AFX_MESSAGE_ENTRY(WM_LBUTTONDBLCLK, MouseArguments, &ThisClass::OnLButtonDblClk)
#define ON_WM_RBUTTONDOWN() AFX_MESSAGE_ENTRY(WM_RBUTTONDOWN, MouseArguments, &ThisClass::OnRButtonDown)
#define ON_WM_HSCROLL() AFX_MESSAGE_ENTRY(WM_HSCROLL, ScrollArguments, &ThisClass::OnHScroll)
#define ON_WM_VSCROLL() AFX_MESSAGE_ENTRY(WM_VSCROLL, ScrollArguments, &ThisClass::OnVScroll)
#define ON_WM_GETDLGCODE() AFX_MESSAGE_ENTRY(WM_GETDLGCODE, NoArguments, &ThisClass::OnGetDlgCode)
// HBRUSH OnCtlColor(CDC*, CWnd*, UINT) of the parent, HBRUSH CtlColor(CDC*, UINT) of the control itself.
#define ON_WM_CTLCOLOR() AFX_MESSAGE_ENTRY(WM_CTLCOLOR, ColorArguments, &ThisClass::OnCtlColor)
#define ON_WM_CTLCOLOR_REFLECT() \
    AFX_MESSAGE_ENTRY(WM_REFLECT_BASE + WM_CTLCOLOR, ReflectedColorArguments, &ThisClass::CtlColor)

// LRESULT OnX(WPARAM, LPARAM)
#define ON_MESSAGE(message, handler) AFX_MESSAGE_ENTRY(message, RawArguments, handler)

// void OnX()
#define ON_CONTROL(code, id, handler) AFX_CONTROL_ENTRY(WM_COMMAND, code, id, NoArguments, handler)
#define ON_CONTROL_REFLECT(code, handler) AFX_CONTROL_ENTRY(WM_REFLECT_BASE + WM_COMMAND, code, 0, NoArguments, handler)
#define ON_COMMAND(id, handler) ON_CONTROL(0, id, handler)
#define ON_BN_CLICKED(id, handler) ON_CONTROL(BN_CLICKED, id, handler)
#define ON_EN_CHANGE(id, handler) ON_CONTROL(EN_CHANGE, id, handler)
#define ON_EN_SETFOCUS(id, handler) ON_CONTROL(EN_SETFOCUS, id, handler)
#define ON_EN_KILLFOCUS(id, handler) ON_CONTROL(EN_KILLFOCUS, id, handler)
#define ON_CBN_SELCHANGE(id, handler) ON_CONTROL(CBN_SELCHANGE, id, handler)

// void OnX(NMHDR*, LRESULT*)
#define ON_NOTIFY(code, id, handler) AFX_CONTROL_ENTRY(WM_NOTIFY, code, id, NotifyArguments, handler)
#define ON_NOTIFY_REFLECT(code, handler) \
    AFX_CONTROL_ENTRY(WM_REFLECT_BASE + WM_NOTIFY, code, 0, NotifyArguments, handler)
