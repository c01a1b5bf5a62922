#include "Utf8.h"

#include <windows.h>

#include <stdexcept>

namespace {

std::string Convert(std::wstring_view text, DWORD flags) {
    if (text.empty()) return {};
    const int chars = static_cast<int>(text.size());
    const int bytes = WideCharToMultiByte(CP_UTF8, flags, text.data(), chars, nullptr, 0, nullptr, nullptr);
    if (bytes == 0) throw std::runtime_error("a text holds half a surrogate pair and cannot be written as UTF-8");
    std::string result(static_cast<std::size_t>(bytes), '\0');
    WideCharToMultiByte(CP_UTF8, flags, text.data(), chars, result.data(), bytes, nullptr, nullptr);
    return result;
}

}  // namespace

std::string ToUtf8(std::wstring_view text) {
    return Convert(text, WC_ERR_INVALID_CHARS);
}

std::string ToReadableUtf8(std::wstring_view text) {
    return Convert(text, 0);
}

std::wstring FromUtf8(std::string_view text) {
    if (text.empty()) return {};
    const int bytes = static_cast<int>(text.size());
    const int chars = MultiByteToWideChar(CP_UTF8, 0, text.data(), bytes, nullptr, 0);
    std::wstring result(static_cast<std::size_t>(chars), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.data(), bytes, result.data(), chars);
    return result;
}
