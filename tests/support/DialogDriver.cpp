#include "support/DialogDriver.h"

#include <gtest/gtest.h>
#include <thread>
#include <utility>

#include "support/Input.h"

namespace {

// Two clicks of a script on one spot are two clicks, however fast it is; Dialog::DoubleClick makes the exception.
constexpr UINT kNoDoubleClickMs = 1;

// Where the cursor is over no control of a dialog, so that no run depends on the one before.
POINT ParkingPlace() {
    return {GetSystemMetrics(SM_CXSCREEN) - 1, GetSystemMetrics(SM_CYSCREEN) - 1};
}

// Waits for the event and looks after the thread's messages meanwhile: the script may be asking this thread something.
void WaitPumping(HANDLE event) {
    while (MsgWaitForMultipleObjects(1, &event, FALSE, INFINITE, QS_ALLINPUT) != WAIT_OBJECT_0) {
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
    }
}

// A forced end may leave one behind, and the next dialog would end at once.
void DropQuitMessage() {
    MSG message;
    while (PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE)) {
    }
}

}  // namespace

DialogDriver::DialogDriver() : m_doubleClickTime(GetDoubleClickTime()) {
    SetDoubleClickTime(kNoDoubleClickMs);
}

DialogDriver::~DialogDriver() {
    SetDoubleClickTime(m_doubleClickTime);
}

void DialogDriver::Run(const std::function<void()>& modal, const std::function<void(Dialog&)>& script) {
    input::MoveTo(ParkingPlace());
    std::atomic<bool> modalReturned{false};
    std::exception_ptr thrown;
    const HANDLE scriptDone = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    std::thread scriptThread([&] {
        RunScript(script, modalReturned);
        SetEvent(scriptDone);
    });
    try {
        modal();
    } catch (...) {
        thrown = std::current_exception();
    }
    modalReturned = true;
    WaitPumping(scriptDone);
    scriptThread.join();
    CloseHandle(scriptDone);
    DropQuitMessage();
    if (!m_failure.empty()) ADD_FAILURE() << "the dialog's script: " << std::exchange(m_failure, {});
    if (thrown) std::rethrow_exception(thrown);
}

void DialogDriver::RunScript(const std::function<void(Dialog&)>& script, const std::atomic<bool>& modalReturned) {
    Dialog dialog(m_gui, modalReturned, m_boxTexts);
    try {
        dialog.WaitUntilOpen();
        script(dialog);
        if (!testing::Test::HasFatalFailure()) dialog.Finish();
    } catch (const std::exception& failure) {
        m_failure = failure.what();
    } catch (...) {
        m_failure = "something was thrown";
    }
    dialog.ForceClose();
}
