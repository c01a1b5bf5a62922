#include "ProbeDialog.h"

#include <windows.h>
#include <commctrl.h>

#include <atomic>
#include <functional>
#include <iterator>
#include <stdexcept>
#include <thread>

#include "resources/resource.h"
#include "rules/RegistryRulesCtrl.h"

namespace {

constexpr ULONGLONG kPatienceMs = 5000;
constexpr DWORD kLookMs = 20;
constexpr DWORD kPaceMs = 30;  // of a hand, between two events
constexpr int kKeyColumn = 1;
constexpr int kColumns = 3;

// The administrator: works the dialog from a thread of its own, and sees what any program of the desktop would.
class Administrator {
public:
    explicit Administrator(std::vector<DialogStep>& steps) : m_steps(steps), m_hand([this] { Work(); }) {}
    // The dialog is over by then.
    ~Administrator() {
        m_isOver = true;
        m_hand.join();
    }
    Administrator(const Administrator&) = delete;
    Administrator& operator=(const Administrator&) = delete;

private:
    void Work() {
        try {
            FindDialog();
            WorkSteps();
        } catch (const std::exception& problem) {
            m_steps.push_back({"the steps are gone through", problem.what(), "all of them"});
        }
        // However it went, the dialog does not stay.
        for (; !m_isOver; Sleep(kPaceMs)) {
            const HWND dialog = OwnDialog();
            if (dialog == nullptr) continue;
            const HWND box = GetWindow(dialog, GW_ENABLEDPOPUP);
            PostMessageW(box != nullptr ? box : dialog, WM_COMMAND, box != nullptr ? IDYES : IDCANCEL, 0);
        }
    }

    void WorkSteps() {
        See("the rule that the host handed in", [&] { return Rows(); }, "Branch|HKCU\\Environment|");

        Click(Control(IDC_NEW_KEY));
        Type(L"HKCU\\Software\\Probe\r");
        const std::string typed = "Branch|HKCU\\Software\\Probe|; Branch|HKCU\\Environment|";
        See("a key typed into the strip", [&] { return Rows(); }, typed);

        // The first click selects the row, after which the list may try to edit it by itself: an editor comes and goes,
        // refused by the dialog. Only after that the second.
        Click(Cell(0));
        Sleep(GetDoubleClickTime());
        Click(Cell(0));
        See("its cell, opened by the mouse", [&] { return Text(Editor()); }, "HKCU\\Software\\Probe");
        Type(L"HKCU\\Software\\Probed\r");
        const std::string edited = "Branch|HKCU\\Software\\Probed|; Branch|HKCU\\Environment|";
        See("what was typed there", [&] { return Rows(); }, edited);

        Click(Item(HiveItem()));
        Press(VK_RIGHT);
        if (!IsSoon([&] { return FirstKey() != nullptr; })) throw std::runtime_error("the tree opens no hive");
        const std::string key = ItemText(FirstKey());
        Drag(Item(FirstKey()), BehindTheRows());
        const std::string dropped = "Branch|HKCU\\" + key + "|";
        See("a key dragged from the tree", [&] { return Rows(); }, edited + "; " + dropped);

        Click(Cell(0));
        Click(Control(IDC_DELETE_RULE));
        See("a row deleted by the button", [&] { return Rows(); }, "Branch|HKCU\\Environment|; " + dropped);

        Click(Control(IDOK));
        See("the dialog after OK", [&] { return std::string(IsWindow(m_dialog) ? "open" : "gone"); }, "gone");
    }

    // Waits until it is seen, or tells what was seen in the end.
    void See(const char* what, const std::function<std::string()>& look, const std::string& expected) {
        std::string seen;
        IsSoon([&] { return (seen = look()) == expected; });
        m_steps.push_back({what, seen, expected});
    }
    static bool IsSoon(const std::function<bool()>& condition) {
        for (const ULONGLONG end = GetTickCount64() + kPatienceMs; GetTickCount64() < end; Sleep(kLookMs)) {
            if (condition()) return true;
        }
        return false;
    }

    // Another program's dialog of that name is somebody's work. Null when there is none of ours.
    static HWND OwnDialog() {
        HWND dialog = nullptr;
        DWORD process = 0;
        do {
            dialog = FindWindowExW(nullptr, dialog, WC_DIALOG, L"Registry Rules");
            GetWindowThreadProcessId(dialog, &process);
        } while (dialog != nullptr && process != GetCurrentProcessId());
        return dialog;
    }
    void FindDialog() {
        const auto isThere = [&] {
            m_dialog = OwnDialog();
            return IsWindowVisible(m_dialog) != FALSE;
        };
        if (!IsSoon(isThere)) throw std::runtime_error("no dialog appeared");
        // Clicks are to reach it, whatever else is on the screen.
        SetWindowPos(m_dialog, HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
        SetForegroundWindow(m_dialog);
    }
    HWND Child(int id) const { return GetDlgItem(m_dialog, id); }

    // What is seen.
    static std::string Narrow(const wchar_t* text) {
        char narrow[300] = "";
        WideCharToMultiByte(CP_UTF8, 0, text, -1, narrow, sizeof narrow, nullptr, nullptr);
        return narrow;
    }
    static std::string Text(HWND window) {
        wchar_t text[100] = L"";
        SendMessageW(window, WM_GETTEXT, std::size(text), reinterpret_cast<LPARAM>(text));
        return Narrow(text);
    }
    HWND Editor() const { return FindWindowExW(Child(IDC_RULE_LIST), nullptr, WC_EDITW, nullptr); }
    std::string Rows() const {
        const HWND list = Child(IDC_RULE_LIST);
        std::string rows;
        for (int row = 0; row < ListView_GetItemCount(list); ++row) {
            if (row != 0) rows += "; ";
            for (int column = 0; column < kColumns; ++column) {
                wchar_t text[100] = L"";
                ListView_GetItemText(list, row, column, text, static_cast<int>(std::size(text)));
                rows += (column != 0 ? "|" : "") + Narrow(text);
            }
        }
        return rows;
    }
    std::string ItemText(HTREEITEM item) const {
        wchar_t text[100] = L"";
        TVITEMW seen{};
        seen.mask = TVIF_TEXT;
        seen.hItem = item;
        seen.pszText = text;
        seen.cchTextMax = static_cast<int>(std::size(text));
        TreeView_GetItem(Child(IDC_REGISTRY_TREE), &seen);
        return Narrow(text);
    }
    HTREEITEM HiveItem() const {
        const HWND tree = Child(IDC_REGISTRY_TREE);
        HTREEITEM item = TreeView_GetRoot(tree);
        while (item != nullptr && ItemText(item) != "HKEY_CURRENT_USER") item = TreeView_GetNextVisible(tree, item);
        if (item == nullptr) throw std::runtime_error("the tree has no HKEY_CURRENT_USER");
        return item;
    }
    HTREEITEM FirstKey() const { return TreeView_GetChild(Child(IDC_REGISTRY_TREE), HiveItem()); }

    // Where it is, on the screen.
    static POINT Middle(HWND window, RECT area) {
        MapWindowPoints(window, nullptr, reinterpret_cast<POINT*>(&area), 2);
        return {(area.left + area.right) / 2, (area.top + area.bottom) / 2};
    }
    POINT Control(int id) const {
        RECT area{};
        GetClientRect(Child(id), &area);
        return Middle(Child(id), area);
    }
    POINT Cell(int row) const {
        RECT area{};
        ListView_GetSubItemRect(Child(IDC_RULE_LIST), row, kKeyColumn, LVIR_BOUNDS, &area);
        return Middle(Child(IDC_RULE_LIST), area);
    }
    POINT Item(HTREEITEM item) const {
        RECT area{};
        if (!TreeView_GetItemRect(Child(IDC_REGISTRY_TREE), item, &area, TRUE)) {
            throw std::runtime_error("an item of the tree is out of sight");
        }
        return Middle(Child(IDC_REGISTRY_TREE), area);
    }
    POINT BehindTheRows() const {
        RECT area{};
        GetClientRect(Child(IDC_RULE_LIST), &area);
        area.top = area.bottom - 20;
        return Middle(Child(IDC_RULE_LIST), area);
    }

    // What the hand does.
    static void Send(INPUT event) {
        if (SendInput(1, &event, sizeof event) != 1) throw std::runtime_error("the system takes no input");
        Sleep(kPaceMs);
    }
    static void Mouse(DWORD what, POINT to = {}) {
        // Of the main screen's 65,536 parts, rounded up, since the system rounds down.
        const auto part = [](LONG pixel, int metric) {
            const int pixels = GetSystemMetrics(metric);
            return static_cast<LONG>((pixel * 65536LL + pixels - 1) / pixels);
        };
        INPUT event{};
        event.type = INPUT_MOUSE;
        event.mi = {part(to.x, SM_CXSCREEN), part(to.y, SM_CYSCREEN), 0, what, 0, 0};
        Send(event);
    }
    static void MoveTo(POINT to) { Mouse(MOUSEEVENTF_MOVE | MOUSEEVENTF_ABSOLUTE, to); }
    static void Button(bool isDown) {
        const bool isSwapped = GetSystemMetrics(SM_SWAPBUTTON) != 0;
        Mouse(isDown ? (isSwapped ? MOUSEEVENTF_RIGHTDOWN : MOUSEEVENTF_LEFTDOWN)
                     : (isSwapped ? MOUSEEVENTF_RIGHTUP : MOUSEEVENTF_LEFTUP));
    }
    static void Click(POINT at) {
        Sleep(GetDoubleClickTime());  // never the second of two
        MoveTo(at);
        Button(true);
        Button(false);
    }
    static void Drag(POINT from, POINT to) {
        constexpr int moves = 6;
        Sleep(GetDoubleClickTime());
        MoveTo(from);
        Button(true);
        for (int i = 1; i <= moves; ++i) {
            MoveTo({from.x + (to.x - from.x) * i / moves, from.y + (to.y - from.y) * i / moves});
        }
        Button(false);
    }
    static void Key(WORD key, WORD character, DWORD flags) {
        INPUT event{};
        event.type = INPUT_KEYBOARD;
        event.ki = {key, character, flags, 0, 0};
        Send(event);
    }
    static void Press(WORD key) {
        Key(key, 0, 0);
        Key(key, 0, KEYEVENTF_KEYUP);
    }
    static void Type(const wchar_t* text) {
        for (; *text != 0; ++text) {
            if (*text == L'\r') {
                Press(VK_RETURN);
            } else {
                Key(0, *text, KEYEVENTF_UNICODE);
                Key(0, *text, KEYEVENTF_UNICODE | KEYEVENTF_KEYUP);
            }
        }
    }

    std::vector<DialogStep>& m_steps;
    HWND m_dialog = nullptr;
    std::atomic<bool> m_isOver = false;
    std::thread m_hand;  // the last, as it uses the others
};

std::string HostRules(CRegistryRulesCtrl& control, long result) {
    std::string rules = result == 1 ? "changed" : "not changed";
    for (long i = 0; i < control.GetKeyRuleCount(); ++i) {
        CString key;
        int isBranch = 0;
        long position = 0;
        control.GetKeyRule(i, key, &isBranch, &position);
        rules += (isBranch != 0 ? ", branch at " : ", key at ") + std::to_string(position);
    }
    return rules;
}

}  // namespace

std::vector<DialogStep> WorkDialog() {
    std::vector<DialogStep> steps;
    CRegistryRulesCtrl control;
    control.AddKeyRule(L"HKEY_CURRENT_USER\\Environment", 1, 0);
    POINT mouse{};
    GetCursorPos(&mouse);
    long result = 0;
    {
        const Administrator administrator(steps);
        result = control.Show();
    }
    SetCursorPos(mouse.x, mouse.y);
    steps.push_back({"what the host gets back", HostRules(control, result), "changed, branch at 0, branch at 1"});
    return steps;
}
