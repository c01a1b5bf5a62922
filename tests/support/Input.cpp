#include "support/Input.h"

#include <stdexcept>
#include <vector>

namespace input {
namespace {

void Send(std::vector<INPUT> inputs) {
    if (inputs.empty()) return;
    const UINT count = static_cast<UINT>(inputs.size());
    if (SendInput(count, inputs.data(), sizeof(INPUT)) != count) throw std::runtime_error("SendInput was refused");
    // Wine 8 remembers per thread for 50 ms that a key is up, also in the dialog's thread; asking here for each key
    // ends that (ComboListCtrlTest.ClickWithShiftOrCtrlNeitherEditsNorTells).
    for (int key = 1; key < 255; ++key) GetAsyncKeyState(key);
}

INPUT Mouse(DWORD flags) {
    INPUT event{};
    event.type = INPUT_MOUSE;
    event.mi.dwFlags = flags;
    return event;
}

INPUT Keyboard(WORD virtualKey, WORD scanCode, DWORD flags) {
    INPUT event{};
    event.type = INPUT_KEYBOARD;
    event.ki.wVk = virtualKey;
    event.ki.wScan = scanCode;
    event.ki.dwFlags = flags;
    return event;
}

// The keys of the block between letters and number pad; without the flag they would be those of the number pad.
DWORD ExtendedFlag(WORD virtualKey) {
    switch (virtualKey) {
        case VK_PRIOR:
        case VK_NEXT:
        case VK_END:
        case VK_HOME:
        case VK_LEFT:
        case VK_UP:
        case VK_RIGHT:
        case VK_DOWN:
        case VK_INSERT:
        case VK_DELETE:
        case VK_APPS:
            return KEYEVENTF_EXTENDEDKEY;
        default:
            return 0;
    }
}

INPUT Key(WORD virtualKey, DWORD flags) {
    return Keyboard(virtualKey, static_cast<WORD>(MapVirtualKeyW(virtualKey, MAPVK_VK_TO_VSC)),
                    flags | ExtendedFlag(virtualKey));
}

bool IsDown(int key) {
    return (GetAsyncKeyState(key) & 0x8000) != 0;
}

// Rounded up, so that the system's rounding down gives the same pixel again.
LONG Absolute(LONG pixel, int extent) {
    return static_cast<LONG>((pixel * 65536LL + extent - 1) / extent);
}

}  // namespace

void MoveTo(POINT screen) {
    INPUT event = Mouse(MOUSEEVENTF_ABSOLUTE | MOUSEEVENTF_MOVE);
    event.mi.dx = Absolute(screen.x, GetSystemMetrics(SM_CXSCREEN));
    event.mi.dy = Absolute(screen.y, GetSystemMetrics(SM_CYSCREEN));
    Send({event});
}

void LeftDown() {
    Send({Mouse(MOUSEEVENTF_LEFTDOWN)});
}

void LeftUp() {
    Send({Mouse(MOUSEEVENTF_LEFTUP)});
}

void KeyDown(WORD virtualKey) {
    Send({Key(virtualKey, 0)});
}

void KeyUp(WORD virtualKey) {
    Send({Key(virtualKey, KEYEVENTF_KEYUP)});
}

void Type(std::wstring_view text) {
    std::vector<INPUT> inputs;
    for (const wchar_t character : text) {
        inputs.push_back(Keyboard(0, static_cast<WORD>(character), KEYEVENTF_UNICODE));
        inputs.push_back(Keyboard(0, static_cast<WORD>(character), KEYEVENTF_UNICODE | KEYEVENTF_KEYUP));
    }
    Send(std::move(inputs));
}

void ReleaseAll() {
    for (const int key : {VK_SHIFT, VK_CONTROL, VK_MENU}) {
        if (IsDown(key)) KeyUp(static_cast<WORD>(key));
    }
    if (IsDown(VK_LBUTTON)) LeftUp();
}

}  // namespace input
