// The fixed-table scrambler, with no key at all. Lengths stay as they are and nothing fails.
#pragma once

#include "crypto/EncryptorBase.h"

class EncryptorStandard : public EncryptorBase {
public:
    // The hash has two bytes for each character of the password. Of a password of more than 512 characters they are
    // all zero.
    void ComputeHash(const CString& password, std::unique_ptr<BYTE[]>& hash, DWORD& hashBytes) override;
    bool VerifyHash(const CString& password, const BYTE* hash, DWORD hashBytes) override;
    NTSTATUS Decrypt(BYTE* buffer, DWORD& bytes) override;
    NTSTATUS Encrypt(BYTE* buffer, DWORD& bytes) override;
};
