// What the tests of the whole dialog share: a host with its window and rules, a branch of the registry to drag from,
// and a dialog that is worked in steps. A step says where, what, and all that looks different afterwards:
//
//     Work({{Click(IDC_NEW_KEY), L"focus=key strip=Branch||"},
//           {Type(L"HKCU\\k\r"), L"delete=live, tab dirty=yes rows=Branch|HKCU\\k|; selected=0"},
//           {Click(IDOK)}});
#pragma once

#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <source_location>
#include <string>
#include <vector>

#include "resources/resource.h"
#include "rules/RegistryRulesCtrl.h"
#include "support/DialogDriver.h"
#include "support/ScopedRegistryKey.h"

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

#define CONFIRM_CANCEL                                                                                               \
    L"Changes have been made to the Registry Rules. If you cancel, all changes will be lost. Are you sure you want " \
    L"to cancel?"
#define UNKNOWN_HIVE L"The specified Hive is not valid."
#define BARE_HIVE L"Hives cannot be migrated. You must specify a subkey."

// All that an administrator sees: "rows" (TYPE|KEY|VALUE; and so on), "selected", "focus", "strip" (KIND|KEY|VALUE,
// with
// "..." for the watermark and what is grey in parentheses), "delete" (the button), "cell" (an open editor's text, or
// kind), "mouse" (what it holds), "dirty", and "picture" (whether it is what a fresh paint gives, but for the inside of
// tree and list, which is the system's).
using Look = std::map<std::wstring, std::wstring>;
using Act = std::function<void(Dialog&)>;
struct Step {
    Act act;
    // What looks different afterwards, as NAME=TEXT in the order of the names; first "box", a message box that has come
    // up. Nothing in a last step means that it ends the dialog.
    std::wstring seen = {};
    std::source_location where = std::source_location::current();
};

inline constexpr int behindRows = -1;
inline constexpr int ofStrip = -1;
using Texts = std::vector<std::wstring>;
using Item = std::vector<std::wstring>;  // below HKCU\T; an empty name is a key's default value

Act Click(int control);
Act ClickCell(int row, int column);
Act Type(const wchar_t* text);
Act Press(WORD key, WORD held = 0);
// Opens a cell's editor, whichever row is selected.
Act Open(int row, int column);
// Chooses a kind in a row's drop-down or in the strip's.
Act Pick(int row, int index);
// Drags an item before a row or behind the last.
Act Drop(const Item& item, int row);
Act Answer(int button);

std::wstring RowsOf(Dialog& d);
HWND CellEditor(Dialog& d);
RECT Frame(HWND window);
// The middle of the gap between tree and list.
POINT Gap(Dialog& d);
bool CursorIs(Dialog& d, const wchar_t* standard);
// Begins a drag and stops over a place.
void DragTo(Dialog& d, const Item& item, POINT to);
// Where to take hold of an item; opens what is above it.
POINT Hold(Dialog& d, const Item& item);
// Whether what stands on the screen is what painting all anew gives: "fresh", or where it differs, without what lies
// inside some controls. On the dialog's thread.
std::wstring ComparePicture(HWND window, std::initializer_list<int> without = {});

class RulesDialog : public testing::Test {
protected:
    RulesDialog();

    // Gives the host branch rules of these keys.
    void AddBranches(std::initializer_list<const wchar_t*> keys);
    // Shows the dialog and works it; what Show returned.
    long Show(const std::function<void(Dialog&)>& script);
    long Work(const std::vector<Step>& steps);
    void Go(Dialog& d, const std::vector<Step>& steps);
    // What looks different since the last step, or since the dialog opened.
    std::wstring Changes(Dialog& d);
    // What the host reads back: "Branch|KEY|POSITION", "Key|..." (a flag other than 0 and 1 shows as itself) and then
    // "Value|KEY|NAME|POSITION".
    Texts HostRules();

    HostWindow host;
    CRegistryRulesCtrl control;
    DialogDriver driver;
    Look look;

private:
    ScopedRegistryKey m_branch{HKEY_CURRENT_USER, L"T"};
};
