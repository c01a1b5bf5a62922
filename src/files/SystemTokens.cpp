#include "files/SystemTokens.h"

std::wstring ReplaceSystemTokens(std::wstring_view path, std::wstring_view systemRoot) {
    std::wstring result(path);
    if (systemRoot.empty()) return result;
    for (const std::wstring_view token : {L"%systemroot%", L"%SYSTEMROOT%", L"%SystemRoot%"}) {
        result = ReplaceEvery(result, token, systemRoot);
    }
    for (const std::wstring_view token : {L"%systemdrive%", L"%SYSTEMDRIVE%", L"%SystemDrive%"}) {
        result = ReplaceEvery(result, token, systemRoot.substr(0, 2));
    }
    return result;
}

std::wstring ReplaceEvery(std::wstring_view text, std::wstring_view from, std::wstring_view to) {
    std::wstring result;
    if (from.empty()) return std::wstring(text);
    size_t start = 0;
    for (size_t found; (found = text.find(from, start)) != text.npos; start = found + from.size()) {
        result.append(text, start, found - start).append(to);
    }
    return result.append(text, start);
}
