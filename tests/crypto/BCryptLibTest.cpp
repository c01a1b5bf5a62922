#include "crypto/BCryptLib.h"

#include <gtest/gtest.h>
#include <new>

#include "crypto/EncryptorAes256.h"
#include "crypto/EncryptorStandard.h"
#include "crypto/EntryPoints.h"
#include "support/ImportPatch.h"

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
int s_alive = 0;      // blocks and modules
int s_givenBack = 0;  // providers, hashes and keys

NTSTATUS WINAPI GiveBack(BCRYPT_HANDLE) {
    ++s_givenBack;
    return 0;
}

NTSTATUS WINAPI Close(BCRYPT_ALG_HANDLE provider, ULONG) {
    return GiveBack(provider);
}

template <class Function>
Function* System(Function* function, const char* name) {
    return SystemFunction(function, L"kernel32.dll", name);
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
        {"", "hed"},
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
    using NewFunction = void* (*)(size_t, const std::nothrow_t&);
    const ImportPatch<NewFunction> news(program, "_ZnayRKSt9nothrow_t", [](size_t bytes, const std::nothrow_t&) {
        return s_refused-- == 0 ? nullptr : ::operator new(bytes);
    });
    const ImportPatch<decltype(&HeapAlloc)> heap(program, "HeapAlloc", [](HANDLE owner, DWORD flags, SIZE_T bytes) {
        if (s_refused-- == 0) return LPVOID{};
        ++s_alive;
        return System(&HeapAlloc, "HeapAlloc")(owner, flags, bytes);
    });
    const ImportPatch<decltype(&HeapFree)> free(program, "HeapFree", [](HANDLE owner, DWORD flags, LPVOID block) {
        if (block != nullptr) --s_alive;
        return System(&HeapFree, "HeapFree")(owner, flags, block);
    });
    const ImportPatch<decltype(&LoadLibraryW)> load(program, "LoadLibraryW", [](LPCWSTR name) {
        ++s_alive;
        return System(&LoadLibraryW, "LoadLibraryW")(name);
    });
    const ImportPatch<decltype(&FreeLibrary)> unload(program, "FreeLibrary", [](HMODULE module) {
        --s_alive;
        return System(&FreeLibrary, "FreeLibrary")(module);
    });
    const EntryPoints counted({{"BCryptCloseAlgorithmProvider", reinterpret_cast<void*>(&Close)},
                               {"BCryptDestroyHash", reinterpret_cast<void*>(&GiveBack)},
                               {"BCryptDestroyKey", reinterpret_cast<void*>(&GiveBack)}});
    std::unique_ptr<BYTE[]> hash;
    DWORD bytes = 0;
    BYTE buffer[32] = {};
    int refused = 0;
    // Each of the two digests takes a key object, itself, a hash object and the password in UTF-8; then there is
    // enough. Given back are the provider of each, and its hash where there was one; each cipher gives its key back.
    for (const int givenBack : {1, 1, 1, 1, 3, 3, 3, 3, 6}) {
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
        EXPECT_EQ(s_alive, 0);
        ++refused;
    }
    s_refused = 0;
    EncryptorStandard().ComputeHash(L"secret", hash, bytes);
    EXPECT_EQ(hash, nullptr);
    EXPECT_EQ(bytes, 0U);
}
