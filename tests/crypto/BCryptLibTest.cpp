#include "crypto/BCryptLib.h"

#include <gtest/gtest.h>
#include <string_view>

#include "crypto/EncryptorAes256.h"
#include "crypto/EntryPointPatch.h"

namespace {

struct Steps {
    bool hasHash;
    bool canEncrypt;
    bool canDecrypt;
};

// What an encryptor can still do.
Steps Try() {
    EncryptorAes256 encryptor;
    std::unique_ptr<BYTE[]> hash;
    DWORD bytes = 0;
    encryptor.ComputeHash(L"secret", hash, bytes);
    BYTE block[32] = {};
    DWORD length = 16;
    BYTE chunk[kCipherChunkBytes] = {};
    DWORD chunkLength = kCipherChunkBytes;
    return {hash != nullptr && bytes == 64, encryptor.Encrypt(block, length) == 0,
            encryptor.Decrypt(chunk, chunkLength) == 0};
}

NTSTATUS WINAPI RefuseSha256(BCRYPT_ALG_HANDLE* provider, LPCWSTR algorithm, LPCWSTR implementation, ULONG flags) {
    if (std::wstring_view(algorithm) == BCRYPT_SHA256_ALGORITHM) return static_cast<NTSTATUS>(0xC0000017);
    return BCryptOpenAlgorithmProvider(provider, algorithm, implementation, flags);
}

}  // namespace

TEST(BCryptLib, WithoutTheLibraryNothingIsSupported) {
    const ImportPatch<decltype(&LoadLibraryW)> patch(GetModuleHandleW(nullptr), "LoadLibraryW",
                                                     [](LPCWSTR) -> HMODULE { return nullptr; });
    BCryptLib library;
    EXPECT_EQ(library.Load(), kNotSupportedStatus);
    EXPECT_EQ(library.Load(), 0) << "a failed load is not tried again";
    EXPECT_EQ(library.BCryptDestroyKey(nullptr), kNotSupportedStatus);
    const Steps steps = Try();
    EXPECT_FALSE(steps.hasHash || steps.canEncrypt || steps.canDecrypt);
}

TEST(BCryptLib, AMissingEntryPointEndsOnlyWhatNeedsIt) {
    const struct {
        const char* name;
        Steps steps;
    } rows[] = {
        {"", {true, true, true}},
        {"BCryptCloseAlgorithmProvider", {true, true, true}},
        {"BCryptCreateHash", {false, false, false}},
        {"BCryptDecrypt", {true, true, false}},
        {"BCryptDestroyHash", {true, true, true}},
        {"BCryptDestroyKey", {true, true, true}},
        {"BCryptEncrypt", {true, false, true}},
        {"BCryptFinishHash", {false, false, false}},
        {"BCryptGenerateSymmetricKey", {true, false, false}},
        {"BCryptGetProperty", {false, false, false}},
        {"BCryptHashData", {false, false, false}},
        {"BCryptOpenAlgorithmProvider", {false, false, false}},
        {"BCryptSetProperty", {true, true, true}},
    };
    for (const auto& row : rows) {
        const EntryPointPatch patch(row.name, nullptr);
        const Steps steps = Try();
        EXPECT_EQ(steps.hasHash, row.steps.hasHash) << row.name;
        EXPECT_EQ(steps.canEncrypt, row.steps.canEncrypt) << row.name;
        EXPECT_EQ(steps.canDecrypt, row.steps.canDecrypt) << row.name;
    }
}

TEST(BCryptLib, AFailedKeyDoesNotLeaveTheEarlierOne) {
    EncryptorAes256 encryptor;
    std::unique_ptr<BYTE[]> hash;
    DWORD bytes = 0;
    const EntryPointPatch patch("BCryptOpenAlgorithmProvider", reinterpret_cast<void*>(&RefuseSha256));
    encryptor.ComputeHash(L"secret", hash, bytes);
    EXPECT_EQ(bytes, 64U);
    BYTE buffer[32] = {};
    DWORD length = 16;
    EXPECT_NE(encryptor.Encrypt(buffer, length), 0);
}
