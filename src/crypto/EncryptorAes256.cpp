#include "crypto/EncryptorAes256.h"

#include <algorithm>
#include <functional>
#include <new>

#include "helpers/Encodings.h"

namespace {

constexpr DWORD kSha512Bytes = 64;
constexpr DWORD kSha256Bytes = 32;
constexpr size_t kPasswordBytes = 64;
constexpr auto kNoMemoryStatus = static_cast<NTSTATUS>(STATUS_NO_MEMORY);

struct HeapCloser {
    void operator()(PUCHAR block) const { HeapFree(GetProcessHeap(), 0, block); }
};
using HeapBlock = std::unique_ptr<UCHAR, HeapCloser>;

HeapBlock AllocateOnHeap(DWORD bytes) {
    return HeapBlock(static_cast<PUCHAR>(HeapAlloc(GetProcessHeap(), 0, bytes)));
}

// A password in UTF-8, cut at 64 bytes or at its first zero, and gone from memory afterwards.
class PasswordBytes {
public:
    PasswordBytes() = default;
    ~PasswordBytes() { SecureZeroMemory(m_bytes, sizeof(m_bytes)); }
    PasswordBytes(const PasswordBytes&) = delete;
    PasswordBytes& operator=(const PasswordBytes&) = delete;

    // False when there is no memory. The password is not empty.
    bool Read(const CString& password) {
        int bytes = 0;
        const auto utf8 = WideToUtf8(password, false, bytes);
        if (!utf8) return false;
        std::copy_n(utf8.get(), std::min(static_cast<size_t>(bytes), kPasswordBytes), m_bytes);
        SecureZeroMemory(utf8.get(), static_cast<size_t>(bytes));
        return true;
    }
    PUCHAR Data() { return m_bytes; }
    ULONG Size() const { return static_cast<ULONG>(std::find(m_bytes, m_bytes + kPasswordBytes, 0) - m_bytes); }

private:
    UCHAR m_bytes[kPasswordBytes] = {};
};

}  // namespace

EncryptorAes256::~EncryptorAes256() {
    if (m_pKeyObject != nullptr) HeapFree(GetProcessHeap(), 0, m_pKeyObject);
    if (m_pKey != nullptr) SecureZeroMemory(m_pKey, m_cbKey);
    delete[] m_pKey;
}

void EncryptorAes256::ComputeHash(const CString& password, std::unique_ptr<BYTE[]>& hash, DWORD& hashBytes) {
    hash.reset();
    hashBytes = 0;
    if (password.IsEmpty() || m_BCrypt.Load() != 0) return;
    PUCHAR digest = nullptr;
    m_keyStatus = HashPassword(BCRYPT_SHA512_ALGORITHM, kSha512Bytes, password, nullptr, nullptr, digest, hashBytes);
    hash.reset(digest);
    if (m_keyStatus < 0) return;
    // An earlier password's key and key object are left behind, not released; docs/encryption.md counts this among the
    // limits.
    m_keyStatus =
        HashPassword(BCRYPT_SHA256_ALGORITHM, kSha256Bytes, password, &m_pKeyObject, &m_cbKeyObject, m_pKey, m_cbKey);
}

NTSTATUS EncryptorAes256::HashPassword(LPCWSTR algorithm, DWORD digestBytes, const CString& password, PUCHAR* keyObject,
                                       DWORD* keyObjectBytes, PUCHAR& digest, DWORD& digestSize) const {
    digest = nullptr;
    digestSize = 0;
    BCRYPT_ALG_HANDLE provider = nullptr;
    NTSTATUS status = m_BCrypt.BCryptOpenAlgorithmProvider(&provider, algorithm, nullptr, 0);
    if (status < 0) return status;

    DWORD objectBytes = 0;
    status = m_BCrypt.GetObjectLength(m_BCrypt.AesProvider(), objectBytes);
    if (status >= 0) {
        HeapBlock object = AllocateOnHeap(objectBytes);
        std::unique_ptr<UCHAR[]> result(new (std::nothrow) UCHAR[digestBytes]);
        status = object && result ? HashInto(provider, password, result.get(), digestBytes) : kNoMemoryStatus;
        if (status >= 0) {
            digest = result.release();
            digestSize = digestBytes;
        }
        if (keyObject != nullptr) *keyObject = object.release();
        if (keyObjectBytes != nullptr) *keyObjectBytes = objectBytes;
    }
    m_BCrypt.BCryptCloseAlgorithmProvider(provider, 0);
    return status;
}

NTSTATUS EncryptorAes256::HashInto(BCRYPT_ALG_HANDLE provider, const CString& password, PUCHAR digest,
                                   DWORD digestBytes) const {
    DWORD objectBytes = 0;
    NTSTATUS status = m_BCrypt.GetObjectLength(provider, objectBytes);
    if (status < 0) return status;
    const HeapBlock object = AllocateOnHeap(objectBytes);
    PasswordBytes bytes;
    if (!object || !bytes.Read(password)) return kNoMemoryStatus;
    BCRYPT_HASH_HANDLE hash = nullptr;
    status = m_BCrypt.BCryptCreateHash(provider, &hash, object.get(), objectBytes, nullptr, 0, 0);
    if (status < 0) return status;
    status = m_BCrypt.BCryptHashData(hash, bytes.Data(), bytes.Size(), 0);
    if (status >= 0) status = m_BCrypt.BCryptFinishHash(hash, digest, digestBytes, 0);
    m_BCrypt.BCryptDestroyHash(hash);
    return status;
}

bool EncryptorAes256::VerifyHash(const CString& password, const BYTE* hash, DWORD hashBytes) {
    return HasHash(password, hash, hashBytes);
}

template <class Loop>
NTSTATUS EncryptorAes256::WithKey(Loop loop) {
    if (m_keyStatus < 0) return m_keyStatus;
    BCRYPT_KEY_HANDLE key = nullptr;
    NTSTATUS status = m_BCrypt.BCryptGenerateSymmetricKey(m_BCrypt.AesProvider(), &key, m_pKeyObject, m_cbKeyObject,
                                                          m_pKey, m_cbKey, 0);
    if (status != 0) return status;
    m_BCrypt.ReadBlockLength(key);
    status = loop(key);
    m_BCrypt.BCryptDestroyKey(key);
    return status;
}

// No initialisation vector is given, so the library decides how the chunks chain.
auto EncryptorAes256::CipherOf(CipherCall call, BCRYPT_KEY_HANDLE key) const {
    return [this, call, key](std::span<uint8_t> chunk, bool isPadded, std::span<uint8_t> output, uint32_t& written) {
        ULONG done = 0;
        const NTSTATUS status =
            (m_BCrypt.*call)(key, chunk.data(), static_cast<ULONG>(chunk.size()), nullptr, nullptr, 0, output.data(),
                             static_cast<ULONG>(output.size()), &done, isPadded ? BCRYPT_BLOCK_PADDING : 0);
        written = done;
        return static_cast<int32_t>(status);
    };
}

NTSTATUS EncryptorAes256::Decrypt(BYTE* buffer, DWORD& bytes) {
    return WithKey([&](BCRYPT_KEY_HANDLE key) {
        uint32_t length = bytes;
        const auto cipher = CipherOf(&BCryptLib::BCryptDecrypt, key);
        const NTSTATUS status = DecryptChunks({buffer, bytes}, length, std::cref(cipher));
        bytes = length;
        return status;
    });
}

NTSTATUS EncryptorAes256::Encrypt(BYTE* buffer, DWORD& bytes) {
    return WithKey([&](BCRYPT_KEY_HANDLE key) {
        uint32_t length = bytes;
        const auto cipher = CipherOf(&BCryptLib::BCryptEncrypt, key);
        const NTSTATUS status = EncryptChunks(buffer, length, std::cref(cipher));
        bytes = length;
        return status;
    });
}
