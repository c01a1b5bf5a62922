#include "crypto/EncryptorBase.h"

#include <cstring>

bool EncryptorBase::HasHash(const CString& password, const BYTE* hash, DWORD hashBytes) {
    std::unique_ptr<BYTE[]> computed;
    DWORD computedBytes = 0;
    ComputeHash(password, computed, computedBytes);
    return computedBytes == hashBytes && (hashBytes == 0 || std::memcmp(computed.get(), hash, hashBytes) == 0);
}
