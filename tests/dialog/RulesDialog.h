// What the tests of the whole dialog share: a host with its window, the exported control, and texts to compare.
#pragma once

#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <vector>

#include "entry/KeyPath.h"
#include "resources/resource.h"
#include "rules/RegistryRulesCtrl.h"
#include "support/DialogDriver.h"

// A visible top-level window of the host, the owner of what the library shows.
class HostWindow {
public:
    HostWindow();
    ~HostWindow();
    HostWindow(const HostWindow&) = delete;
    HostWindow& operator=(const HostWindow&) = delete;

    HWND Window() const { return m_window; }

private:
    HWND m_window;
};

class RulesDialog : public testing::Test {
public:
    // Opens the dialog, throws the gap between tree and list about, and compares what stands on the screen after each
    // move with a fresh paint.
    static void MoveTheGapAbout();

protected:
    using Texts = std::vector<std::wstring>;

    static constexpr const wchar_t* watermark = L"Click here to create a new rule";
    static constexpr const wchar_t* confirmCancel =
        L"Changes have been made to the Registry Rules. If you cancel, all changes will be lost. Are you sure you want "
        L"to cancel?";
    static constexpr const wchar_t* unknownHive = L"The specified Hive is not valid.";
    static constexpr const wchar_t* bareHive = L"Hives cannot be migrated. You must specify a subkey.";

    // Shows the dialog, works it with the script, and gives what Show returned.
    long Show(const std::function<void(Dialog&)>& script) { return Show(control, script); }
    long Show(CRegistryRulesCtrl& shown, const std::function<void(Dialog&)>& script);
    // Shows it and presses OK or Cancel at once.
    long ShowAndPress(int button);

    // What the host reads back: "Branch|KEY|POSITION", "Key|..." (a flag other than 0 and 1 shows as itself) and then
    // "Value|KEY|NAME|POSITION".
    Texts HostRules() { return HostRules(control); }
    static Texts HostRules(CRegistryRulesCtrl& source);

    // The rows as "TYPE|KEY|VALUE".
    static Texts Rows(Dialog& d);
    // All that an administrator sees of the dialog, a text for each thing.
    using Look = std::map<std::string, std::wstring>;
    // What looks different since the last call, or since the dialog opened.
    Look Changes(Dialog& d);

    // The in-place edit or drop-down over a cell, or null.
    static HWND CellEdit(Dialog& d);
    static HWND CellCombo(Dialog& d);
    // Selects a row by the keys of the list: the list remembers the row of the last click over runs of the dialog, so a
    // click might open an editor.
    static void SelectRow(Dialog& d, int row);
    // Opens the editor of a cell, whichever row is selected: the first click may only select.
    static HWND OpenCellEdit(Dialog& d, int row, int column) { return OpenCell(d, row, column, CellEdit); }
    static HWND OpenCellCombo(Dialog& d, int row) { return OpenCell(d, row, 0, CellCombo); }
    // Opens the drop-down of a Type cell and drops its list down.
    static HWND OpenPopup(Dialog& d, int row);
    static bool DeleteIsLive(Dialog& d);
    static bool DeleteHasTabStop(Dialog& d);

    // On the screen: a window's rectangle, and the middle of the gap between tree and list.
    static RECT Frame(HWND window);
    static POINT Gap(Dialog& d);
    static bool CursorIs(Dialog& d, const wchar_t* standard);

    // Cancels a changed list and says Yes to the question.
    static void Discard(Dialog& d);

    // Puts a text in the place of an edit's, as pasting does, whatever its length.
    static void Put(HWND edit, const std::wstring& text);
    // Empties the edit that has the focus by its keys.
    static void ClearByKeys(Dialog& d);

    HostWindow host;
    CRegistryRulesCtrl control;
    DialogDriver driver;

private:
    static Look LookAt(Dialog& d);

    Look m_look;
    static HWND OpenCell(Dialog& d, int row, int column, HWND (*editor)(Dialog&));
};
