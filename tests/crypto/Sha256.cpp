#include "crypto/Sha256.h"

#include <windows.h>
#include <bcrypt.h>

#include <stdexcept>

std::vector<uint8_t> PatternBuffer(size_t length, size_t capacity) {
    std::vector<uint8_t> buffer(capacity);
    for (size_t i = 0; i < length; ++i) buffer[i] = static_cast<uint8_t>(31 * i + i / 256);
    return buffer;
}

std::string Hex(std::span<const uint8_t> bytes) {
    std::string hex;
    for (const uint8_t byte : bytes) {
        hex += "0123456789abcdef"[byte >> 4];
        hex += "0123456789abcdef"[byte & 15];
    }
    return hex;
}

std::string Sha256(std::span<const uint8_t> bytes) {
    BCRYPT_ALG_HANDLE provider = nullptr;
    BCRYPT_HASH_HANDLE hash = nullptr;
    uint8_t digest[32];
    const bool done =
        BCryptOpenAlgorithmProvider(&provider, BCRYPT_SHA256_ALGORITHM, nullptr, 0) == 0 &&
        BCryptCreateHash(provider, &hash, nullptr, 0, nullptr, 0, 0) == 0 &&
        BCryptHashData(hash, const_cast<PUCHAR>(bytes.data()), static_cast<ULONG>(bytes.size()), 0) == 0 &&
        BCryptFinishHash(hash, digest, sizeof(digest), 0) == 0;
    if (hash != nullptr) BCryptDestroyHash(hash);
    if (provider != nullptr) BCryptCloseAlgorithmProvider(provider, 0);
    if (!done) throw std::runtime_error("no SHA-256");
    return Hex(digest);
}
