#include "files/PathVariables.h"

#include <memory>
#include <new>

#include "files/SystemTokens.h"
#include "helpers/TextView.h"
#include "registry/OfflineEnvironment.h"
#include "registry/SystemRoot.h"

CString ExpandPath(const CString& path) {
    CString text = path;
    if (IsWinPE()) {
        text = ExpandSystemTokens(path);
        if (text.Find(L'%') < 0) return text;
    }
    // The system cuts, without a word, both a text and an expansion that are longer.
    constexpr DWORD kMostChars = 32767;
    if (text.GetLength() >= int{kMostChars}) return text;
    const DWORD chars = ExpandEnvironmentStringsW(text, nullptr, 0);
    if (chars == 0 || chars > kMostChars) return text;
    const std::unique_ptr<wchar_t[]> expanded(new (std::nothrow) wchar_t[size_t{chars} + 1]{});
    if (!expanded) return text;
    const DWORD written = ExpandEnvironmentStringsW(text, expanded.get(), chars + 1);
    // More than there is room for: another thread has made a variable longer since the size was asked.
    if (written == 0 || written > chars + 1) return text;
    return CString(expanded.get());
}

CString ExpandSystemTokens(const CString& path) {
    if (path.Find(L'%') < 0) return path;
    return TextOf(ReplaceSystemTokens(ViewOf(path), ViewOf(GetSystemRootPath())));
}
