#include "helpers/SystemText.h"

#include <iterator>
#include <objbase.h>

#include "helpers/LocalMemory.h"

CString NewGuidText() {
    GUID guid{};
    WCHAR buffer[80];
    if (FAILED(CoCreateGuid(&guid)) || StringFromGUID2(guid, buffer, static_cast<int>(std::size(buffer))) == 0) {
        return {};
    }
    CString text(buffer);
    for (const WCHAR mark : {L'{', L'}', L'-'}) text.Remove(mark);
    return text;
}

CString SystemErrorText(DWORD status) {
    constexpr DWORD kFlags =
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_FROM_SYSTEM;
    constexpr DWORD kMinimumChars = 0x8000;  // the least that the system is to allocate, so that no text is too long
    LPWSTR buffer = nullptr;
    const DWORD length =
        FormatMessageW(kFlags, nullptr, status, 0, reinterpret_cast<LPWSTR>(&buffer), kMinimumChars, nullptr);
    const LocalMemory<WCHAR> owner(buffer);
    return length == 0 ? CString() : CString(buffer, static_cast<int>(length));
}
