#include "support/WindowText.h"

std::wstring WindowText(HWND window) {
    std::wstring text(static_cast<size_t>(SendMessageW(window, WM_GETTEXTLENGTH, 0, 0)) + 1, L'\0');
    const LRESULT length = SendMessageW(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()));
    text.resize(static_cast<size_t>(length));
    return text;
}

std::wstring ClassName(HWND window) {
    wchar_t name[257];  // the longest name that a class can have, and its end
    return {name, static_cast<size_t>(GetClassNameW(window, name, static_cast<int>(std::size(name))))};
}
