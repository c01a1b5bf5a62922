#include "crypto/EncryptorAes256.h"

#include <gtest/gtest.h>

#include "crypto/EntryPointPatch.h"
#include "crypto/PatternBytes.h"
#include "crypto/Sha256.h"
#include "crypto/Vectors.h"

namespace {

std::string HashOf(EncryptorAes256& encryptor, const CString& password) {
    std::unique_ptr<BYTE[]> hash;
    DWORD bytes = 99;
    encryptor.ComputeHash(password, hash, bytes);
    return Hex({hash.get(), bytes});
}

void SetPassword(EncryptorAes256& encryptor, const CString& password) {
    ASSERT_EQ(HashOf(encryptor, password).size(), 128U);
}

constexpr size_t kRoom = 16;

// Wine answers 0xC0000001 to a padding that makes no sense, Windows 0xC000003E.
NTSTATUS WINAPI DecryptAsWindows(BCRYPT_KEY_HANDLE key, PUCHAR input, ULONG inputBytes, void* padding, PUCHAR vector,
                                 ULONG vectorBytes, PUCHAR output, ULONG outputBytes, ULONG* written, ULONG flags) {
    const NTSTATUS status =
        BCryptDecrypt(key, input, inputBytes, padding, vector, vectorBytes, output, outputBytes, written, flags);
    return status == static_cast<NTSTATUS>(0xC0000001) ? kDataErrorStatus : status;
}

}  // namespace

TEST(EncryptorAes256, DigestsAgreeWithOtherImplementations) {
    EncryptorAes256 encryptor;
    for (const auto& vector : kDigestVectors) EXPECT_EQ(HashOf(encryptor, vector.password), vector.sha512);
    EXPECT_EQ(HashOf(encryptor, L""), "");
    const std::wstring cut(64, L'x');
    EXPECT_EQ(HashOf(encryptor, cut.c_str()), HashOf(encryptor, (cut + L"more").c_str()));
    EXPECT_NE(HashOf(encryptor, cut.c_str()), HashOf(encryptor, cut.substr(1).c_str()));
    EXPECT_EQ(HashOf(encryptor, CString(L"one\0two", 7)), HashOf(encryptor, L"one"));
}

TEST(EncryptorAes256, CiphertextAgreesWithOtherImplementationsAtEveryLength) {
    EncryptorAes256 encryptor;
    SetPassword(encryptor, kAesPassword);
    for (const auto& vector : kAesVectors) {
        auto buffer = PatternBuffer(vector.length, vector.length + kRoom);
        DWORD bytes = vector.length;
        ASSERT_EQ(encryptor.Encrypt(buffer.data(), bytes), 0) << vector.length;
        ASSERT_EQ(bytes, vector.encryptedLength) << vector.length;
        ASSERT_EQ(Sha256({buffer.data(), bytes}), vector.sha256) << vector.length;

        ASSERT_EQ(encryptor.Decrypt(buffer.data(), bytes), 0) << vector.length;
        // Padding that fills up a chunk is not told from data, and that chunk, which began a chain of its own, is then
        // taken to go on from the one before: its first block is lost.
        const bool fillsUp = vector.length % kCipherChunkBytes >= kCipherChunkBytes - kRoom;
        auto expected = PatternBuffer(vector.length, vector.length);
        ASSERT_EQ(bytes, fillsUp ? vector.encryptedLength : vector.length) << vector.length;
        if (fillsUp) {
            EXPECT_EQ(buffer[bytes - 1], vector.encryptedLength - vector.length);
        }
        const size_t lastChunk = vector.length / kCipherChunkBytes * kCipherChunkBytes;
        if (fillsUp && lastChunk > 0) {
            EXPECT_FALSE(std::equal(&expected[lastChunk], &expected[lastChunk + kRoom], &buffer[lastChunk]));
            std::copy_n(&expected[lastChunk], kRoom, &buffer[lastChunk]);
        }
        buffer.resize(vector.length);
        EXPECT_EQ(buffer, expected) << vector.length;
    }
}

TEST(EncryptorAes256, NothingTellsAWrongPasswordOrADamagedEnd) {
    const EntryPointPatch patch("BCryptDecrypt", reinterpret_cast<void*>(&DecryptAsWindows));
    EncryptorAes256 encryptor;
    SetPassword(encryptor, kAesPassword);
    const auto plain = PatternBuffer(100, 100);
    auto encrypted = PatternBuffer(100, 112);
    DWORD bytes = 100;
    ASSERT_EQ(encryptor.Encrypt(encrypted.data(), bytes), 0);
    ASSERT_EQ(bytes, 112U);

    auto damaged = encrypted;
    damaged.back() ^= 1;
    EXPECT_EQ(encryptor.Decrypt(damaged.data(), bytes), 0);
    EXPECT_EQ(bytes, 112U);
    // The first try without padding goes on from the try with it, so under Wine the first block suffers too.
    EXPECT_TRUE(std::equal(plain.begin() + 16, plain.begin() + 96, damaged.begin() + 16));
    EXPECT_FALSE(std::equal(plain.begin() + 96, plain.end(), damaged.begin() + 96));

    SetPassword(encryptor, L"another");
    auto wrong = encrypted;
    EXPECT_EQ(encryptor.Decrypt(wrong.data(), bytes), 0);
    EXPECT_EQ(bytes, 112U);
    EXPECT_FALSE(std::equal(plain.begin(), plain.end(), wrong.begin()));

    DWORD odd = 111;
    EXPECT_EQ(encryptor.Decrypt(encrypted.data(), odd), static_cast<NTSTATUS>(0xC0000206));
    EXPECT_EQ(odd, 111U);
}

TEST(EncryptorAes256, VerifiesLengthAndBytes) {
    EncryptorAes256 encryptor;
    std::unique_ptr<BYTE[]> hash;
    DWORD bytes = 0;
    encryptor.ComputeHash(L"secret", hash, bytes);
    EXPECT_TRUE(encryptor.VerifyHash(L"secret", hash.get(), bytes));
    EXPECT_FALSE(encryptor.VerifyHash(L"secret", hash.get(), bytes - 1));
    EXPECT_FALSE(encryptor.VerifyHash(L"Secret", hash.get(), bytes));
    EXPECT_FALSE(encryptor.VerifyHash(L"", hash.get(), bytes));
    EXPECT_TRUE(encryptor.VerifyHash(L"", nullptr, 0));
    hash[63] ^= 1;
    EXPECT_FALSE(encryptor.VerifyHash(L"secret", hash.get(), bytes));
}

TEST(EncryptorAes256, AnEmptyPasswordMakesNoKey) {
    EncryptorAes256 encryptor;
    EXPECT_EQ(HashOf(encryptor, L""), "");
    BYTE buffer[32] = {};
    DWORD bytes = 16;
    EXPECT_EQ(encryptor.Encrypt(buffer, bytes), kNotSupportedStatus);
    EXPECT_EQ(encryptor.Decrypt(buffer, bytes), kNotSupportedStatus);
    EXPECT_EQ(bytes, 16U);
}
