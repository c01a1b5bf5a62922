// Password-based ciphers over memory buffers. All results are NTSTATUS values: 0 is success.
//
//     EncryptorBase* encryptor = GetEncryptor(kEncryptorAes256);    // crypto/Encryptor.h
//     std::unique_ptr<BYTE[]> hash;
//     DWORD hashBytes = 0;
//     encryptor->ComputeHash(password, hash, hashBytes);    // sets the key, too
//     std::vector<BYTE> buffer(text.begin(), text.end());
//     DWORD bytes = static_cast<DWORD>(buffer.size());
//     buffer.resize(bytes + 16);                            // room for the padding
//     if (encryptor->Encrypt(buffer.data(), bytes) == 0) Store(buffer.data(), bytes);
//
// docs/encryption.md tells what these ciphers protect against, which is not much.
#pragma once

#include <afx.h>
#include <bcrypt.h>

#include <memory>

class EncryptorBase {
public:
    EncryptorBase() = default;
    virtual ~EncryptorBase() = default;
    EncryptorBase(const EncryptorBase&) = delete;
    EncryptorBase& operator=(const EncryptorBase&) = delete;

    // What is stored of a password, to recognise it later. Null and 0 for an empty password, and on failure. Makes the
    // password the one that Encrypt and Decrypt use, where they use one.
    virtual void ComputeHash(const CString& password, std::unique_ptr<BYTE[]>& hash, DWORD& hashBytes) = 0;
    // Whether the password has that hash, `hashBytes` long; an empty password has the empty one. Computes the hash,
    // with all that ComputeHash does.
    virtual bool VerifyHash(const CString& password, const BYTE* hash, DWORD hashBytes) = 0;
    // In place; `bytes` becomes the length of the plaintext. A wrong password need not show as a failure.
    virtual NTSTATUS Decrypt(BYTE* buffer, DWORD& bytes) = 0;
    // In place; `bytes` becomes the length of the ciphertext. The buffer needs room for 16 bytes more than `bytes`.
    virtual NTSTATUS Encrypt(BYTE* buffer, DWORD& bytes) = 0;

protected:
    // What every VerifyHash does, through the object's own ComputeHash.
    bool HasHash(const CString& password, const BYTE* hash, DWORD hashBytes);
};
