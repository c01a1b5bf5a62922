#include "crypto/BCryptLib.h"

#include <gtest/gtest.h>
#include <new>

#include "crypto/EncryptorAes256.h"
#include "crypto/EncryptorStandard.h"
#include "crypto/EntryPoints.h"

namespace {

// What an encryptor can still do: h has a hash, e encrypt, d decrypt.
std::string Abilities() {
    EncryptorAes256 encryptor;
    std::unique_ptr<BYTE[]> hash;
    DWORD bytes = 0;
    encryptor.ComputeHash(L"secret", hash, bytes);
    BYTE chunk[kCipherChunkBytes] = {};
    DWORD length = 16;
    std::string abilities = hash != nullptr && bytes == 64 ? "h" : "";
    if (encryptor.Encrypt(chunk, length) == 0) abilities += 'e';
    length = kCipherChunkBytes;
    if (encryptor.Decrypt(chunk, length) == 0) abilities += 'd';
    return abilities;
}

int s_refused = -1;   // the allocation that gets no memory, counted from 0
int s_givenBack = 0;  // the module, blocks, providers, hashes and keys

template <class Result, class... Arguments>
Result WINAPI GiveBack(Arguments...) {
    ++s_givenBack;
    return Result{};
}

void* NewUnlessRefused(size_t bytes, const std::nothrow_t&) {
    return s_refused-- == 0 ? nullptr : ::operator new(bytes);
}

LPVOID WINAPI AllocateUnlessRefused(HANDLE, DWORD, SIZE_T bytes) {
    return s_refused-- == 0 ? nullptr : std::malloc(bytes);
}

BOOL WINAPI Free(HANDLE, DWORD, LPVOID block) {
    if (block != nullptr) ++s_givenBack;
    std::free(block);
    return TRUE;
}

}  // namespace

TEST(BCryptLib, WithoutTheLibraryNothingIsSupported) {
    const ImportPatch<decltype(&LoadLibraryW)> patch(GetModuleHandleW(nullptr), "LoadLibraryW",
                                                     [](LPCWSTR) -> HMODULE { return nullptr; });
    BCryptLib library;
    EXPECT_EQ(library.Load(), kNotSupportedStatus);
    EXPECT_EQ(library.Load(), 0) << "a failed load is not tried again";
    EXPECT_EQ(library.BCryptDestroyKey(nullptr), kNotSupportedStatus);
    EXPECT_EQ(Abilities(), "");
}

TEST(BCryptLib, AMissingEntryPointEndsOnlyWhatNeedsIt) {
    const std::pair<const char*, const char*> rows[] = {
        {"BCryptCloseAlgorithmProvider", "hed"},
        {"BCryptCreateHash", ""},
        {"BCryptDecrypt", "he"},
        {"BCryptDestroyHash", "hed"},
        {"BCryptDestroyKey", "hed"},
        {"BCryptEncrypt", "hd"},
        {"BCryptFinishHash", ""},
        {"BCryptGenerateSymmetricKey", "h"},
        {"BCryptGetProperty", ""},
        {"BCryptHashData", ""},
        {"BCryptOpenAlgorithmProvider", ""},
        {"BCryptSetProperty", "hed"},
    };
    for (const auto& [name, abilities] : rows) {
        const EntryPoints patch({{name, nullptr}});
        EXPECT_EQ(Abilities(), abilities) << name;
    }
}

TEST(BCryptLib, WithoutMemoryTheStatusSaysSoAndAllIsGivenBack) {
    const HMODULE program = GetModuleHandleW(nullptr);
    const ImportPatch<decltype(&NewUnlessRefused)> news(program, "_ZnayRKSt9nothrow_t", NewUnlessRefused);
    const ImportPatch<decltype(&HeapAlloc)> heap(program, "HeapAlloc", AllocateUnlessRefused);
    const ImportPatch<decltype(&HeapFree)> free(program, "HeapFree", Free);
    const ImportPatch<decltype(&FreeLibrary)> unload(program, "FreeLibrary", GiveBack<BOOL, HMODULE>);
    const EntryPoints counted(
        {{"BCryptCloseAlgorithmProvider", reinterpret_cast<void*>(&GiveBack<NTSTATUS, BCRYPT_HANDLE, ULONG>)},
         {"BCryptDestroyHash", reinterpret_cast<void*>(&GiveBack<NTSTATUS, BCRYPT_HANDLE>)},
         {"BCryptDestroyKey", reinterpret_cast<void*>(&GiveBack<NTSTATUS, BCRYPT_HANDLE>)}});
    std::unique_ptr<BYTE[]> hash;
    DWORD bytes = 0;
    BYTE buffer[32] = {};
    int refused = 0;
    // Each of the two digests takes a key object, itself, a hash object and the password in UTF-8; then there is
    // enough, also for the keys of two ciphers. The last to go are the second key object and the module.
    for (const int givenBack : {2, 3, 3, 4, 6, 7, 7, 8, 11}) {
        SCOPED_TRACE(refused);
        s_givenBack = 0;
        {
            EncryptorAes256 encryptor;
            s_refused = refused;
            encryptor.ComputeHash(L"secret", hash, bytes);
            s_refused = -1;
            EXPECT_EQ(bytes, refused < 4 ? 0U : 64U);
            EXPECT_EQ(hash == nullptr, refused < 4);
            const auto status = static_cast<NTSTATUS>(refused < 8 ? 0xC0000017 : 0);
            DWORD length = 16;
            EXPECT_EQ(encryptor.Encrypt(buffer, length), status);
            EXPECT_EQ(encryptor.Decrypt(buffer, length), status);
        }
        EXPECT_EQ(s_givenBack, givenBack);
        ++refused;
    }
    s_refused = 0;
    EncryptorStandard().ComputeHash(L"secret", hash, bytes);
    EXPECT_TRUE(hash == nullptr && bytes == 0);
}
