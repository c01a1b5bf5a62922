// What the tests of the whole dialog share: a host with its window and rules, a branch of the registry to drag from,
// and a dialog that is worked in steps.
#pragma once

#include "resources/resource.h"
#include "rules/RegistryRulesCtrl.h"
#include "support/DialogSteps.h"
#include "support/ScopedRegistryKey.h"

#define CONFIRM_CANCEL                                                                                               \
    L"Changes have been made to the Registry Rules. If you cancel, all changes will be lost. Are you sure you want " \
    L"to cancel?"
#define UNKNOWN_HIVE L"The specified Hive is not valid."
#define BARE_HIVE L"Hives cannot be migrated. You must specify a subkey."

using Texts = std::vector<std::wstring>;

// A visible top-level window of the host, the owner of what the library shows.
class HostWindow {
public:
    HostWindow();
    ~HostWindow() { DestroyWindow(m_window); }
    HostWindow(const HostWindow&) = delete;
    HostWindow& operator=(const HostWindow&) = delete;
    HWND Window() const { return m_window; }

private:
    HWND m_window;
};

RECT Frame(HWND window);
// The middle of the gap between tree and list.
POINT Gap(Dialog& d);
// Whether what stands on the screen is what painting all anew gives: "fresh", or where it differs, without what lies
// inside some controls. On the dialog's thread.
std::wstring ComparePicture(HWND window, std::initializer_list<int> without = {});

class RulesDialog : public DialogSteps {
protected:
    static constexpr int behindRows = -1;
    static constexpr int ofStrip = -1;
    using DialogSteps::Click;

    static Act Click(int row, int column) {
        return [=](Dialog& d) { List(d).Click(row, column); };
    }
    // Opens a cell's editor, whichever row is selected.
    static Act Open(int row, int column);
    // Chooses a kind in a row's drop-down or in the strip's.
    static Act Pick(int row, int index);
    static Act Answer(int button) {
        return [=](Dialog& d) { d.AnswerBox(button); };
    }
    // Begins a drag of an item below HKCU\T (an empty name is a key's default value) and stops over a row or behind the
    // last; or drops it there.
    static Act HoldOver(const Texts& item, int row);
    static Act Drop(const Texts& item, int row);
    // The item that is named last; clicks the buttons of what is collapsed on the way.
    static HTREEITEM Reach(Dialog& d, const Texts& path);
    // Where to take hold of an item, also of a hive; opens what is above it.
    static POINT Hold(Dialog& d, const Texts& item);
    static ListSteps List(Dialog& d) { return d.List(IDC_RULE_LIST); }
    static std::wstring RowsOf(Dialog& d);
    static HWND CellEditor(Dialog& d);
    static bool CursorIs(Dialog& d, const wchar_t* standard);

    RulesDialog();
    // Gives the host branch rules of these keys, and then of HKCU\NUMBER.
    void AddBranches(std::initializer_list<const wchar_t*> keys, int first = 0, int end = 0);
    // Shows the dialog and works it; what Show returned.
    long Show(const std::function<void(Dialog&)>& script);
    long Work(const std::vector<Step>& steps) {
        return Show([&](Dialog& d) { Go(d, steps); });
    }
    // "rows" (TYPE|KEY|VALUE; and so on), "selected", "focus", "strip" (KIND|KEY|VALUE, with "..." for the watermark
    // and what is grey in parentheses), "delete" (the button), "cell" (an open editor's text, or kind), "mouse" (what
    // it holds), "dirty", "gap" (where it is), and "picture" (whether it is what a fresh paint gives, but for the
    // inside of tree and list, which is the system's).
    Look LookAt(Dialog& d) override;
    // What the host reads back: "Branch|KEY|POSITION", "Key|..." (a flag other than 0 and 1 shows as itself) and then
    // "Value|KEY|NAME|POSITION".
    Texts HostRules();

    HostWindow host;
    CRegistryRulesCtrl control;

private:
    ScopedRegistryKey m_branch{HKEY_CURRENT_USER, L"T"};
};
