// Drives a modal dialog of this process as a person would: the modal call runs on the calling thread, the script of
// steps beside it. Whatever goes wrong, the modal call is brought to its end.
//
//     DialogDriver driver;
//     driver.Run([&] { result = control.Show(); },
//                [&](Dialog& d) {
//                    d.Click(IDC_NEW_KEY);
//                    d.Type(L"HKCU\\Software\\Example");
//                    d.Key(VK_RETURN);
//                    d.Click(IDCANCEL);
//                    EXPECT_NE(d.AnswerBox(IDYES).find(L"Are you sure"), std::wstring::npos);
//                });
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <vector>

#include "support/Dialog.h"
#include "support/GuiThread.h"

class DialogDriver {
public:
    DialogDriver();
    ~DialogDriver();
    DialogDriver(const DialogDriver&) = delete;
    DialogDriver& operator=(const DialogDriver&) = delete;

    // Calls modal here and script on a thread of its own, once the dialog is in front and in its loop; returns when
    // both are done. The script is done when the dialog is closed: one that leaves it open, fails a step, throws, or
    // has a fatal failure of the test framework fails the test, and the dialog is cancelled for it. What modal throws
    // is thrown here.
    void Run(const std::function<void()>& modal, const std::function<void(Dialog&)>& script);

    // The texts of the message boxes of all runs so far.
    const std::vector<std::wstring>& BoxTexts() const { return m_boxTexts; }

private:
    void RunScript(const std::function<void(Dialog&)>& script, const std::atomic<bool>& modalReturned);

    GuiThread m_gui;
    UINT m_doubleClickTime;
    std::vector<std::wstring> m_boxTexts;
    std::string m_failure;
};
