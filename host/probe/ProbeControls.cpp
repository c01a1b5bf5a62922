// Controls and texts.
#include <windows.h>
#include <commctrl.h>

#include <memory>
#include <stdexcept>
#include <type_traits>
#include <vector>

#include "ProbeRows.h"

namespace {

struct WindowCloser {
    void operator()(HWND window) const { DestroyWindow(window); }
};
using UniqueWindow = std::unique_ptr<std::remove_pointer_t<HWND>, WindowCloser>;

UniqueWindow MakeControl(const wchar_t* kind, DWORD style) {
    UniqueWindow window(
        CreateWindowExW(0, kind, L"", WS_POPUP | style, 0, 0, 200, 200, nullptr, nullptr, nullptr, nullptr));
    if (!window) throw std::runtime_error("the control cannot be made");
    return window;
}

std::string DragPicture(const ProbePlace&) {
    const UniqueWindow tree = MakeControl(WC_TREEVIEWW, 0);
    const HIMAGELIST pictures = ImageList_Create(16, 16, ILC_COLOR32, 1, 1);
    ImageList_SetImageCount(pictures, 1);
    TreeView_SetImageList(tree.get(), pictures, TVSIL_NORMAL);
    wchar_t text[] = L"item";
    TVINSERTSTRUCTW insert{};
    insert.item.mask = TVIF_TEXT;
    insert.item.pszText = text;
    const HTREEITEM item = TreeView_InsertItem(tree.get(), &insert);
    const HIMAGELIST drag = TreeView_CreateDragImage(tree.get(), item);
    const int count = drag == nullptr ? -1 : ImageList_GetImageCount(drag);
    ImageList_Destroy(drag);
    TreeView_SetImageList(tree.get(), nullptr, TVSIL_NORMAL);
    ImageList_Destroy(pictures);
    return std::to_string(count) + " image(s)";
}

std::string MissingRow(const ProbePlace&) {
    const UniqueWindow list = MakeControl(WC_LISTVIEWW, LVS_REPORT);
    LVCOLUMNW column{};
    column.mask = LVCF_WIDTH;
    column.cx = 50;
    for (int i = 0; i < 2; ++i) SendMessageW(list.get(), LVM_INSERTCOLUMNW, 0, reinterpret_cast<LPARAM>(&column));
    RECT bounds{LVIR_BOUNDS, 1, 0, 0};
    return SendMessageW(list.get(), LVM_GETSUBITEMRECT, 7, reinterpret_cast<LPARAM>(&bounds)) != 0 ? "answered"
                                                                                                   : "refused";
}

std::string EditLimit(const ProbePlace&) {
    const UniqueWindow edit = MakeControl(WC_EDITW, 0);
    const auto before = SendMessageW(edit.get(), EM_GETLIMITTEXT, 0, 0);
    SendMessageW(edit.get(), EM_SETLIMITTEXT, 0, 0);
    return std::to_string(before) + ", then " + std::to_string(SendMessageW(edit.get(), EM_GETLIMITTEXT, 0, 0));
}

std::string Utf8WithoutBestFit(const ProbePlace&) {
    char bytes[8];
    SetLastError(0);
    return YesOrStatus(WideCharToMultiByte(CP_UTF8, WC_NO_BEST_FIT_CHARS, L"\u00E4", 1, bytes, 8, nullptr, nullptr) !=
                       0);
}

std::string HalfPair(const ProbePlace&) {
    char bytes[8] = {};
    const int length = WideCharToMultiByte(CP_UTF8, 0, L"\xD83D", 1, bytes, 8, nullptr, nullptr);
    return std::string(bytes, static_cast<std::size_t>(length)) == "\xEF\xBF\xBD" ? "U+FFFD" : "something else";
}

std::string CaseTables(const ProbePlace&) {
    int differences = 0;
    for (wchar_t c = 1; c < 0xFFFF; ++c) {
        wchar_t upper = c;
        CharUpperBuffW(&upper, 1);
        if (CompareStringOrdinal(&c, 1, &upper, 1, TRUE) != CSTR_EQUAL) ++differences;
    }
    return std::to_string(differences) + " characters apart";
}

std::string LongVariables(const ProbePlace&) {
    SetEnvironmentVariableW(L"RULES_PROBE", std::wstring(20000, L'x').c_str());
    std::vector<wchar_t> text(50000);
    const DWORD length =
        ExpandEnvironmentStringsW(L"%RULES_PROBE%%RULES_PROBE%", text.data(), static_cast<DWORD>(text.size()));
    SetEnvironmentVariableW(L"RULES_PROBE", nullptr);
    return length == 40001 ? "whole" : "cut";
}

constexpr ProbeRow kRows[] = {
    {3, "the tree's drag picture", DragPicture, "1 image(s)", "0 image(s)"},
    {16, "the limit of an edit", EditLimit, "32767, then 2147483646", "30000, then 2147483646"},
    {18, "the bounds of a row that is not there", MissingRow, "refused", "answered"},
    {20, "UTF-8 without best fit", Utf8WithoutBestFit, "no (1004)", "yes"},
    {21, "the two tables of upper case", CaseTables, nullptr, nullptr},
    {22, "half a surrogate pair in UTF-8", HalfPair, "U+FFFD", "U+FFFD"},
    {23, "variables beyond 32,767 characters", LongVariables, "cut", "whole"},
};

}  // namespace

std::span<const ProbeRow> ControlRows() {
    return kRows;
}
