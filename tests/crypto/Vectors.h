// Passwords, buffers, and what other implementations made of them: the files in tests/crypto/vectors, which
// make-vectors wrote and explains.
#pragma once

#include <fstream>
#include <iterator>
#include <string>

inline constexpr const wchar_t* kPasswords[] = {
    L"abc", L"Gr\u00fc\u00dfe, \u4e16\u754c",
    L"012345678901234567890123456789012345678901234567890123456789abc\u20acbeyond the cut"};

// The whole file, which must be there.
inline std::string Vector(const std::string& name) {
    std::ifstream file(VECTORS "/" + name, std::ios::binary);
    file.exceptions(std::ios::badbit | std::ios::failbit);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline std::string Plain(int length) {
    return Vector("plain").substr(0, static_cast<size_t>(length));
}
