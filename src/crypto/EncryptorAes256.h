// AES under the SHA-256 of the password, by the platform's library with its own default chaining. What is stored of a
// password is its SHA-512. Only the first 64 UTF-8 bytes of a password count, and only those before a zero character.
#pragma once

#include "crypto/BCryptLib.h"
#include "crypto/CipherChunks.h"
#include "crypto/EncryptorBase.h"

class EncryptorAes256 : public EncryptorBase {
public:
    EncryptorAes256() = default;
    ~EncryptorAes256() override;

    void ComputeHash(const CString& password, std::unique_ptr<BYTE[]>& hash, DWORD& hashBytes) override;
    bool VerifyHash(const CString& password, const BYTE* hash, DWORD hashBytes) override;
    // Both fail before a ComputeHash of a password, and with the status of one that failed, as for want of memory.
    // Decrypting with a wrong key mostly returns 0 and gives noise.
    NTSTATUS Decrypt(BYTE* buffer, DWORD& bytes) override;
    NTSTATUS Encrypt(BYTE* buffer, DWORD& bytes) override;

private:
    // Hands out the digest, and the key object when asked; null on failure.
    NTSTATUS HashPassword(LPCWSTR algorithm, DWORD digestBytes, const CString& password, PUCHAR* keyObject,
                          DWORD* keyObjectBytes, PUCHAR& digest, DWORD& digestSize) const;
    NTSTATUS HashInto(BCRYPT_ALG_HANDLE provider, const CString& password, PUCHAR digest, DWORD digestBytes) const;
    // Makes a key handle for the time of `loop` and returns the first status that is not 0.
    template <class Loop>
    NTSTATUS WithKey(Loop loop);
    using CipherCall = decltype(&BCryptLib::BCryptEncrypt);
    auto CipherOf(CipherCall call, BCRYPT_KEY_HANDLE key) const;

    BCryptLib m_BCrypt;
    PUCHAR m_pKeyObject = nullptr;  // on the process heap
    DWORD m_cbKeyObject = 0;
    PUCHAR m_pKey = nullptr;  // by new[]
    DWORD m_cbKey = 0;
    NTSTATUS m_keyStatus = 0;  // negative: the last password could not become the key
};
