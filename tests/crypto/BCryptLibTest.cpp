#include "crypto/BCryptLib.h"

#include <gtest/gtest.h>
#include <new>
#include <string_view>

#include "crypto/EncryptorAes256.h"
#include "crypto/EncryptorStandard.h"
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

namespace {

// The allocation that gets no memory, counted from 0; the others do.
int s_refused = 0;

bool IsRefused() {
    return s_refused-- == 0;
}

LPVOID WINAPI AllocateUnlessRefused(HANDLE heap, DWORD flags, SIZE_T bytes) {
    return IsRefused() ? nullptr : SystemFunction(&HeapAlloc, L"kernel32.dll", "HeapAlloc")(heap, flags, bytes);
}

void* NewUnlessRefused(size_t bytes, const std::nothrow_t&) noexcept {
    return IsRefused() ? nullptr : ::operator new(bytes);
}

}  // namespace

TEST(Encryptors, WithoutMemoryThereIsNoHashAndTheStatusSaysSo) {
    constexpr auto kNoMemory = static_cast<NTSTATUS>(0xC0000017);
    const ImportPatch<decltype(&HeapAlloc)> heap(GetModuleHandleW(nullptr), "HeapAlloc", AllocateUnlessRefused);
    const ImportPatch<decltype(&NewUnlessRefused)> news(GetModuleHandleW(nullptr), "_ZnayRKSt9nothrow_t",
                                                        NewUnlessRefused);
    std::unique_ptr<BYTE[]> hash;
    DWORD bytes = 0;
    BYTE buffer[32] = {};
    // Each digest takes a key object, the digest, a hash object and the password in UTF-8.
    for (int refused = 0; refused < 8; ++refused) {
        SCOPED_TRACE(refused);
        EncryptorAes256 encryptor;
        s_refused = -1;
        encryptor.ComputeHash(L"an earlier one", hash, bytes);
        s_refused = refused;
        encryptor.ComputeHash(L"secret", hash, bytes);
        EXPECT_LT(s_refused, 0);
        EXPECT_EQ(bytes, refused < 4 ? 0u : 64u);
        EXPECT_EQ(hash == nullptr, refused < 4);
        DWORD length = 16;
        EXPECT_EQ(encryptor.Encrypt(buffer, length), kNoMemory);
        EXPECT_EQ(encryptor.Decrypt(buffer, length), kNoMemory);
        EXPECT_EQ(length, 16u);
        encryptor.ComputeHash(L"secret", hash, bytes);
        EXPECT_EQ(encryptor.Encrypt(buffer, length), 0);
    }
    s_refused = 0;
    EncryptorStandard().ComputeHash(L"secret", hash, bytes);
    EXPECT_EQ(hash, nullptr);
    EXPECT_EQ(bytes, 0u);
}
