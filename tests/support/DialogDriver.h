// Drives a modal dialog of this process as a person would: the modal call runs on the calling thread, the script of
// steps beside it. Input is real mouse and keyboard input. Whatever goes wrong, the modal call is brought to its end.
//
//     DialogDriver driver;
//     driver.Run([&] { result = control.Show(); },
//                [&](Dialog& d) {
//                    d.Click(IDC_NEW_KEY);
//                    d.Type(L"HKCU\\Software\\Example\r");
//                    d.Click(IDCANCEL);
//                    EXPECT_NE(d.AnswerBox(IDYES).find(L"Are you sure"), std::wstring::npos);
//                });
//
// Each step waits until the dialog's thread has dealt with it, in whatever loop it is. A step that cannot be made (no
// such control, the dialog is closed, a message box that nobody expected) ends the script with a failure that tells the
// steps so far. Positions are screen pixels, rows and columns count from 0.
#pragma once

#include <windows.h>
#include <commctrl.h>

#include <atomic>
#include <functional>
#include <initializer_list>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "support/WindowText.h"

// Ends the script; DialogDriver reports it as a test failure.
class StepFailed : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

class ListSteps;

class Dialog {
public:
    HWND Window() const { return m_window; }
    HWND Control(int id);
    std::wstring Text(int id) { return WindowText(Control(id)); }
    // The window that has the keyboard focus or the mouse capture in the dialog's thread, or null.
    HWND Focus() const { return ThreadInfo().hwndFocus; }
    HWND Capture() const { return ThreadInfo().hwndCapture; }
    // The control id of Focus(), or 0.
    int FocusId() const { return Focus() != nullptr ? GetDlgCtrlID(Focus()) : 0; }
    // The first visible child of that class, or null.
    static HWND FindBelow(HWND window, const wchar_t* className);
    // The middle of a window, or of a part of it in its own coordinates, on the screen.
    static POINT Centre(HWND window) {
        RECT area{};
        GetClientRect(window, &area);
        return Centre(window, area);
    }
    static POINT Centre(HWND window, RECT area);
    // Start and end of the selection of an edit, in characters.
    static std::pair<int, int> EditSelection(HWND edit);
    ListSteps List(int id);

    void Click(int id) { Click(Control(id)); }
    void Click(HWND window) { Click(Centre(window)); }
    void Click(POINT screen);
    void DoubleClick(POINT screen);
    void Move(POINT screen);
    void Press();
    void Release();
    // Towards the user for a positive number, a notch each.
    void Wheel(POINT screen, int notches);
    // Presses, moves and does not release yet.
    void DragTo(POINT from, POINT to);
    // Clicks an entry of the opened popup of a drop-down list.
    void PickFromPopup(HWND combo, int index);

    // Key presses and releases, with other keys held meanwhile.
    void Key(WORD virtualKey, std::initializer_list<WORD> held = {});
    void KeyDown(WORD virtualKey);
    void KeyUp(WORD virtualKey);
    // Any characters; those of Return, Tab, Escape and Backspace (\r \t \x1b \b) are pressed as keys.
    void Type(std::wstring_view text);

    // ExpectBox waits for a message box and gives its text; steps may then work it. AnswerBox also presses the button
    // of that id and waits until the box is gone.
    std::wstring ExpectBox();
    std::wstring AnswerBox(int button);

    // Polls until the condition holds; fails with the description after ten seconds.
    void WaitFor(const std::string& what, const std::function<bool()>& condition);
    // Waits until the modal call has returned; the last step of a script.
    void WaitUntilClosed() {
        WaitFor("the end of the modal call", [this] { return m_modalReturned.load(); });
    }
    // Runs a function on the dialog's thread; what it throws is thrown here.
    void OnGuiThread(const std::function<void()>& function) const;
    // Waits until no input, posted message or repaint waits there. Timers are not waited for.
    void Settle() const;
    [[noreturn]] void Fail(const std::string& why) const;

private:
    friend class DialogDriver;

    Dialog(HWND helper, std::vector<std::wstring>& boxTexts) : m_helper(helper), m_boxTexts(boxTexts) {}
    void WaitUntilOpen();
    // Whatever stands open, ends the modal call: answers boxes, cancels the dialog.
    void ForceClose();
    void Step(const std::string& what, const std::function<void()>& action);
    void FailOnUnexpectedBox();
    void PollUntil(const std::string& what, const std::function<bool()>& condition);
    GUITHREADINFO ThreadInfo() const;
    std::vector<HWND> OpenDialogs() const;
    HWND OpenBox() const;  // the message box in front of the dialog, or null

    HWND m_helper;
    DWORD m_thread = GetWindowThreadProcessId(m_helper, nullptr);
    std::atomic<bool> m_modalReturned = false;
    std::vector<std::wstring>& m_boxTexts;
    HWND m_window = nullptr;
    HWND m_expectedBox = nullptr;
    std::vector<std::string> m_steps;
};

// A list view of the dialog.
class ListSteps {
public:
    ListSteps(Dialog& dialog, HWND list) : m_dialog(dialog), m_list(list) {}
    HWND Window() const { return m_list; }
    int RowCount() const { return ListView_GetItemCount(m_list); }
    std::wstring Text(int row, int column) const;
    std::vector<std::vector<std::wstring>> Rows() const;
    // The first row that has all the bits of state (LVIS_SELECTED, LVIS_FOCUSED, LVIS_DROPHILITED), or -1.
    int RowWithState(UINT state) const;
    int SelectedRow() const { return RowWithState(LVIS_SELECTED); }
    // The middle of a cell; its row is scrolled into view first.
    POINT Centre(int row, int column) const;
    // A place inside the list, behind the last row.
    POINT BehindRows() const;
    void Click(int row, int column) { m_dialog.Click(Centre(row, column)); }
    void DoubleClick(int row, int column) { m_dialog.DoubleClick(Centre(row, column)); }

private:
    Dialog& m_dialog;
    HWND m_list;
};

class DialogDriver {
public:
    DialogDriver();
    ~DialogDriver();
    DialogDriver(const DialogDriver&) = delete;
    DialogDriver& operator=(const DialogDriver&) = delete;

    // Calls modal here and script on a thread of its own, once the dialog is in front and in its loop; returns when
    // both are done. A script that leaves the dialog open, fails a step, throws, or has a fatal failure of the test
    // framework fails the test, and the dialog is cancelled for it. What modal throws is thrown here.
    void Run(const std::function<void()>& modal, const std::function<void(Dialog&)>& script);

    // The texts of the message boxes of all runs so far.
    const std::vector<std::wstring>& BoxTexts() const { return m_boxTexts; }

private:
    HWND m_helper;  // a window of the dialog's thread, which runs what the script asks for
    UINT m_doubleClickTime = GetDoubleClickTime();
    std::vector<std::wstring> m_boxTexts;
};
