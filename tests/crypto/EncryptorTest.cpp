#include "crypto/Encryptor.h"

#include <gtest/gtest.h>

#include "crypto/EncryptorAes256.h"
#include "crypto/EncryptorStandard.h"
#include "crypto/EntryPoints.h"
#include "crypto/Vectors.h"

namespace {

constexpr size_t kRoom = 16;

std::string HashOf(EncryptorBase& encryptor, const CString& password) {
    std::unique_ptr<BYTE[]> hash;
    DWORD bytes = 99;
    encryptor.ComputeHash(password, hash, bytes);
    EXPECT_TRUE(encryptor.VerifyHash(password, hash.get(), bytes));
    if (bytes == 0) return "";
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

// Wine answers 0xC0000001 to a padding that makes no sense, Windows 0xC000003E.
NTSTATUS WINAPI DecryptAsWindows(BCRYPT_KEY_HANDLE key, PUCHAR input, ULONG inputBytes, void* padding, PUCHAR vector,
                                 ULONG vectorBytes, PUCHAR output, ULONG outputBytes, ULONG* written, ULONG flags) {
    const NTSTATUS status =
        BCryptDecrypt(key, input, inputBytes, padding, vector, vectorBytes, output, outputBytes, written, flags);
    return status == static_cast<NTSTATUS>(0xC0000001) ? kDataErrorStatus : status;
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
}

TEST(EncryptorAes256, NothingTellsAWrongPasswordOrADamagedEnd) {
    const EntryPoints patch({{"BCryptDecrypt", reinterpret_cast<void*>(&DecryptAsWindows)}});
    EncryptorAes256 encryptor;
    HashOf(encryptor, kPasswords[1]);
    std::string cipher = Encrypted(encryptor, Plain(100), 0);
    ASSERT_EQ(cipher.size(), 112U);
    cipher.back() ^= 1;
    const std::string damaged = Decrypted(encryptor, cipher, 0);
    EXPECT_EQ(damaged.size(), 112U);
    // The first try without padding goes on from the try with it, so under Wine the first block suffers too.
    EXPECT_EQ(damaged.substr(16, 80), Plain(96).substr(16));
    EXPECT_NE(damaged.substr(96, 4), Plain(100).substr(96));
    cipher.back() ^= 1;
    EXPECT_EQ(Decrypted(encryptor, cipher.substr(0, 111), static_cast<NTSTATUS>(0xC0000206)).size(), 111U);
    HashOf(encryptor, L"another");
    EXPECT_NE(Decrypted(encryptor, cipher, 0).substr(0, 100), Plain(100));
}

TEST(EncryptorStandard, AgreesWithPassesDoneOneByOneAndHashesUpTo512Characters) {
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
