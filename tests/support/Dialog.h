// The steps of a person at a modal dialog, for the script of DialogDriver::Run. Input is real mouse and keyboard input.
//
// Each step waits until the dialog's thread has dealt with it. A step that cannot be made (no such control, the dialog
// is closed, a message box that nobody expected is open) ends the script with a failure that tells the steps so far.
// Positions are screen pixels, rows and columns count from 0.
#pragma once

#include <windows.h>

#include <functional>
#include <initializer_list>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "support/GuiThread.h"
#include "support/ListSteps.h"
#include "support/TreeSteps.h"

// Ends the script; DialogDriver reports it as a test failure.
class StepFailed : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

class Dialog {
public:
    // Windows
    HWND Window() const { return m_window; }
    HWND Control(int id);
    std::wstring Text(int id);
    // The window that has the keyboard focus or the mouse capture in the dialog's thread, or null.
    HWND Focus() const;
    HWND Capture() const;
    // The control id of Focus(), or 0.
    int FocusId() const;
    // The first visible window of that class anywhere below the other one, or null.
    static HWND FindBelow(HWND window, std::wstring_view className);
    static POINT Centre(HWND window);
    // Start and end of the selection of an edit, in characters.
    static std::pair<int, int> EditSelection(HWND edit);
    ListSteps List(int id) { return {*this, Control(id)}; }
    TreeSteps Tree(int id) { return {*this, Control(id)}; }

    // Mouse
    void Click(int id) { Click(Control(id)); }
    void Click(HWND window);
    void Click(POINT screen);
    void DoubleClick(POINT screen);
    void Move(POINT screen);
    void Press();
    void Release();
    void Drag(POINT from, POINT to, int steps = 8);
    // Clicks an entry of the opened popup of a drop-down list.
    void PickFromPopup(HWND combo, int index);

    // Keyboard: Key presses and releases, with other keys held meanwhile.
    void Key(WORD virtualKey, std::initializer_list<WORD> held = {});
    void KeyDown(WORD virtualKey);
    void KeyUp(WORD virtualKey);
    void Alt(wchar_t letter);
    // Any characters; keys such as Return are pressed by Key.
    void Type(std::wstring_view text);

    // Message boxes: ExpectBox waits for one and gives its text; steps may then work it by keys. AnswerBox also presses
    // the button of that id and waits until the box is gone.
    std::wstring ExpectBox();
    std::wstring AnswerBox(int button);

    // Polls until the condition holds; fails with the description after ten seconds.
    void WaitFor(std::string_view what, const std::function<bool()>& condition);
    // Waits until the modal call has returned; the last step of a script.
    void WaitUntilClosed();
    // Runs a function on the dialog's thread, for what can only be asked there (GetKeyState, GetCursor).
    void OnGuiThread(const std::function<void()>& function) const { m_gui.Run(function); }

private:
    friend class DialogDriver;
    friend class ListSteps;
    friend class TreeSteps;

    Dialog(GuiThread& gui, const std::atomic<bool>& modalReturned, std::vector<std::wstring>& boxTexts)
        : m_gui(gui), m_modalReturned(modalReturned), m_boxTexts(boxTexts) {}

    // Waits until a modal dialog is there, in front, and in its loop.
    void WaitUntilOpen();
    // The end of a script: waits for the modal call to return.
    void Finish();
    // Whatever stands open, ends the modal call: answers boxes, cancels the dialog.
    void ForceClose();

    // A step between Begin and End.
    void Step(const std::string& what, const std::function<void()>& action);
    void KeyStep(const std::string& what, const std::function<void()>& action);
    void FailOnUnexpectedBox();
    void Settle();
    enum class Boxes { Allowed, Unexpected };
    void PollUntil(std::string_view what, Boxes boxes, const std::function<bool()>& condition);
    [[noreturn]] void Fail(const std::string& why) const;
    // The message box in front of the dialog, or null.
    HWND OpenBox() const;

    GuiThread& m_gui;
    const std::atomic<bool>& m_modalReturned;
    std::vector<std::wstring>& m_boxTexts;
    HWND m_window = nullptr;
    HWND m_expectedBox = nullptr;
    std::vector<std::string> m_steps;
};
