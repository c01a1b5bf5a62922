#include "crypto/EncryptorStandard.h"

#include <cstring>
#include <new>

#include "crypto/Scrambler.h"

void EncryptorStandard::ComputeHash(const CString& password, std::unique_ptr<BYTE[]>& hash, DWORD& hashBytes) {
    hash.reset();
    hashBytes = 0;
    if (password.IsEmpty()) return;
    const size_t bytes = sizeof(WCHAR) * static_cast<size_t>(password.GetLength());
    hash.reset(new (std::nothrow) BYTE[bytes]{});
    if (!hash) return;
    hashBytes = static_cast<DWORD>(bytes);
    // Stored hashes of longer passwords are zeros.
    if (bytes > kScramblerBlockBytes) return;
    std::memcpy(hash.get(), password.GetString(), bytes);
    Scramble({hash.get(), bytes});
}

bool EncryptorStandard::VerifyHash(const CString& password, const BYTE* hash, DWORD hashBytes) {
    return HasHash(password, hash, hashBytes);
}

NTSTATUS EncryptorStandard::Decrypt(BYTE* buffer, DWORD& bytes) {
    Unscramble({buffer, bytes});
    return 0;
}

NTSTATUS EncryptorStandard::Encrypt(BYTE* buffer, DWORD& bytes) {
    Scramble({buffer, bytes});
    return 0;
}
