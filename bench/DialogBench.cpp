// Opening the dialog with many rules, against the bare calls that fill the same template's tree, strip and list alike.
#include <windows.h>
#include <commctrl.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "resources/resource.h"
#include "rules/RegistryRulesCtrl.h"
#include "support/Ratios.h"

namespace {

struct Cells {
    std::wstring type, key, value;
};

std::vector<Cells> MakeRows(int count) {
    std::vector<Cells> rows;
    for (int i = 0; i < count; ++i) {
        const std::wstring key =
            L"HKCU\\Software\\Vendor\\Product " + std::to_wstring(i % 97) + L"\\Settings\\" + std::to_wstring(i);
        if (i % 3 == 2)
            rows.push_back({L"Value", key, L"Name " + std::to_wstring(i)});
        else
            rows.push_back({i % 3 ? L"Key" : L"Branch", key, L""});
    }
    return rows;
}

// The host's rules: full hive names, positions as a run before has given them.
void AddRules(CRegistryRulesCtrl& control, const std::vector<Cells>& rows) {
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const std::wstring key = L"HKEY_CURRENT_USER" + rows[i].key.substr(4);
        const auto position = static_cast<short>(i);
        if (rows[i].type == L"Value")
            control.AddValueRule(key.c_str(), rows[i].value.c_str(), position);
        else
            control.AddKeyRule(key.c_str(), rows[i].type == L"Branch", position);
    }
}

// The opening is over when the modal loop asks for its first message; the dialog is then cancelled.
bool s_waiting = false;
LARGE_INTEGER s_opened;

LRESULT CALLBACK FirstMessage(int code, WPARAM wParam, LPARAM lParam) {
    if (s_waiting) {
        s_waiting = false;
        QueryPerformanceCounter(&s_opened);
        PostMessageW(GetActiveWindow(), WM_COMMAND, IDCANCEL, 0);
    }
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

double SecondsToLoop(const std::function<void()>& modal) {
    s_waiting = true;
    // Something for the loop to find.
    PostThreadMessageW(GetCurrentThreadId(), WM_NULL, 0, 0);
    LARGE_INTEGER start;
    LARGE_INTEGER frequency;
    QueryPerformanceFrequency(&frequency);
    QueryPerformanceCounter(&start);
    modal();
    return static_cast<double>(s_opened.QuadPart - start.QuadPart) / static_cast<double>(frequency.QuadPart);
}

double OpenWith(int count) {
    CRegistryRulesCtrl control;
    AddRules(control, MakeRows(count));
    return SecondsToLoop([&] { control.Show(); });
}

void FillBare(HWND list, std::vector<Cells>& rows) {
    SendMessageW(list, WM_SETREDRAW, FALSE, 0);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        LVITEMW item{};
        item.mask = LVIF_TEXT | LVIF_IMAGE | LVIF_PARAM;
        item.iItem = static_cast<int>(i);
        item.pszText = rows[i].type.data();
        item.lParam = static_cast<LPARAM>(i);
        SendMessageW(list, LVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item));
        for (int column = 1; column < 3; ++column) {
            item.iSubItem = column;
            item.pszText = (column == 1 ? rows[i].key : rows[i].value).data();
            SendMessageW(list, LVM_SETITEMTEXTW, i, reinterpret_cast<LPARAM>(&item));
        }
    }
    SendMessageW(list, WM_SETREDRAW, TRUE, 0);
}

void FillBareTree(HWND tree) {
    const HIMAGELIST icons = ImageList_Create(16, 16, ILC_COLOR32 | ILC_MASK, 4, 4);
    for (const int id : {IDI_BINARY_VALUE, IDI_STRING_VALUE, IDI_STRING_VALUE})
        ImageList_ReplaceIcon(icons, -1, LoadIconW(GetModuleHandleW(L"RegistryRules.dll"), MAKEINTRESOURCEW(id)));
    TreeView_SetImageList(tree, icons, TVSIL_NORMAL);
    for (const HKEY hive :
         {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER, HKEY_CLASSES_ROOT, HKEY_USERS, HKEY_CURRENT_CONFIG}) {
        wchar_t text[] = L"HKEY_LOCAL_MACHINE";
        TVINSERTSTRUCTW item{TVI_ROOT, TVI_LAST, {}};
        item.item.mask = TVIF_TEXT | TVIF_IMAGE | TVIF_SELECTEDIMAGE | TVIF_PARAM;
        item.item.pszText = text;
        item.hParent = TreeView_InsertItem(tree, &item);
        DWORD keys = 0;
        RegQueryInfoKeyW(hive, nullptr, nullptr, nullptr, &keys, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                         nullptr);
        if (keys != 0) TreeView_InsertItem(tree, &item);
    }
    TreeView_SortChildren(tree, TVI_ROOT, FALSE);
}

void FillBareStrip(HWND dialog) {
    for (const wchar_t* kind : {L"Branch", L"Key", L"Value"})
        SendDlgItemMessageW(dialog, IDC_NEW_TYPE, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(kind));
    SendDlgItemMessageW(dialog, IDC_NEW_TYPE, CB_SETCURSEL, 0, 0);
    SetDlgItemTextW(dialog, IDC_NEW_KEY, L"Click here to create a new rule");
    for (const int id : {IDC_TYPE_FRAME, IDC_TYPE_LABEL, IDC_KEY_FRAME, IDC_KEY_LABEL, IDC_VALUE_FRAME, IDC_VALUE_LABEL,
                         IDC_NEW_TYPE, IDC_NEW_KEY, IDC_NEW_VALUE, IDC_RULE_LIST}) {
        RECT place{};
        GetWindowRect(GetDlgItem(dialog, id), &place);
        MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&place), 2);
        MoveWindow(GetDlgItem(dialog, id), place.left, place.top + 1, place.right - place.left,
                   place.bottom - place.top, TRUE);
    }
}

// A dialog of the same template, with no code of ours behind it.
INT_PTR CALLBACK BareProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM parameter) {
    if (message == WM_COMMAND && LOWORD(wParam) == IDCANCEL) EndDialog(dialog, 0);
    if (message != WM_INITDIALOG && message != WM_DESTROY) return FALSE;
    const HWND tree = GetDlgItem(dialog, IDC_REGISTRY_TREE);
    if (message == WM_DESTROY) return ImageList_Destroy(TreeView_GetImageList(tree, TVSIL_NORMAL));
    FillBareTree(tree);
    const HWND list = GetDlgItem(dialog, IDC_RULE_LIST);
    ListView_SetExtendedListViewStyle(list, LVS_EX_GRIDLINES | LVS_EX_FULLROWSELECT);
    const int widths[] = {61, 373, 95};
    for (WPARAM column = 0; column < 3; ++column) {
        wchar_t title[] = L"Title";
        LVCOLUMNW header{};
        header.mask = LVCF_WIDTH | LVCF_TEXT;
        header.cx = widths[column];
        header.pszText = title;
        SendMessageW(list, LVM_INSERTCOLUMNW, column, reinterpret_cast<LPARAM>(&header));
    }
    FillBare(list, *reinterpret_cast<std::vector<Cells>*>(parameter));
    FillBareStrip(dialog);
    SetFocus(tree);
    return FALSE;
}

double OpenBare(std::vector<Cells> rows) {
    return SecondsToLoop([&] {
        DialogBoxParamW(GetModuleHandleW(L"RegistryRules.dll"), MAKEINTRESOURCEW(IDD_REGISTRY_RULES), nullptr,
                        BareProcedure, reinterpret_cast<LPARAM>(&rows));
    });
}

double OpenBareWith(int count) {
    return OpenBare(MakeRows(count));
}

// What ours adds is a small part of what the list takes, and less than that varies by: the quickest of some runs each.
double SecondsBeyondBare(int count) {
    double ours = OpenWith(count);
    double bare = OpenBareWith(count);
    for (int run = 1; run < 5; ++run) {
        ours = std::min(ours, OpenWith(count));
        bare = std::min(bare, OpenBareWith(count));
    }
    return ours - bare;
}

}  // namespace

int wmain() {
    const HHOOK hook = SetWindowsHookExW(WH_GETMESSAGE, FirstMessage, nullptr, GetCurrentThreadId());
    Ratios ratios;
    for (const int count : {2500, 5000, 10000, 20000})
        ratios.Compare(
            "opening with " + std::to_string(count) + " rules", 1.3, [=] { return OpenWith(count); },
            [=] { return OpenBareWith(count); });
    const std::vector<int> sizes{2500, 5000, 10000, 20000};
    // The list view itself does not grow linearly under Wine: its two arrays of rows move every ten rows, into memory
    // not touched before, and the page faults of that are most of the time. What we add to it is shown apart.
    ratios.Grow("opening", kNoLimit, sizes, OpenWith);
    ratios.Grow("opening with bare calls", kNoLimit, sizes, OpenBareWith);
    ratios.Grow("opening beyond the bare calls", kLinear, sizes, SecondsBeyondBare);
    ratios.Print();
    UnhookWindowsHookEx(hook);
    return 0;
}
