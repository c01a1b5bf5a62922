#include "crypto/Encryptor.h"

#include <gtest/gtest.h>

#include "crypto/EncryptorAes256.h"
#include "crypto/EncryptorStandard.h"
#include "crypto/PatternBytes.h"
#include "crypto/Sha256.h"
#include "crypto/Vectors.h"

namespace {

std::string StandardHash(const CString& password, DWORD& bytes) {
    std::unique_ptr<BYTE[]> hash;
    EncryptorStandard().ComputeHash(password, hash, bytes);
    EXPECT_EQ(EncryptorStandard().VerifyHash(password, hash.get(), bytes), true);
    return Hex({hash.get(), bytes});
}

}  // namespace

TEST(EncryptorStandard, AgreesWithPassesDoneOneByOne) {
    EncryptorStandard encryptor;
    for (const auto& vector : kScramblerVectors) {
        auto buffer = PatternBuffer(vector.length, vector.length);
        DWORD bytes = vector.length;
        EXPECT_EQ(encryptor.Encrypt(buffer.data(), bytes), 0);
        EXPECT_EQ(bytes, vector.length);
        EXPECT_EQ(Sha256(buffer), vector.sha256) << vector.length;
        EXPECT_EQ(encryptor.Decrypt(buffer.data(), bytes), 0);
        EXPECT_EQ(buffer, PatternBuffer(vector.length, vector.length));
    }
}

TEST(EncryptorStandard, HashesUpTo512Characters) {
    DWORD bytes = 99;
    EXPECT_EQ(StandardHash(L"", bytes), "");
    EXPECT_EQ(bytes, 0U);
    EXPECT_EQ(StandardHash(kAesPassword, bytes), kStandardHash);
    std::unique_ptr<BYTE[]> hash;
    EncryptorStandard().ComputeHash(std::wstring(512, L'x').c_str(), hash, bytes);
    EXPECT_EQ(Sha256({hash.get(), bytes}), kStandardHashOf512);
    EXPECT_EQ(StandardHash(std::wstring(513, L'x').c_str(), bytes), std::string(2052, '0'));
    EXPECT_FALSE(EncryptorStandard().VerifyHash(L"x", hash.get(), 1024));
    EXPECT_FALSE(EncryptorStandard().VerifyHash(L"y", hash.get(), 2));
}

TEST(GetEncryptor, KeepsOneObjectPerType) {
    EncryptorBase* standard = GetEncryptor(1);
    EXPECT_NE(dynamic_cast<EncryptorStandard*>(standard), nullptr);
    EXPECT_EQ(GetEncryptor(1), standard);
    EXPECT_EQ(GetEncryptor(2), nullptr);
    EXPECT_EQ(GetEncryptor(2), nullptr);
    for (const int type : {6, 7}) {
        EncryptorBase* aes = GetEncryptor(type);
        ASSERT_NE(dynamic_cast<EncryptorAes256*>(aes), nullptr) << type;
        BYTE buffer[32] = {};
        DWORD bytes = 16;
        EXPECT_NE(aes->Encrypt(buffer, bytes), 0) << type << ": a new object has no key";
        std::unique_ptr<BYTE[]> hash;
        DWORD hashBytes = 0;
        aes->ComputeHash(L"secret", hash, hashBytes);
        EXPECT_EQ(GetEncryptor(type), aes);
        EXPECT_EQ(aes->Encrypt(buffer, bytes), 0) << type;
    }
    for (const int type : {0, 3, 5, 8, -1}) EXPECT_EQ(GetEncryptor(type), nullptr) << type;
}
