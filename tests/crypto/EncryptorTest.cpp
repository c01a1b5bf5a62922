#include "crypto/Encryptor.h"

#include <gtest/gtest.h>
#include <map>
#include <new>

#include "crypto/EncryptorAes256.h"
#include "crypto/EncryptorStandard.h"
#include "crypto/Vectors.h"
#include "support/ImportPatch.h"

namespace {

constexpr size_t kRoom = 16;

std::string HashOf(EncryptorBase& encryptor, const CString& password) {
    std::unique_ptr<BYTE[]> hash;
    DWORD bytes = 99;
    encryptor.ComputeHash(password, hash, bytes);
    EXPECT_TRUE(encryptor.VerifyHash(password, hash.get(), bytes));
    if (bytes == 0) return hash ? "memory" : "";
    EXPECT_FALSE(encryptor.VerifyHash(password, hash.get(), bytes - 1));
    hash[bytes - 1] ^= 1;
    EXPECT_FALSE(encryptor.VerifyHash(password, hash.get(), bytes));
    hash[bytes - 1] ^= 1;
    return {hash.get(), hash.get() + bytes};
}

// What becomes of a buffer that has room behind it.
template <auto Work>
std::string After(EncryptorBase& encryptor, std::string buffer, NTSTATUS status) {
    auto bytes = static_cast<DWORD>(buffer.size());
    buffer.resize(bytes + kRoom);
    EXPECT_EQ((encryptor.*Work)(reinterpret_cast<BYTE*>(buffer.data()), bytes), status);
    return buffer.substr(0, bytes);
}
constexpr auto Encrypted = After<&EncryptorBase::Encrypt>;
constexpr auto Decrypted = After<&EncryptorBase::Decrypt>;

// What GetProcAddress answers this program, by name, as long as the object lives; the system's answer for other names.
class EntryPoints {
public:
    explicit EntryPoints(std::map<std::string_view, void*> answers) {
        s_answers = std::move(answers);
        s_find = m_patch.Original();
    }

private:
    static FARPROC WINAPI Find(HMODULE module, LPCSTR name) {
        const auto found = s_answers.find(name);
        return found == s_answers.end() ? s_find(module, name) : reinterpret_cast<FARPROC>(found->second);
    }
    inline static std::map<std::string_view, void*> s_answers;
    inline static decltype(&GetProcAddress) s_find;
    ImportPatch<decltype(&GetProcAddress)> m_patch{GetModuleHandleW(nullptr), "GetProcAddress", Find};
};

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

TEST(EncryptorAes256, HashesAndCiphertextAgreeWithOtherImplementations) {
    EncryptorAes256 encryptor;
    EXPECT_EQ(HashOf(encryptor, L""), "");
    for (const int i : {0, 2, 1}) EXPECT_EQ(HashOf(encryptor, kPasswords[i]), Vector("sha512-" + std::to_string(i)));
    EXPECT_EQ(HashOf(encryptor, CString(L"abc\0more", 8)), Vector("sha512-0"));
    HashOf(encryptor, kPasswords[1]);
    for (const int length : {0, 1, 15, 16, 17, 0x7EF, 0x7F0, 0x7FF, 0x800, 0x801, 0x80F, 0xFFF, 0x1000, 0x1801}) {
        SCOPED_TRACE(length);
        const std::string expected = Plain(length);
        const std::string cipher = Encrypted(encryptor, expected, 0);
        EXPECT_EQ(cipher, Vector("aes-" + std::to_string(length)));
        std::string plain = Decrypted(encryptor, cipher, 0);
        // Padding that fills up a chunk is not told from data, and that chunk, which began a chain of its own, is then
        // taken to go on from the one before: its first block is lost.
        const size_t lastChunk = expected.size() / kCipherChunkBytes * kCipherChunkBytes;
        if (expected.size() - lastChunk >= kCipherChunkBytes - kRoom) {
            const size_t padding = cipher.size() - expected.size();
            EXPECT_EQ(plain.substr(expected.size()), std::string(padding, static_cast<char>(padding)));
            plain.resize(expected.size());
            EXPECT_EQ(plain.compare(lastChunk, kRoom, expected, lastChunk, kRoom) == 0, lastChunk == 0);
            plain.replace(lastChunk, kRoom, expected, lastChunk, kRoom);
        }
        EXPECT_EQ(plain, expected);
    }
    EXPECT_EQ(Decrypted(encryptor, Plain(111), static_cast<NTSTATUS>(0xC0000206)).size(), 111U) << "no whole block";
}

TEST(EncryptorStandard, HashesUpTo512Characters) {
    EncryptorStandard encryptor;
    EXPECT_EQ(Encrypted(encryptor, Plain(1025), 0), Vector("scrambled-1025"));
    EXPECT_EQ(Decrypted(encryptor, Vector("scrambled-1025"), 0), Plain(1025));
    EXPECT_EQ(HashOf(encryptor, L""), "");
    EXPECT_EQ(HashOf(encryptor, kPasswords[1]), Vector("standard-hash"));
    EXPECT_EQ(HashOf(encryptor, CString(L'x', 512)), Vector("standard-hash-512"));
    EXPECT_EQ(HashOf(encryptor, CString(L'x', 513)), std::string(1026, '\0'));
}

TEST(GetEncryptor, KeepsOneObjectPerTypeAndItsKeyGoesWithIt) {
    EncryptorBase* standard = GetEncryptor(1);
    EXPECT_NE(dynamic_cast<EncryptorStandard*>(standard), nullptr);
    EXPECT_EQ(GetEncryptor(1), standard);
    for (const int type : {6, 7}) {
        EncryptorBase* aes = GetEncryptor(type);
        ASSERT_NE(dynamic_cast<EncryptorAes256*>(aes), nullptr) << type;
        HashOf(*aes, L"");
        Decrypted(*aes, "no key", kNotSupportedStatus);
        HashOf(*aes, L"secret");
        EXPECT_EQ(GetEncryptor(type), aes);
        Encrypted(*aes, "with a key", 0);
    }
    for (const int type : {2, 2, 0, 3, 5, 8, -1}) EXPECT_EQ(GetEncryptor(type), nullptr) << type;
}

TEST(BCryptLib, WhatIsMissingEndsOnlyWhatNeedsIt) {
    const std::pair<const char*, const char*> rows[] = {{"BCryptCloseAlgorithmProvider", "hed"},
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
                                                        {"BCryptSetProperty", "hed"}};
    for (const auto& [name, abilities] : rows) {
        const EntryPoints patch({{name, nullptr}});
        EXPECT_EQ(Abilities(), abilities) << name;
    }
    const ImportPatch<decltype(&LoadLibraryW)> patch(GetModuleHandleW(nullptr), "LoadLibraryW",
                                                     [](LPCWSTR) -> HMODULE { return nullptr; });
    BCryptLib library;
    EXPECT_EQ(library.Load(), kNotSupportedStatus);
    EXPECT_EQ(library.Load(), 0) << "a failed load is not tried again";
    EXPECT_EQ(library.BCryptDestroyKey(nullptr), kNotSupportedStatus);
    EXPECT_EQ(Abilities(), "");
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
