#include "support/DialogDriver.h"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>
#include <stdexcept>

// Whatever a script does wrong fails the test and leaves no dialog behind. A message box stands for the dialog.
TEST(DialogDriver, ClosesTheDialogAfterAFailedStep) {
    const struct {
        std::function<void(Dialog&)> script;
        const char* failure;
        int result;
    } cases[] = {
        {[](Dialog& d) { d.Click(999); }, "no control 999", IDCANCEL},
        {[](Dialog& d) {
             d.OnGuiThread([] {
                 SetTimer(nullptr, 0, 1, [](HWND, UINT, UINT_PTR timer, DWORD) {
                     KillTimer(nullptr, timer);
                     MessageBoxW(nullptr, L"Another", L"", MB_YESNO);
                 });
             });
             d.WaitFor("what never comes", [] { return false; });
         },
         "an unexpected message box: Another", IDCANCEL},
        {[](Dialog&) { throw std::runtime_error("thrown by a script"); }, "thrown by a script", IDCANCEL},
        {[](Dialog& d) {
             d.Click(IDOK);
             d.WaitUntilClosed();
             d.Click(IDOK);
         },
         "the dialog is closed", IDOK},
    };
    DialogDriver driver;
    for (const auto& c : cases) {
        int result = 0;
        const auto modal = [&] { result = MessageBoxW(nullptr, L"The dialog", L"", MB_OKCANCEL); };
        EXPECT_NONFATAL_FAILURE(driver.Run(modal, c.script), c.failure);
        EXPECT_EQ(result, c.result) << c.failure;
    }
    EXPECT_NONFATAL_FAILURE(driver.Run([] {}, [](Dialog& d) { d.Click(IDOK); }), "closed while waiting");
}
