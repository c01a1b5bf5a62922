// The private window messages by which the list, its cell editors and the strip's edits tell the dialog what happened.
// Always sent, never posted: each has taken effect when the sender goes on. Unless noted both parameters are 0 and the
// result is 0.
#pragma once

inline constexpr unsigned RRM_ENABLE_CELL_EDIT = 0x8100;
inline constexpr unsigned RRM_STRIP_ENTER = 0x8101;
inline constexpr unsigned RRM_STRIP_TAB = 0x8102;
inline constexpr unsigned RRM_LIST_DELETE = 0x8103;
// wParam: id of the list; lParam: NMLVDISPINFOW*, of which item.iItem and item.iSubItem say which cell.
inline constexpr unsigned RRM_CELL_CHANGED = 0x8104;
inline constexpr unsigned RRM_STRIP_BACK_TAB = 0x8105;
inline constexpr unsigned RRM_MARK_DIRTY = 0x8106;
inline constexpr unsigned RRM_HOLD_EDIT = 0x8107;
inline constexpr unsigned RRM_RELEASE_EDIT = 0x8108;
inline constexpr unsigned RRM_CELL_EDIT_HELD = 0x8109;
inline constexpr unsigned RRM_CELL_EDIT_DONE = 0x8110;
inline constexpr unsigned RRM_LIST_KEY_UP = 0x8112;
// wParam: column; lParam: CStringList*, owned by the sender and filled by the dialog; result 1.
inline constexpr unsigned RRM_FILL_COMBO = 0x83FC;
