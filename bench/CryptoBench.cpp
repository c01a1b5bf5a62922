// 64 MB through AES against the system's function called chunk by chunk, and through the scrambler against three
// copies.
#include <windows.h>
#include <bcrypt.h>

#include <cstring>
#include <vector>

#include "crypto/EncryptorAes256.h"
#include "crypto/EncryptorStandard.h"
#include "support/Ratios.h"

namespace {

constexpr DWORD kBytes = 64 << 20;
constexpr ULONG kChunkBytes = 0x800;

// A key of the system without the class under test.
BCRYPT_KEY_HANDLE BareKey() {
    BCRYPT_ALG_HANDLE provider = nullptr;
    BCRYPT_KEY_HANDLE key = nullptr;
    UCHAR secret[32] = {1, 2, 3};
    Require(BCryptOpenAlgorithmProvider(&provider, BCRYPT_AES_ALGORITHM, nullptr, 0) == 0);
    Require(BCryptGenerateSymmetricKey(provider, &key, nullptr, 0, secret, sizeof(secret), 0) == 0);
    return key;
}

template <class Function>
void ForEachChunk(std::vector<BYTE>& buffer, Function function) {
    for (DWORD position = 0; position < kBytes; position += kChunkBytes) function(&buffer[position]);
}

}  // namespace

int wmain() {
    std::vector<BYTE> buffer(kBytes, 7);
    std::vector<BYTE> other(kBytes, 8);
    EncryptorAes256 aes;
    std::unique_ptr<BYTE[]> hash;
    DWORD hashBytes = 0;
    aes.ComputeHash(L"secret", hash, hashBytes);
    Require(hashBytes != 0);
    BCRYPT_KEY_HANDLE key = BareKey();
    UCHAR work[kChunkBytes];
    ULONG written = 0;

    Ratios ratios;
    ratios.Compare("AES, encrypting 64 MB", 1.1, Timed([&] {
                       DWORD bytes = kBytes;
                       Require(aes.Encrypt(buffer.data(), bytes) == 0 && bytes == kBytes);
                   }),
                   Timed([&] {
                       ForEachChunk(buffer, [&](BYTE* chunk) {
                           Require(BCryptEncrypt(key, chunk, kChunkBytes, nullptr, nullptr, 0, work, kChunkBytes,
                                                 &written, 0) == 0);
                       });
                   }));
    ratios.Compare("AES, decrypting 64 MB", 1.1, Timed([&] {
                       DWORD bytes = kBytes;
                       Require(aes.Decrypt(buffer.data(), bytes) == 0 && bytes == kBytes);
                   }),
                   Timed([&] {
                       ForEachChunk(buffer, [&](BYTE* chunk) {
                           Require(BCryptDecrypt(key, chunk, kChunkBytes, nullptr, nullptr, 0, work, kChunkBytes,
                                                 &written, 0) == 0);
                       });
                   }));
    EncryptorStandard standard;
    const auto copyThrice = Timed([&] {
        std::memcpy(other.data(), buffer.data(), kBytes);
        std::memcpy(buffer.data(), other.data(), kBytes);
        std::memcpy(other.data(), buffer.data(), kBytes);
    });
    DWORD bytes = kBytes;
    ratios.Compare("scrambling 64 MB", 3, Timed([&] { standard.Encrypt(buffer.data(), bytes); }), copyThrice);
    ratios.Compare("unscrambling 64 MB", 3, Timed([&] { standard.Decrypt(buffer.data(), bytes); }), copyThrice);
    ratios.Print();
    return 0;
}
