#include "crypto/Sha256.h"

#include <windows.h>
#include <bcrypt.h>

#include <stdexcept>

#include "crypto/PatternBytes.h"

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
