// A modal dialog with the list of rules where the real one has it, which does what the list and its cell editors need
// of their parent and records what they tell it; and the fixture that works it.
#pragma once

#include <afxdialogex.h>

#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "controls/ComboListCtrl.h"
#include "entry/InPlaceEdit.h"
#include "resources/resource.h"
#include "support/DialogDriver.h"

// The list, with a record of what ends a cell's edit and of the private messages that reach it.
class CWatchedList : public CComboListCtrl {
public:
    std::string m_told;
    std::function<void()> m_onEndEdit;  // called once

protected:
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;
};

class CControlsHost : public CDialogEx {
public:
    CControlsHost() : CDialogEx(IDD_REGISTRY_RULES) {}

    CWatchedList m_list;  // "Type" (a drop-down), "Key" and "Value"
    std::vector<std::vector<CString>> m_rows;
    int m_keysReleased = 0;  // in the list

protected:
    void DoDataExchange(CDataExchange* exchange) override;
    BOOL OnInitDialog() override;
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;
};

class ControlsTest : public testing::Test {
protected:
    static constexpr int kType = 0, kKey = 1, kValue = 2;  // columns
    static constexpr const wchar_t* kClosed = nullptr;

    ControlsTest();
    // Runs the script on a new dialog and cancels the dialog after it.
    void Run(const std::function<void(Dialog&)>& script);

    // What was told since the last call: private messages to the dialog as "8104", to the list as "list:8102", keys
    // released that an editor reports as "key13", ends of edits as "end ROW,COLUMN 'TEXT'".
    std::string Told();
    // The editor that stands in the list, or null.
    HWND Edit() { return Dialog::FindBelow(m_d->Control(IDC_RULE_LIST), L"Edit"); }
    HWND Combo() { return Dialog::FindBelow(m_d->Control(IDC_RULE_LIST), L"ComboBox"); }
    bool NoEditor() { return Edit() == nullptr && Combo() == nullptr; }
    // Opens the edit of a cell with this text in it. What it tells is not of interest.
    HWND OpenEdit(int row, int column, const wchar_t* text, const wchar_t* validChars = L"");
    HWND OpenCombo(int row, const wchar_t* text, int selection = -1);
    // Types a text; Return, Tab, Escape and Backspace in it (\r \t \x1b \b) are pressed as keys.
    void Type(std::wstring_view text) {
        for (const wchar_t c : text) c < L' ' ? m_d->Key(static_cast<WORD>(c)) : m_d->Type({&c, 1});
    }
    // Leaves the editor without the mouse: a button of Wine 8.0 that is clicked takes the capture after the box that
    // its focus change brought up, and then swallows the next click.
    void Leave();
    // Does something to the editor that is open, answers the boxes that come of it ("text: button"), and expects what
    // is told meanwhile and what is in the edit afterwards, which then has the focus; or that it is closed.
    void Expect(const std::function<void()>& action, const std::wstring& box, int answer, const std::string& told,
                const wchar_t* left);

    CControlsHost m_host;
    Dialog* m_d = nullptr;
    DialogDriver m_driver;
};
