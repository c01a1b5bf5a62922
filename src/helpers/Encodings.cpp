#include "helpers/Encodings.h"

#include <cstring>
#include <cwchar>
#include <new>

#include "helpers/HexText.h"

namespace {

// Null when there is no memory, which is reported like any other failure.
template <class T>
std::unique_ptr<T[]> AllocateZeroed(size_t count) {
    return std::unique_ptr<T[]>(new (std::nothrow) T[count]{});
}

}  // namespace

std::unique_ptr<BYTE[]> HexToBytes(const CString& text) {
    const auto length = static_cast<size_t>(text.GetLength());
    if (length % 2 != 0) return nullptr;
    auto bytes = AllocateZeroed<BYTE>(length / 2 + 1);
    if (bytes) ReadHexPairs({text.GetString(), length}, {bytes.get(), length / 2});
    return bytes;
}

void BytesToHex(std::span<const BYTE> bytes, CString& text) {
    constexpr size_t kMaxLength = MAXINT;
    const int oldLength = text.GetLength();
    if (bytes.size() > (kMaxLength - static_cast<size_t>(oldLength)) / 2) AfxThrowInvalidArgException();
    const int length = oldLength + static_cast<int>(bytes.size()) * 2;
    LPWSTR buffer = text.GetBuffer(length);
    WriteHexDigits(bytes, {buffer + oldLength, bytes.size() * 2});
    text.ReleaseBuffer(length);
}

std::unique_ptr<BYTE[]> WideToUtf8(const CString& text, bool padded, int& bytes) {
    constexpr int kPadding = sizeof(WCHAR);
    bytes = 0;
    const int length = text.GetLength();
    const int needed = WideCharToMultiByte(CP_UTF8, 0, text, length, nullptr, 0, nullptr, nullptr);
    if (needed <= 0) return nullptr;
    const int size = needed + (padded ? kPadding : 0);
    auto buffer = AllocateZeroed<BYTE>(static_cast<size_t>(size));
    if (!buffer || WideCharToMultiByte(CP_UTF8, 0, text, length, reinterpret_cast<LPSTR>(buffer.get()), needed, nullptr,
                                       nullptr) == 0) {
        return nullptr;
    }
    bytes = size;
    return buffer;
}

std::unique_ptr<WCHAR[]> Utf8ToWide(LPCSTR text) {
    constexpr size_t kSpare = 2;
    if (!text) return nullptr;
    const int needed = MultiByteToWideChar(CP_UTF8, 0, text, -1, nullptr, 0);
    if (needed <= 0) return nullptr;
    auto buffer = AllocateZeroed<WCHAR>(static_cast<size_t>(needed) + kSpare);
    if (!buffer || MultiByteToWideChar(CP_UTF8, 0, text, -1, buffer.get(), needed) == 0) return nullptr;
    return buffer;
}

CStringA WideToAnsi(LPCWSTR text) {
    CStringA result;
    if (!text || !*text) return result;
    const int length = static_cast<int>(std::wcslen(text));
    const int needed =
        WideCharToMultiByte(CP_THREAD_ACP, WC_NO_BEST_FIT_CHARS, text, length, nullptr, 0, nullptr, nullptr);
    if (needed <= 0) return result;
    const int written = WideCharToMultiByte(CP_THREAD_ACP, WC_NO_BEST_FIT_CHARS, text, length,
                                            result.GetBufferSetLength(needed), needed, nullptr, nullptr);
    result.ReleaseBuffer(written);
    return result;
}

CString Utf8PackedInWide(const CString& text) {
    CString result;
    int bytes = 0;
    const auto utf8 = WideToUtf8(text, true, bytes);
    if (!utf8) return result;
    const int length = bytes / static_cast<int>(sizeof(WCHAR));
    std::memcpy(result.GetBufferSetLength(length), utf8.get(), static_cast<size_t>(length) * sizeof(WCHAR));
    return result;
}
