// WorkDialog PROGRAM [names]: starts the program, types a key into the strip of its rules dialog, presses OK, and ends
// with the program's exit code; 2 when no dialog appears or the program does not end. With "names" it first prints the
// id and the name of each control of the dialog, as a screen reader gets them.
#include <windows.h>

#include <cstdio>
#include <oleacc.h>

namespace {

constexpr int NewKeyEdit = 226;
constexpr DWORD TimeoutMs = 60000;

void ReadOut(HWND control) {
    IAccessible* object = nullptr;
    BSTR name = nullptr;
    VARIANT self{};
    self.vt = VT_I4;
    if (SUCCEEDED(AccessibleObjectFromWindow(control, OBJID_CLIENT, __uuidof(IAccessible),
                                             reinterpret_cast<void**>(&object)))) {
        object->get_accName(self, &name);
        object->Release();
    }
    std::printf("%d %ls\n", GetDlgCtrlID(control), name != nullptr ? name : L"has no name");
    SysFreeString(name);
}

void ReadOutControls(HWND dialog) {
    for (HWND control = GetWindow(dialog, GW_CHILD); control; control = GetWindow(control, GW_HWNDNEXT)) {
        if (IsWindowVisible(control)) ReadOut(control);
    }
    std::fflush(stdout);
}

bool WorkDialog(HANDLE process, bool isToReadOut) {
    const ULONGLONG end = GetTickCount64() + TimeoutMs;
    while (GetTickCount64() < end && WaitForSingleObject(process, 20) == WAIT_TIMEOUT) {
        const HWND dialog = FindWindowW(L"#32770", L"Registry Rules");
        if (dialog == nullptr || !IsWindowVisible(dialog)) continue;
        if (isToReadOut) ReadOutControls(dialog);
        SetDlgItemTextW(dialog, NewKeyEdit, L"HKLM\\Software\\Fernhollow");
        PostMessageW(dialog, WM_COMMAND, IDOK, 0);
        return true;
    }
    std::puts("WorkDialog: no dialog appeared");
    return false;
}

}  // namespace

extern "C" int wmain(int count, wchar_t** arguments) {
    CoInitialize(nullptr);
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    DWORD exitCode = 2;
    if (!CreateProcessW(nullptr, arguments[1], nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &process)) {
        std::printf("WorkDialog: the program does not start: %lu\n", GetLastError());
    } else if (WaitForSingleObject(process.hProcess, WorkDialog(process.hProcess, count > 2) ? TimeoutMs : 0) ==
               WAIT_OBJECT_0) {
        GetExitCodeProcess(process.hProcess, &exitCode);
    } else {
        std::puts("WorkDialog: the program did not end");
        TerminateProcess(process.hProcess, exitCode);
    }
    return static_cast<int>(exitCode);
}
