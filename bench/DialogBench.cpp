// Opening the dialog with many rules, against the bare list-view calls that put the same cells into a list.
#include <windows.h>
#include <commctrl.h>

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

// The same list in a dialog of the same template, with no code of ours behind it.
INT_PTR CALLBACK BareProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM parameter) {
    if (message == WM_COMMAND && LOWORD(wParam) == IDCANCEL) EndDialog(dialog, 0);
    if (message != WM_INITDIALOG) return FALSE;
    const HWND list = GetDlgItem(dialog, IDC_RULE_LIST);
    for (WPARAM column = 0; column < 3; ++column) {
        LVCOLUMNW header{};
        header.mask = LVCF_WIDTH;
        header.cx = 100;
        SendMessageW(list, LVM_INSERTCOLUMNW, column, reinterpret_cast<LPARAM>(&header));
    }
    FillBare(list, *reinterpret_cast<std::vector<Cells>*>(parameter));
    return TRUE;
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

}  // namespace

int wmain() {
    const HHOOK hook = SetWindowsHookExW(WH_GETMESSAGE, FirstMessage, nullptr, GetCurrentThreadId());
    Ratios ratios;
    for (const int count : {2500, 5000, 10000, 20000})
        ratios.Compare(
            "opening with " + std::to_string(count) + " rules", 1.3, [=] { return OpenWith(count); },
            [=] { return OpenBareWith(count); });
    const std::vector<int> sizes{2500, 5000, 10000, 20000};
    ratios.Grow("opening", kLinear, sizes, OpenWith);
    // The list view itself does not grow linearly under Wine: its two arrays of rows move every ten rows, into memory
    // not touched before, and the page faults of that are most of the time. What we add to it is shown apart.
    ratios.Grow("opening with bare calls", kNoLimit, sizes, OpenBareWith);
    ratios.Grow("opening beyond the bare calls", kLinear, sizes,
                [](int count) { return OpenWith(count) - OpenBareWith(count); });
    ratios.Print();
    UnhookWindowsHookEx(hook);
    return 0;
}
