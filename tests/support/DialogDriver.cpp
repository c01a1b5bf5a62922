#include "support/DialogDriver.h"

#include <algorithm>
#include <future>
#include <gtest/gtest.h>
#include <thread>

#include "support/Narrow.h"

namespace {

constexpr UINT kPatienceMs = 10000;
// Two clicks of a script on one spot are two clicks, however fast it is; Dialog::DoubleClick makes the exception.
constexpr UINT kNoDoubleClickMs = 1;
constexpr UINT kSlowDoubleClickMs = 5000;
constexpr UINT kRun = WM_APP;
constexpr int kBoxText = 0xFFFF;
constexpr ATOM kDialogClass = 32770;

using Task = std::packaged_task<void()>;

LRESULT CALLBACK HelperProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message != kRun) return DefWindowProcW(window, message, wParam, lParam);
    (*reinterpret_cast<Task*>(lParam))();
    return 0;
}

void Send(std::vector<INPUT> inputs) {
    const UINT count = static_cast<UINT>(inputs.size());
    if (SendInput(count, inputs.data(), sizeof(INPUT)) != count) throw std::runtime_error("SendInput was refused");
    // Wine 8 remembers per thread for 50 ms that a key is up, also in the dialog's thread; asking here for each key
    // ends that (Cells.ClicksSelectThenEditAndTheirEditsEndWithEachOther).
    for (int key = 1; key < 255; ++key) GetAsyncKeyState(key);
}

void SendMouse(DWORD flags, int wheel = 0, POINT screen = {}) {
    // Rounded up, so that the system's rounding down gives the same pixel again.
    const auto absolute = [](LONG pixel, int metric) {
        const int extent = GetSystemMetrics(metric);
        return static_cast<LONG>((pixel * 65536LL + extent - 1) / extent);
    };
    INPUT event{};
    event.type = INPUT_MOUSE;
    event.mi = {
        absolute(screen.x, SM_CXSCREEN), absolute(screen.y, SM_CYSCREEN), static_cast<DWORD>(wheel), flags, 0, 0};
    Send({event});
}

void MoveTo(POINT screen) {
    SendMouse(MOUSEEVENTF_ABSOLUTE | MOUSEEVENTF_MOVE, 0, screen);
}

INPUT KeyEvent(WORD key, WORD scan, DWORD flags) {
    INPUT event{};
    event.type = INPUT_KEYBOARD;
    event.ki = {key, scan, flags, 0, 0};
    return event;
}

void SendKey(WORD key, DWORD flags) {
    // The block between letters and number pad; without the flag they would be the number pad's.
    const bool extended = (key >= VK_PRIOR && key <= VK_DOWN) || key == VK_INSERT || key == VK_DELETE;
    const auto scan = static_cast<WORD>(MapVirtualKeyW(key, MAPVK_VK_TO_VSC));
    Send({KeyEvent(key, scan, flags | (extended ? KEYEVENTF_EXTENDEDKEY : 0))});
}

void SendText(std::wstring_view text) {
    std::vector<INPUT> inputs;
    for (const wchar_t character : text) {
        for (const DWORD flags : {DWORD{KEYEVENTF_UNICODE}, DWORD{KEYEVENTF_UNICODE | KEYEVENTF_KEYUP}})
            inputs.push_back(KeyEvent(0, static_cast<WORD>(character), flags));
    }
    Send(inputs);
}

std::wstring BoxText(HWND box) {
    return WindowText(GetDlgItem(box, kBoxText));
}

}  // namespace

HWND Dialog::Control(int id) {
    const HWND control = GetDlgItem(m_window, id);
    if (control == nullptr) Fail(m_modalReturned ? "the dialog is closed" : "no control " + std::to_string(id));
    return control;
}

GUITHREADINFO Dialog::ThreadInfo() const {
    GUITHREADINFO info{};
    info.cbSize = sizeof info;
    GetGUIThreadInfo(m_thread, &info);
    return info;
}

HWND Dialog::FindBelow(HWND window, const wchar_t* className) {
    HWND child = nullptr;
    do {
        child = FindWindowExW(window, child, className, nullptr);
    } while (child != nullptr && !IsWindowVisible(child));
    return child;
}

POINT Dialog::Centre(HWND window, RECT area) {
    MapWindowPoints(window, nullptr, reinterpret_cast<POINT*>(&area), 2);
    return {(area.left + area.right) / 2, (area.top + area.bottom) / 2};
}

std::pair<int, int> Dialog::EditSelection(HWND edit) {
    DWORD start = 0;
    DWORD end = 0;
    SendMessageW(edit, EM_GETSEL, reinterpret_cast<WPARAM>(&start), reinterpret_cast<LPARAM>(&end));
    return {static_cast<int>(start), static_cast<int>(end)};
}

void Dialog::Click(POINT screen) {
    Move(screen);
    Press();
    Release();
}

void Dialog::DoubleClick(POINT screen) {
    // The first click must not become the second of a double click with the step before.
    Click(screen);
    SetDoubleClickTime(kSlowDoubleClickMs);
    Click(screen);
    SetDoubleClickTime(kNoDoubleClickMs);
}

void Dialog::Move(POINT screen) {
    Step("move to " + std::to_string(screen.x) + "," + std::to_string(screen.y), [&] { MoveTo(screen); });
}

void Dialog::Press() {
    Step("press", [] { SendMouse(MOUSEEVENTF_LEFTDOWN); });
}

void Dialog::Release() {
    // The press may have brought up a box, or closed the dialog.
    m_steps.emplace_back("release");
    SendMouse(MOUSEEVENTF_LEFTUP);
    Settle();
}

void Dialog::Wheel(POINT screen, int notches) {
    Move(screen);
    Step("turn the wheel", [&] { SendMouse(MOUSEEVENTF_WHEEL, -notches * WHEEL_DELTA); });
}

void Dialog::DragTo(POINT from, POINT to) {
    constexpr int steps = 6;
    Move(from);
    Press();
    for (int i = 1; i <= steps; ++i) Move({from.x + (to.x - from.x) * i / steps, from.y + (to.y - from.y) * i / steps});
}

void Dialog::PickFromPopup(HWND combo, int index) {
    COMBOBOXINFO info{};
    info.cbSize = sizeof info;
    WaitFor("an open drop-down list", [&] {
        return SendMessageW(combo, CB_GETCOMBOBOXINFO, 0, reinterpret_cast<LPARAM>(&info)) != 0 &&
               IsWindowVisible(info.hwndList);
    });
    RECT area{};
    SendMessageW(info.hwndList, LB_GETITEMRECT, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&area));
    Click(Centre(info.hwndList, area));
}

void Dialog::Key(WORD virtualKey, std::initializer_list<WORD> held) {
    for (const WORD key : held) KeyDown(key);
    KeyDown(virtualKey);
    // The key may have closed the dialog.
    SendKey(virtualKey, KEYEVENTF_KEYUP);
    for (const WORD* key = held.end(); key != held.begin();) SendKey(*--key, KEYEVENTF_KEYUP);
    Settle();
}

void Dialog::KeyDown(WORD virtualKey) {
    Step("key down " + std::to_string(virtualKey), [&] { SendKey(virtualKey, 0); });
}

void Dialog::KeyUp(WORD virtualKey) {
    Step("key up " + std::to_string(virtualKey), [&] { SendKey(virtualKey, KEYEVENTF_KEYUP); });
}

void Dialog::Type(std::wstring_view text) {
    constexpr std::wstring_view keys = L"\r\t\x1b\b";
    for (std::size_t start = 0; start < text.size();) {
        const std::wstring_view piece = text.substr(start, text.find_first_of(keys, start) - start);
        if (!piece.empty()) Step("type " + Narrow(piece), [&] { SendText(piece); });
        start += piece.size();
        // The virtual keys of these four are their characters.
        if (start < text.size()) Key(static_cast<WORD>(text[start++]));
    }
}

std::wstring Dialog::ExpectBox() {
    if (m_expectedBox == nullptr || OpenBox() != m_expectedBox) {
        PollUntil("a message box", [this] { return OpenBox() != nullptr && GetForegroundWindow() == OpenBox(); });
        m_expectedBox = OpenBox();
        Settle();
        m_boxTexts.push_back(BoxText(m_expectedBox));
    }
    return BoxText(m_expectedBox);
}

std::wstring Dialog::AnswerBox(int button) {
    std::wstring text = ExpectBox();
    m_steps.push_back("answer with " + std::to_string(button) + ": " + Narrow(text));
    const HWND box = m_expectedBox;
    if (GetDlgItem(box, button) == nullptr) Fail("the box has no button " + std::to_string(button));
    PostMessageW(box, WM_COMMAND, static_cast<WPARAM>(button), 0);
    PollUntil("the end of the message box", [&] { return !IsWindowVisible(box); });
    m_expectedBox = nullptr;
    // The window behind it comes to the front a moment later, unless the answer closed it or led to the next box.
    PollUntil("the dialog in front again", [&] {
        const HWND next = OpenBox();
        return m_modalReturned || (next != nullptr && next != box) || GetForegroundWindow() == m_window ||
               !IsWindowVisible(m_window);
    });
    Settle();
    return text;
}

void Dialog::WaitFor(const std::string& what, const std::function<bool()>& condition) {
    m_steps.push_back("wait for " + what);
    PollUntil(what, [&] {
        const bool holds = condition();
        if (!holds) FailOnUnexpectedBox();
        return holds;
    });
}

void Dialog::WaitUntilOpen() {
    PollUntil("an open dialog", [this] {
        const std::vector<HWND> dialogs = OpenDialogs();
        if (!dialogs.empty()) m_window = dialogs.back();
        return m_window != nullptr && GetForegroundWindow() == m_window;
    });
    // Keys that come before the loop are lost; once it has taken this message, it runs.
    PostMessageW(m_window, WM_NULL, 0, 0);
    Settle();
}

void Dialog::ForceClose() {
    for (const WORD key : {WORD{VK_LBUTTON}, WORD{VK_SHIFT}, WORD{VK_CONTROL}, WORD{VK_MENU}}) {
        if ((GetAsyncKeyState(key) & 0x8000) == 0) continue;
        key == VK_LBUTTON ? SendMouse(MOUSEEVENTF_LEFTUP) : SendKey(key, KEYEVENTF_KEYUP);
    }
    const ULONGLONG start = GetTickCount64();
    for (; !m_modalReturned; Sleep(20)) {
        const HWND open = OpenBox() != nullptr ? OpenBox() : m_window;
        // Of a box, the answer that lets a dialog go on closing.
        for (const int button : {IDYES, IDCANCEL, IDOK}) {
            if (open == nullptr || GetDlgItem(open, button) == nullptr) continue;
            PostMessageW(open, WM_COMMAND, static_cast<WPARAM>(button), 0);
            break;
        }
        if (GetTickCount64() - start < kPatienceMs) continue;
        // Nothing else ends it: this ends every message loop of the thread.
        PostThreadMessageW(m_thread, WM_QUIT, 0, 0);
        return;
    }
}

void Dialog::Step(const std::string& what, const std::function<void()>& action) {
    m_steps.push_back(what);
    if (m_modalReturned) Fail("the dialog is closed");
    FailOnUnexpectedBox();
    PollUntil("the dialog in front",
              [this] { return GetWindowThreadProcessId(GetForegroundWindow(), nullptr) == m_thread; });
    action();
    Settle();
}

void Dialog::FailOnUnexpectedBox() {
    const HWND box = OpenBox();
    if (box == nullptr || box == m_expectedBox) return;
    m_boxTexts.push_back(BoxText(box));
    Fail("an unexpected message box: " + Narrow(m_boxTexts.back()));
}

void Dialog::OnGuiThread(const std::function<void()>& function) const {
    // Not taken back when the thread does not answer: it may do so later.
    auto* const task = new Task(function);
    std::future<void> done = task->get_future();
    DWORD_PTR result = 0;
    if (!SendMessageTimeoutW(m_helper, kRun, 0, reinterpret_cast<LPARAM>(task), SMTO_NORMAL, kPatienceMs, &result))
        Fail("the dialog's thread does not answer");
    delete task;
    // The system hides an access violation in a window procedure: the call comes back as if nothing had been, and the
    // promise is broken.
    done.get();
}

void Dialog::Settle() const {
    const ULONGLONG start = GetTickCount64();
    for (DWORD waiting = ~0u; (waiting & (QS_INPUT | QS_POSTMESSAGE | QS_PAINT)) != 0; Sleep(0)) {
        if (m_modalReturned) return;
        if (GetTickCount64() - start > kPatienceMs) Fail("the dialog's thread does not come to rest");
        OnGuiThread([&] { waiting = HIWORD(GetQueueStatus(QS_ALLINPUT)); });
    }
}

void Dialog::PollUntil(const std::string& what, const std::function<bool()>& condition) {
    const ULONGLONG start = GetTickCount64();
    for (;; Sleep(1)) {
        // Read first: what the end of the modal call made true must still be seen.
        const bool over = m_modalReturned;
        if (condition()) return;
        if (over) Fail("the dialog closed while waiting for " + what);
        if (GetTickCount64() - start > kPatienceMs) Fail("waited in vain for " + what);
    }
}

void Dialog::Fail(const std::string& why) const {
    constexpr std::size_t kLastSteps = 12;
    std::string message = why;
    for (std::size_t i = m_steps.size() - std::min(m_steps.size(), kLastSteps); i < m_steps.size(); ++i)
        message += "\n  step " + std::to_string(i + 1) + ": " + m_steps[i];
    throw StepFailed(message);
}

std::vector<HWND> Dialog::OpenDialogs() const {
    std::vector<HWND> dialogs;
    const auto add = [](HWND window, LPARAM found) -> BOOL {
        if (IsWindowVisible(window) && GetClassLongW(window, GCW_ATOM) == kDialogClass)
            reinterpret_cast<std::vector<HWND>*>(found)->push_back(window);
        return TRUE;
    };
    EnumThreadWindows(m_thread, add, reinterpret_cast<LPARAM>(&dialogs));
    return dialogs;
}

HWND Dialog::OpenBox() const {
    for (const HWND dialog : OpenDialogs()) {
        if (dialog != m_window && GetDlgItem(dialog, kBoxText) != nullptr) return dialog;
    }
    return nullptr;
}

ListSteps Dialog::List(int id) {
    return {*this, Control(id)};
}

std::wstring ListSteps::Text(int row, int column) const {
    std::wstring text(50000, L'\0');
    LVITEMW item{};
    item.iSubItem = column;
    item.pszText = text.data();
    item.cchTextMax = static_cast<int>(text.size());
    const LRESULT length =
        SendMessageW(m_list, LVM_GETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
    return text.substr(0, static_cast<std::size_t>(length));
}

std::vector<std::vector<std::wstring>> ListSteps::Rows() const {
    std::vector<std::vector<std::wstring>> rows(static_cast<std::size_t>(RowCount()));
    const int columns = Header_GetItemCount(ListView_GetHeader(m_list));
    for (auto& row : rows) {
        for (int column = 0; column < columns; ++column)
            row.push_back(Text(static_cast<int>(&row - rows.data()), column));
    }
    return rows;
}

int ListSteps::RowWithState(UINT state) const {
    int row = RowCount() - 1;
    while (row >= 0 && ListView_GetItemState(m_list, row, state) != state) --row;
    return row;
}

POINT ListSteps::Centre(int row, int column) const {
    ListView_EnsureVisible(m_list, row, FALSE);
    m_dialog.Settle();
    RECT area{LVIR_BOUNDS, column, 0, 0};
    if (row >= RowCount() ||
        !SendMessageW(m_list, LVM_GETSUBITEMRECT, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&area)))
        m_dialog.Fail("no cell " + std::to_string(row) + "," + std::to_string(column) + " of the list");
    // The system gives the whole row for the first column.
    if (column == 0) area.right = area.left + ListView_GetColumnWidth(m_list, 0);
    return Dialog::Centre(m_list, area);
}

POINT ListSteps::BehindRows() const {
    RECT area{};
    GetClientRect(m_list, &area);
    LVHITTESTINFO hit{};
    hit.pt = {area.right / 2, area.bottom - 2};
    if (SendMessageW(m_list, LVM_HITTEST, 0, reinterpret_cast<LPARAM>(&hit)) != -1)
        m_dialog.Fail("no room behind the rows of the list");
    ClientToScreen(m_list, &hit.pt);
    return hit.pt;
}

DialogDriver::DialogDriver()
    : m_helper(CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr)) {
    SetWindowLongPtrW(m_helper, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(HelperProcedure));
    SetDoubleClickTime(kNoDoubleClickMs);
}

DialogDriver::~DialogDriver() {
    DestroyWindow(m_helper);
    SetDoubleClickTime(m_doubleClickTime);
}

void DialogDriver::Run(const std::function<void()>& modal, const std::function<void(Dialog&)>& script) {
    // The cursor begins over no control of a dialog, so that no run depends on the one before.
    MoveTo({GetSystemMetrics(SM_CXSCREEN) - 1, GetSystemMetrics(SM_CYSCREEN) - 1});
    Dialog dialog(m_helper, m_boxTexts);
    std::string failure;
    std::atomic<bool> scriptDone = false;
    std::thread scriptThread([&] {
        try {
            dialog.WaitUntilOpen();
            script(dialog);
            if (!testing::Test::HasFatalFailure() && !dialog.m_modalReturned) dialog.WaitUntilClosed();
        } catch (const std::exception& problem) {
            failure = problem.what();
        } catch (...) {
            failure = "something was thrown";
        }
        dialog.ForceClose();
        scriptDone = true;
        PostMessageW(m_helper, WM_NULL, 0, 0);
    });
    std::exception_ptr thrown;
    try {
        modal();
    } catch (...) {
        thrown = std::current_exception();
    }
    dialog.m_modalReturned = true;
    // The script may still be asking this thread something. A forced end may leave a quit message behind, and the next
    // dialog would end at once.
    MSG message;
    while (!scriptDone) {
        GetMessageW(&message, nullptr, 0, 0);
        DispatchMessageW(&message);
    }
    scriptThread.join();
    while (PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE)) continue;
    if (!failure.empty()) ADD_FAILURE() << "the dialog's script: " << failure;
    if (thrown) std::rethrow_exception(thrown);
}
