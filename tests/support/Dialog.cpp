#include "support/Dialog.h"

#include <windows.h>
#include <commctrl.h>

#include <algorithm>
#include <cwctype>

#include "support/Input.h"
#include "support/Narrow.h"
#include "support/WindowText.h"

namespace {

constexpr ULONGLONG kPatienceMs = 10000;
constexpr UINT kNoDoubleClickMs = 1;
constexpr UINT kSlowDoubleClickMs = 5000;
constexpr int kBoxText = 0xFFFF;

std::vector<HWND> VisibleDialogs(DWORD thread) {
    std::vector<HWND> dialogs;
    EnumThreadWindows(
        thread,
        [](HWND window, LPARAM found) -> BOOL {
            if (IsWindowVisible(window) && ClassName(window) == L"#32770") {
                reinterpret_cast<std::vector<HWND>*>(found)->push_back(window);
            }
            return TRUE;
        },
        reinterpret_cast<LPARAM>(&dialogs));
    return dialogs;
}

GUITHREADINFO ThreadInfo(DWORD thread) {
    GUITHREADINFO info{};
    info.cbSize = sizeof info;
    GetGUIThreadInfo(thread, &info);
    return info;
}

std::string PointText(POINT point) {
    return std::to_string(point.x) + "," + std::to_string(point.y);
}

std::wstring BoxText(HWND box) {
    return WindowText(GetDlgItem(box, kBoxText));
}

void PressButton(HWND box, int button) {
    PostMessageW(box, WM_COMMAND, MAKEWPARAM(button, BN_CLICKED), reinterpret_cast<LPARAM>(GetDlgItem(box, button)));
}

// The answer that lets a dialog go on closing.
void PressAnyButton(HWND box) {
    for (const int button : {IDYES, IDOK, IDCANCEL, IDNO}) {
        if (GetDlgItem(box, button) != nullptr) return PressButton(box, button);
    }
}

}  // namespace

HWND Dialog::Control(int id) {
    const HWND control = GetDlgItem(m_window, id);
    if (control == nullptr) Fail("no control " + std::to_string(id));
    return control;
}

std::wstring Dialog::Text(int id) {
    return WindowText(Control(id));
}

HWND Dialog::Focus() const {
    return ThreadInfo(m_gui.Id()).hwndFocus;
}

HWND Dialog::Capture() const {
    return ThreadInfo(m_gui.Id()).hwndCapture;
}

int Dialog::FocusId() const {
    const HWND focus = Focus();
    return focus != nullptr ? GetDlgCtrlID(focus) : 0;
}

HWND Dialog::FindBelow(HWND window, std::wstring_view className) {
    struct Search {
        std::wstring_view className;
        HWND found;
    } search{className, nullptr};
    EnumChildWindows(
        window,
        [](HWND child, LPARAM parameter) -> BOOL {
            Search& wanted = *reinterpret_cast<Search*>(parameter);
            const std::wstring name = ClassName(child);
            if (!IsWindowVisible(child) ||
                CompareStringOrdinal(name.c_str(), -1, wanted.className.data(),
                                     static_cast<int>(wanted.className.size()), TRUE) != CSTR_EQUAL) {
                return TRUE;
            }
            wanted.found = child;
            return FALSE;
        },
        reinterpret_cast<LPARAM>(&search));
    return search.found;
}

POINT Dialog::Centre(HWND window) {
    RECT area{};
    GetWindowRect(window, &area);
    return {(area.left + area.right) / 2, (area.top + area.bottom) / 2};
}

std::pair<int, int> Dialog::EditSelection(HWND edit) {
    DWORD start = 0;
    DWORD end = 0;
    SendMessageW(edit, EM_GETSEL, reinterpret_cast<WPARAM>(&start), reinterpret_cast<LPARAM>(&end));
    return {static_cast<int>(start), static_cast<int>(end)};
}

void Dialog::Click(HWND window) {
    Click(Centre(window));
}

void Dialog::Click(POINT screen) {
    Step("click " + PointText(screen), [&] {
        input::MoveTo(screen);
        Settle();
        input::LeftDown();
        Settle();
        input::LeftUp();
    });
}

void Dialog::DoubleClick(POINT screen) {
    // The first click must not become the second of a double click with the step before.
    Click(screen);
    SetDoubleClickTime(kSlowDoubleClickMs);
    Click(screen);
    SetDoubleClickTime(kNoDoubleClickMs);
}

void Dialog::Move(POINT screen) {
    Step("move to " + PointText(screen), [&] { input::MoveTo(screen); });
}

void Dialog::Press() {
    Step("press", input::LeftDown);
}

void Dialog::Release() {
    Step("release", input::LeftUp);
}

void Dialog::Drag(POINT from, POINT to, int steps) {
    Move(from);
    Press();
    for (int i = 1; i <= steps; ++i) {
        Move({from.x + (to.x - from.x) * i / steps, from.y + (to.y - from.y) * i / steps});
    }
    Release();
}

void Dialog::PickFromPopup(HWND combo, int index) {
    COMBOBOXINFO info{};
    info.cbSize = sizeof info;
    WaitFor("an open drop-down list", [&] {
        return SendMessageW(combo, CB_GETCOMBOBOXINFO, 0, reinterpret_cast<LPARAM>(&info)) != 0 &&
               IsWindowVisible(info.hwndList);
    });
    RECT area{};
    if (SendMessageW(info.hwndList, LB_GETITEMRECT, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&area)) ==
        LB_ERR) {
        Fail("no entry " + std::to_string(index) + " in the drop-down list");
    }
    MapWindowPoints(info.hwndList, nullptr, reinterpret_cast<POINT*>(&area), 2);
    Click(POINT{(area.left + area.right) / 2, (area.top + area.bottom) / 2});
}

void Dialog::Key(WORD virtualKey, std::initializer_list<WORD> held) {
    KeyStep("key " + std::to_string(virtualKey), [&] {
        for (const WORD key : held) input::KeyDown(key);
        input::KeyDown(virtualKey);
        Settle();
        input::KeyUp(virtualKey);
        for (const WORD* key = held.end(); key != held.begin();) input::KeyUp(*--key);
    });
}

void Dialog::KeyDown(WORD virtualKey) {
    KeyStep("key down " + std::to_string(virtualKey), [&] { input::KeyDown(virtualKey); });
}

void Dialog::KeyUp(WORD virtualKey) {
    KeyStep("key up " + std::to_string(virtualKey), [&] { input::KeyUp(virtualKey); });
}

void Dialog::Alt(wchar_t letter) {
    // The virtual keys of the letters are their capitals.
    Key(static_cast<WORD>(std::towupper(letter)), {VK_MENU});
}

void Dialog::Type(std::wstring_view text) {
    // In pieces, as the system's input queue is not endless.
    constexpr size_t kPiece = 64;
    KeyStep("type " + std::to_string(text.size()) + " characters: " + Narrow(text.substr(0, kPiece)), [&] {
        for (size_t start = 0; start < text.size(); start += kPiece) {
            input::Type(text.substr(start, kPiece));
            Settle();
        }
    });
}

std::wstring Dialog::ExpectBox() {
    m_steps.push_back("expect a message box");
    if (m_expectedBox == nullptr || OpenBox() != m_expectedBox) {
        PollUntil("a message box", Boxes::Allowed,
                  [this] { return OpenBox() != nullptr && GetForegroundWindow() == OpenBox(); });
        m_expectedBox = OpenBox();
        Settle();
        m_boxTexts.push_back(BoxText(m_expectedBox));
    }
    return BoxText(m_expectedBox);
}

std::wstring Dialog::AnswerBox(int button) {
    const std::wstring text = ExpectBox();
    m_steps.push_back("answer with " + std::to_string(button) + ": " + Narrow(text));
    const HWND box = m_expectedBox;
    if (GetDlgItem(box, button) == nullptr) Fail("the box has no button " + std::to_string(button));
    PressButton(box, button);
    PollUntil("the end of the message box", Boxes::Allowed, [&] { return !IsWindowVisible(box); });
    m_expectedBox = nullptr;
    // The window behind it comes to the front a moment later, unless the answer closed it or led to the next box.
    PollUntil("the dialog in front again", Boxes::Allowed, [&] {
        const HWND next = OpenBox();
        return m_modalReturned || (next != nullptr && next != box) || GetForegroundWindow() == m_window ||
               !IsWindowVisible(m_window);
    });
    if (!m_modalReturned) Settle();
    return text;
}

void Dialog::WaitFor(std::string_view what, const std::function<bool()>& condition) {
    m_steps.push_back("wait for " + std::string(what));
    PollUntil(what, Boxes::Unexpected, condition);
}

void Dialog::WaitUntilClosed() {
    m_steps.push_back("wait until the dialog is closed");
    PollUntil("the end of the modal call", Boxes::Unexpected, [this] { return m_modalReturned.load(); });
}

void Dialog::WaitUntilOpen() {
    m_steps.push_back("open the dialog");
    PollUntil("an open dialog", Boxes::Allowed, [this] {
        const std::vector<HWND> dialogs = VisibleDialogs(m_gui.Id());
        if (!dialogs.empty()) m_window = dialogs.back();
        return m_window != nullptr;
    });
    m_gui.AskForLoop();
    PollUntil("the dialog in its loop and in front", Boxes::Allowed,
              [this] { return m_gui.LoopRuns() && GetForegroundWindow() == m_window; });
    Settle();
}

void Dialog::Finish() {
    if (!m_modalReturned) WaitUntilClosed();
}

void Dialog::ForceClose() {
    input::ReleaseAll();
    const ULONGLONG start = GetTickCount64();
    while (!m_modalReturned) {
        const HWND box = OpenBox();
        if (box != nullptr && box != m_window) {
            PressAnyButton(box);
        } else if (m_window != nullptr) {
            PostMessageW(m_window, WM_COMMAND, IDCANCEL, 0);
        }
        Sleep(20);
        if (GetTickCount64() - start > kPatienceMs) {
            // Nothing else ends it: this ends every message loop of the thread.
            PostThreadMessageW(m_gui.Id(), WM_QUIT, 0, 0);
            return;
        }
    }
}

void Dialog::Step(const std::string& what, const std::function<void()>& action) {
    m_steps.push_back(what);
    if (m_modalReturned) Fail("the dialog is closed");
    FailOnUnexpectedBox();
    action();
    Settle();
}

void Dialog::KeyStep(const std::string& what, const std::function<void()>& action) {
    Step(what, [&] {
        PollUntil("the dialog in front", Boxes::Allowed,
                  [this] { return GetWindowThreadProcessId(GetForegroundWindow(), nullptr) == m_gui.Id(); });
        action();
    });
}

void Dialog::FailOnUnexpectedBox() {
    const HWND box = OpenBox();
    if (box == nullptr || box == m_expectedBox) return;
    const std::wstring text = BoxText(box);
    m_boxTexts.push_back(text);
    Fail("an unexpected message box: " + Narrow(text));
}

void Dialog::Settle() {
    if (!m_gui.Settle() && !m_modalReturned) Fail("the dialog's thread does not come to rest");
}

void Dialog::PollUntil(std::string_view what, Boxes boxes, const std::function<bool()>& condition) {
    const ULONGLONG start = GetTickCount64();
    for (;;) {
        // Read first: what the end of the modal call made true must still be seen.
        const bool over = m_modalReturned;
        if (condition()) return;
        if (boxes == Boxes::Unexpected) FailOnUnexpectedBox();
        if (over) Fail("the dialog closed while waiting for " + std::string(what));
        if (GetTickCount64() - start > kPatienceMs) Fail("waited in vain for " + std::string(what));
        Sleep(1);
    }
}

void Dialog::Fail(const std::string& why) const {
    constexpr size_t kLastSteps = 12;
    std::string message = why;
    for (size_t i = m_steps.size() - std::min(m_steps.size(), kLastSteps); i < m_steps.size(); ++i) {
        message += "\n  step " + std::to_string(i + 1) + ": " + m_steps[i];
    }
    throw StepFailed(message);
}

HWND Dialog::OpenBox() const {
    for (const HWND dialog : VisibleDialogs(m_gui.Id())) {
        if (dialog != m_window && GetDlgItem(dialog, kBoxText) != nullptr) return dialog;
    }
    return nullptr;
}
