#include "helpers/ResourceString.h"

CString LoadResourceString(UINT id) {
    CString text;
    if (text.LoadString(id)) return text;
    wchar_t buffer[1000];
    if (LoadStringW(GetModuleHandleW(nullptr), id, buffer, static_cast<int>(std::size(buffer))) > 0) return buffer;
    text.Format(L"Undefined string resource requested: %u", id);
    return text;
}
